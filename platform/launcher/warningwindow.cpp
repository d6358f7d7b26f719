#include "platform/launcher/warningwindow.h"

#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

WarningWindow::WarningWindow(QWidget* parent)
    : QDialog(parent)
    , label(new QLabel(this))
{
    constexpr int kTextWidth = 360;
    constexpr int kTouchHeight = 44;
    // Texts hold file names and what children said: never markup.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);

    auto* ok = new QPushButton(tr("OK"), this);
    ok->setMinimumSize(2 * kTouchHeight, kTouchHeight);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addWidget(ok, 0, Qt::AlignHCenter);
    setModal(false);
}

QString WarningWindow::text() const
{
    return label->text();
}

void WarningWindow::show(const QString& text)
{
    show(text, QString());
}

void WarningWindow::show(const QString& text, const QString& title)
{
    const QString shown = isVisible() ? label->text() : QString();
    if (shown.isEmpty()) {
        label->setText(text);
    } else if (!shown.split(QStringLiteral("\n\n")).contains(text)) {
        label->setText(shown + QStringLiteral("\n\n") + text);
    }
    setWindowTitle(title);
    adjustSize();
    QDialog::show();
    raise();
}

void WarningWindow::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous()) {
        label->clear();
    }
}
