#include "platform/launcher/namedialog.h"

#include "platform/launcher/filenameconverter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

NameDialog::NameDialog(const QString& proposed, QWidget* parent)
    : QDialog(parent)
    , edit(new QLineEdit(proposed, this))
    , saveButton(new QPushButton(tr("Save"), this))
{
    constexpr int kTouchHeight = 44;
    constexpr int kEditWidth = 360;
    setWindowTitle(tr("Save"));
    auto* label = new QLabel(tr("File name"), this);
    label->setBuddy(edit);
    edit->setMinimumSize(kEditWidth, kTouchHeight);
    edit->selectAll();
    auto* cancelButton = new QPushButton(tr("Cancel"), this);
    saveButton->setMinimumSize(2 * kTouchHeight, kTouchHeight);
    saveButton->setDefault(true);
    cancelButton->setMinimumSize(2 * kTouchHeight, kTouchHeight);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(saveButton);
    auto* column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addWidget(edit);
    column->addLayout(buttons);

    connect(edit, &QLineEdit::textChanged, this, &NameDialog::checkName);
    connect(saveButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    checkName();
}

QString NameDialog::name() const
{
    return edit->text();
}

void NameDialog::checkName()
{
    saveButton->setEnabled(!FileNameConverter().convert(edit->text()).isEmpty());
}
