#include "platform/launcher/waitwnd.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

WaitWnd::WaitWnd(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
{
    constexpr int kBarWidth = 240;
    auto* label = new QLabel(tr("Please wait…"), this);
    label->setAlignment(Qt::AlignHCenter);
    auto* bar = new QProgressBar(this);
    bar->setRange(0, 0); // nobody knows how long
    bar->setMinimumWidth(kBarWidth);

    auto* column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addWidget(bar);
    setModal(true);
}

void WaitWnd::reject() { }

void WaitWnd::closeEvent(QCloseEvent* event)
{
    event->ignore();
}
