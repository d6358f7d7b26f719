#include "platform/launcher/dialognameprompt.h"

#include "platform/launcher/namedialog.h"
#include "platform/launcher/windowbelow.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFontMetrics>
#include <QMessageBox>
#include <QPointer>

std::optional<QString> DialogNamePrompt::askName(const QString& proposed)
{
    // On the heap and watched: the window below may go while the user types.
    const QPointer<NameDialog> dialog = new NameDialog(proposed, windowBelow());
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog.isNull()) {
        return std::nullopt;
    }
    const QString name = dialog->name();
    delete dialog.data();
    return accepted ? std::optional(name) : std::nullopt;
}

bool DialogNamePrompt::askOverwrite(const QString& name)
{
    constexpr int kTouchHeight = 44;
    constexpr int kNameWidth = 360; // a name has no place where its line could be broken
    const QPointer<QMessageBox> box = new QMessageBox(windowBelow());
    box->setIcon(QMessageBox::Question);
    box->setTextFormat(Qt::PlainText);
    box->setText(
        QCoreApplication::translate("DialogNamePrompt", "\"%1\" exists already. Replace it?")
            .arg(box->fontMetrics().elidedText(name, Qt::ElideMiddle, kNameWidth)));
    box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    const auto buttons = box->buttons();
    for (QAbstractButton* button : buttons) {
        button->setMinimumSize(2 * kTouchHeight, kTouchHeight);
    }
    const bool replace = box->exec() == QMessageBox::Yes;
    delete box.data();
    return replace;
}
