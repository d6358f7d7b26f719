#include "plot/flash.h"

#include "plot/radialeffect.h"

#include <QPainter>

Flash::Flash(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAutoFillBackground(false);
    QPalette colors = palette();
    QColor clear = colors.color(QPalette::Window);
    clear.setAlpha(0);
    colors.setBrush(QPalette::All, QPalette::Window, clear);
    setPalette(colors);
    setGeometry(QRect(QPoint(0, 0), QPoint(112, 112)));
}

QRadialGradient Flash::pressEffect(const QRectF& rect) const
{
    static RadialEffect effect;
    return effect.at(rect,
                     {{0.0, palette().color(QPalette::Button)},
                      {0.5, palette().color(QPalette::Window)},
                      {1.0, Qt::transparent}});
}

void Flash::centerOn(const QPoint& p)
{
    const QPoint centre = geometry().center();
    if (p != centre) {
        move(pos() + p - centre);
    }
}

void Flash::moveByX(int dx)
{
    move(x() + dx, y());
}

void Flash::resizeEvent(QResizeEvent* event)
{
    const double ratio = devicePixelRatioF();
    pixmap = QPixmap(size() * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    const QRectF whole(0.0, 0.0, width(), height());
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pressEffect(whole));
    painter.drawEllipse(whole);
    painter.end();
    QWidget::resizeEvent(event);
}

void Flash::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QPainter(this).drawPixmap(0, 0, pixmap);
}
