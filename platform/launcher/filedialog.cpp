#include "platform/launcher/filedialog.h"

#include <QFileDialog>
#include <QPointer>
#include <QPushButton>

namespace {

QString nameFilter(const QString& filter)
{
    return filter.startsWith(QLatin1Char('.')) ? QLatin1Char('*') + filter : filter;
}

} // namespace

QString FileDialog::getOpenFileName(QWidget* parent, const QString& title, const QString& dir,
                                    const QString& filter)
{
    constexpr int kTouchHeight = 44;
    // On the heap and watched: the parent may go while the user chooses.
    const QPointer<QFileDialog> dialog = new QFileDialog(parent, title, dir, nameFilter(filter));
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    const auto buttons = dialog->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        button->setMinimumHeight(kTouchHeight);
    }
    const bool chosen = dialog->exec() == QDialog::Accepted;
    if (dialog.isNull()) {
        return {};
    }
    const QStringList files = dialog->selectedFiles();
    delete dialog.data();
    return chosen ? files.value(0) : QString();
}
