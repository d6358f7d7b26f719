#include "platform/launcher/namedialog.h"

#include "platform/launcher/filenameconverter.h"
#include "platform/launcher/touchbutton.h"
#include "platform/launcher/touchkeyboard.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

NameDialog::NameDialog(const QString& proposed, QWidget* parent)
    : QDialog(parent)
    , edit(new QLineEdit(proposed, this))
    , hint(new QLabel(this))
    , saveButton(new TouchButton(tr("Save"), this))
{
    constexpr int kTouchHeight = 44;
    constexpr int kButtonWidth = 110;
    setWindowTitle(tr("Save"));
    auto* label = new QLabel(tr("File name"), this);
    label->setBuddy(edit);
    edit->setMinimumHeight(kTouchHeight);
    edit->selectAll();
    hint->setObjectName(QStringLiteral("hint"));
    hint->setTextFormat(Qt::PlainText);
    hint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long name is cut instead
    hint->setMinimumHeight(hint->fontMetrics().height()); // the keys stay where they are
    auto* cancelButton = new TouchButton(tr("Cancel"), this);
    cancelButton->setMinimumSize(kButtonWidth, kTouchHeight);
    cancelButton->setAutoDefault(false);
    saveButton->setMinimumSize(kButtonWidth, kTouchHeight);
    saveButton->setDefault(true);
    auto* keys = new TouchKeyboard(edit, this);

    auto* page = new QGridLayout(this);
    page->addWidget(label, 0, 0);
    page->addWidget(edit, 1, 0);
    page->addWidget(cancelButton, 1, 1);
    page->addWidget(saveButton, 1, 2);
    page->addWidget(hint, 2, 0, 1, -1);
    page->addWidget(keys, 3, 0, 1, -1);
    setTabOrder(edit, cancelButton);
    setTabOrder(cancelButton, saveButton);
    edit->setFocus();

    connect(edit, &QLineEdit::textChanged, this, &NameDialog::checkName);
    connect(saveButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    checkName();
}

QString NameDialog::name() const
{
    return edit->text();
}

void NameDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    checkName(); // the hint is cut to its width
}

void NameDialog::checkName()
{
    const QString typed = edit->text().trimmed();
    const QString safe = FileNameConverter().convert(typed);
    saveButton->setEnabled(!safe.isEmpty());
    QString text;
    if (typed.isEmpty()) {
        text = tr("Please type a name.");
    } else if (safe.isEmpty()) {
        text = tr("This name cannot be used: it is nothing but dots and blanks.");
    } else if (safe != typed) {
        text = tr("It will be saved as \"%1\".").arg(safe);
    }
    hint->setText(hint->fontMetrics().elidedText(text, Qt::ElideMiddle, hint->width()));
}
