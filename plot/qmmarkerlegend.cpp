#include "plot/qmmarkerlegend.h"

#include "platform/otdr/screennumber.h"
#include "plot/legendgeometry.h"

#include <QEvent>
#include <QPainter>

QmMarkerLegend::QmMarkerLegend(const QPointF& p, QWidget* parent)
    : QLabel(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setIndent(4);
    setMargin(2);
    setText(p);
}

void QmMarkerLegend::setText(const QString& text)
{
    fit(text);
    QLabel::setText(text);
}

void QmMarkerLegend::setText(double x_m, double y_dB)
{
    setText(tr("%1 m\n%2 dB").arg(screennumber::fixed(x_m, 0), screennumber::fixed(y_dB, 2)));
}

void QmMarkerLegend::setText(const QPointF& p)
{
    setText(p.x(), p.y());
}

void QmMarkerLegend::fit(const QString& text)
{
    setFixedSize(legendgeometry::sizeFor(text, fontMetrics()));
}

void QmMarkerLegend::moveTo(int x, int y)
{
    const QPoint marker(x, y < 0 ? this->y() : y);
    setAlignment(legendgeometry::alignmentAt(x, width(), parentWidget()->width(), alignment()));
    move(legendgeometry::topLeft(marker, width(), alignment()));
}

void QmMarkerLegend::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        fit(text());
    }
    QLabel::changeEvent(event);
}

void QmMarkerLegend::paintEvent(QPaintEvent* event)
{
    constexpr double kCorner = 8.0;
    constexpr int kHalfOpaque = 128;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 2.0));
    painter.drawLine(legendgeometry::pointer(size(), alignment()));
    QColor paper = palette().color(QPalette::Base);
    paper.setAlpha(kHalfOpaque);
    painter.setBrush(paper);
    painter.drawRoundedRect(legendgeometry::box(size(), alignment()), kCorner, kCorner);
    painter.end();
    QLabel::paintEvent(event);
}
