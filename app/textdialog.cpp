#include "app/textdialog.h"

#include "platform/launcher/touchbutton.h"

#include <QHBoxLayout>
#include <QScroller>
#include <QShowEvent>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr int kButtonWidth = 110;
const QSize kMost(720, 620); ///< longer lines are hard to read
constexpr int kShare_percent = 95;

} // namespace

TextDialog::TextDialog(const QString& title, QWidget* parent)
    : QDialog(parent)
    , page(new QTextBrowser(this))
    , buttons(new QHBoxLayout)
{
    setWindowTitle(title);
    page->setOpenLinks(false); // it is a page, no browser
    page->setTextInteractionFlags(Qt::NoTextInteraction); // no cursor; the keys scroll
    page->setFrameShape(QFrame::NoFrame);
    page->document()->setDocumentMargin(12.0);
    QScroller::grabGesture(page->viewport(), QScroller::LeftMouseButtonGesture);

    auto* close = new TouchButton(tr("Close"), this);
    close->setObjectName("closeButton");
    close->setMinimumWidth(kButtonWidth);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addStretch();
    buttons->addWidget(close);

    auto* column = new QVBoxLayout(this);
    column->addWidget(page, 1);
    column->addLayout(buttons);
}

void TextDialog::setPage(const QString& markup)
{
    page->setHtml(markup);
}

QPushButton* TextDialog::addButton(const QString& text)
{
    auto* button = new TouchButton(text, this);
    button->setMinimumWidth(kButtonWidth);
    button->setAutoDefault(false);
    buttons->insertWidget(buttons->count() - 1, button);
    return button;
}

void TextDialog::showEvent(QShowEvent* event)
{
    const QWidget* below = parentWidget() == nullptr ? nullptr : parentWidget()->window();
    if (!event->spontaneous()) {
        const QSize share =
            below == nullptr ? kMost : (below->size() * kShare_percent / 100).boundedTo(kMost);
        resize(share);
        page->setFocus(); // the keys scroll it
    }
    QDialog::showEvent(event);
}
