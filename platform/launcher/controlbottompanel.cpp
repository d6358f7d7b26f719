#include "platform/launcher/controlbottompanel.h"

#include <QHBoxLayout>

ControlBottomPanel::ControlBottomPanel(QWidget* parent)
    : QWidget(parent)
    , items(new QHBoxLayout)
    , actions(new QHBoxLayout)
{
    auto* row = new QHBoxLayout(this);
    constexpr int kMargin = 6;
    row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    // The items take the free width, so that an expanding gap between them works; with none they
    // share it.
    row->addLayout(items, 1);
    row->addLayout(actions);
}

void ControlBottomPanel::addWidget(QWidget* widget, int width, int stretch, Qt::Alignment alignment)
{
    insertWidget(items->count(), widget, width, stretch, alignment);
}

void ControlBottomPanel::prependWidget(QWidget* widget, int width, int stretch,
                                       Qt::Alignment alignment)
{
    insertWidget(0, widget, width, stretch, alignment);
}

void ControlBottomPanel::addSpacer(int width)
{
    if (width > 0) {
        items->addSpacing(width);
    } else {
        items->addStretch(1);
    }
}

void ControlBottomPanel::setActionWidget(QWidget* widget, Qt::Alignment alignment)
{
    if (widget == nullptr) {
        return;
    }
    if (actions->indexOf(widget) < 0) {
        actions->addWidget(widget);
    }
    actions->setAlignment(widget, alignment);
}

void ControlBottomPanel::insertWidget(int index, QWidget* widget, int width, int stretch,
                                      Qt::Alignment alignment)
{
    if (widget == nullptr) {
        return;
    }
    if (width > 0) {
        widget->setMinimumWidth(width);
    }
    items->insertWidget(index, widget, stretch, alignment);
}
