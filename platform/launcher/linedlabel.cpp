#include "platform/launcher/linedlabel.h"

#include <QPainter>
#include <QVBoxLayout>

LinedLabel::LinedLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QWidget* LinedLabel::createLabeledWidget(QWidget* widget)
{
    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* label = new LinedLabel(widget->whatsThis(), both);
    label->setBuddy(widget);
    column->addWidget(label);
    column->addWidget(widget);
    column->addStretch();
    return both;
}

void LinedLabel::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    constexpr int kGap = 6;
    const int start = contentsRect().x() + fontMetrics().horizontalAdvance(text()) + kGap;
    const int middle = contentsRect().center().y();
    if (start < contentsRect().right()) {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(start, middle, contentsRect().right(), middle);
    }
}
