#include "plot/linewidget.h"

#include "plot/linegeometry.h"

#include <QPainter>

LineWidget::LineWidget(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setVisible(true);
}

LineWidget::LineWidget(const QLineF& line, QWidget* parent)
    : LineWidget(parent)
{
    LineWidget::setLine(line);
}

void LineWidget::setLine(const QLineF& line)
{
    const linegeometry::Framed framed = linegeometry::framed(linegeometry::withinReach(line));
    drawn = framed.line;
    setGeometry(framed.geometry);
    update();
}

void LineWidget::paintEvent(QPaintEvent* /*event*/)
{
    if (drawn.isNull()) {
        return;
    }
    QPainter painter(this);
    painter.setPen(Qt::red);
    painter.drawLine(drawn);
}
