#include "plot/qmmarker.h"

#include "platform/launcher/palettefactory.h"
#include "plot/radialeffect.h"

#include <QDateTime>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kLongTap_ms = 1000;

/// The light in the knob of a checked marker.
const QRadialGradient& activeEffect(const QColor& color, const QRectF& rect)
{
    static RadialEffect effect;
    return effect.at(rect, {{0.0, color}, {0.2, color}, {1.0, Qt::transparent}});
}

} // namespace

QmMarker::QmMarker(QWidget* parent)
    : QWidget(parent)
    , knob(pointerRect(markergeometry::kWidth, parent->height()))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::ClickFocus);
    setGeometry(0, 0, markergeometry::kWidth, parent->height());
    text.setTextFormat(Qt::PlainText);
    text.prepare(QTransform(), font()); // from now on it knows its size
    parent->installEventFilter(this);
}

QChar QmMarker::symbol() const
{
    return text.text().isEmpty() ? QChar() : text.text().at(0);
}

bool QmMarker::canMove(int dx) const
{
    return movable && markergeometry::staysInside(geometry(), dx, parentWidget()->width());
}

QRect QmMarker::pointerRect(int width, int height)
{
    return markergeometry::pointerRect(width, height);
}

QPoint QmMarker::findNewPos(QResizeEvent* /*event*/) const
{
    return pos();
}

void QmMarker::setChecked(bool check)
{
    if (!checkable || check == marked) {
        return;
    }
    marked = check;
    if (marked) {
        emit checked(this);
    } else {
        emit unchecked(this);
    }
    update();
}

void QmMarker::setCheckable(bool check)
{
    checkable = check;
    if (!checkable) {
        setChecked(false);
    }
    update();
}

void QmMarker::setMovable(bool move)
{
    if (move == movable) {
        return;
    }
    movable = move;
    if (!movable) {
        setCheckable(false);
    }
}

void QmMarker::longTap()
{
    emit longTapped(this);
}

void QmMarker::stopLongTapTimer()
{
    if (longTapTimer != -1) {
        killTimer(longTapTimer);
        longTapTimer = -1;
    }
}

bool QmMarker::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != parentWidget()) {
        return QWidget::eventFilter(watched, event);
    }
    // A parent that was resized while hidden tells it late: what counts is the height it has.
    if (event->type() == QEvent::Resize && parentWidget()->height() != height()) {
        knob = pointerRect(width(), parentWidget()->height());
        const QPoint place = findNewPos(static_cast<QResizeEvent*>(event));
        if (place != pos()) {
            move(place);
        }
        resize(width(), parentWidget()->height());
    }
    return false;
}

void QmMarker::centerOn(double x)
{
    const auto left = markergeometry::leftEdgeFor(x);
    if (left && *left != this->x()) {
        move(*left, 0);
    }
}

void QmMarker::moveBy(int dx)
{
    if (dx != 0 && canMove(dx)) {
        move(x() + dx, 0);
    }
}

void QmMarker::setSymbol(const QChar& character)
{
    text.setText(character.isNull() ? QString() : QString(character));
    update();
}

void QmMarker::setSymbol(const QPixmap& picture)
{
    pixmap = picture;
    update();
}

qint64 QmMarker::now() const
{
    return QDateTime::currentMSecsSinceEpoch();
}

void QmMarker::mousePressEvent(QMouseEvent* event)
{
    if (!knob.contains(event->pos()) && !rect().contains(event->pos())) {
        event->ignore();
        return;
    }
    event->accept();
    pressed = true;
    lastX = event->globalX();
    stopLongTapTimer();
    longTapTimer = startTimer(kLongTap_ms, Qt::PreciseTimer);
    pressTime = now();
    update();
}

void QmMarker::mouseMoveEvent(QMouseEvent* event)
{
    if (!pressed) {
        return;
    }
    // Read first: a slot may move the marker under the finger.
    const int dx = event->globalX() - lastX;
    if (markergeometry::isBelow(event->pos().y(), parentWidget()->height())) {
        emit slideDown(this);
    }
    if ((moving || markergeometry::isDrag(dx)) && canMove(dx)) {
        drag(dx);
    }
}

void QmMarker::drag(int dx)
{
    moveBy(dx);
    lastX += dx;
    moving = true;
    emit movedBy(this, dx);
    stopLongTapTimer();
}

void QmMarker::mouseReleaseEvent(QMouseEvent* event)
{
    pressed = false;
    if (moving) {
        emit moved(this);
        moving = false;
    }
    if (checkable && markergeometry::isTap(now() - pressTime)) {
        setChecked(!marked);
    }
    stopLongTapTimer();
    lastX = event->globalX();
    update();
}

void QmMarker::mouseDoubleClickEvent(QMouseEvent* /*event*/)
{
    emit doubleClicked(this);
}

void QmMarker::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != longTapTimer) {
        QWidget::timerEvent(event);
        return;
    }
    stopLongTapTimer();
    longTap();
}

void QmMarker::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        text.prepare(QTransform(), font());
    }
    QWidget::changeEvent(event);
}

void QmMarker::hideEvent(QHideEvent* event)
{
    stopLongTapTimer();
    pressed = false;
    moving = false;
    QWidget::hideEvent(event);
}

void QmMarker::paintEvent(QPaintEvent* /*event*/)
{
    const QPalette colors = PaletteFactory::getPalette("GenericWindow");
    const QColor& color = colors.color(QPalette::Button);
    QPainter painter(this);
    paintLine(painter, color);
    paintKnob(painter, color);
    // The light of a checked knob has the colour of a button: its letter as well.
    paintSymbol(painter,
                isLit() ? colors.color(QPalette::ButtonText)
                        : palette().color(QPalette::WindowText));
}

void QmMarker::paintLine(QPainter& painter, const QColor& color) const
{
    if (pressed) {
        painter.fillRect(0, 0, width() - 1, height() - 1, markergeometry::glow(width(), color));
    }
    painter.setPen(QPen(pressed ? color.darker(200) : color, 1.0));
    const int column = (width() - 1) / 2;
    painter.drawLine(column, 0, column, height());
}

void QmMarker::paintKnob(QPainter& painter, const QColor& color) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(painter.pen().color(), 2.0));
    if (isLit()) {
        painter.setBrush(activeEffect(color, knob));
    } else {
        painter.setBrush(palette().color(QPalette::Window));
    }
    painter.drawEllipse(knob);
}

void QmMarker::paintSymbol(QPainter& painter, const QColor& ink) const
{
    if (!text.text().isEmpty()) {
        painter.setPen(ink);
        painter.drawStaticText(markergeometry::centred(text.size(), knob), text);
    } else if (!pixmap.isNull()) {
        const QSizeF size = QSizeF(pixmap.size()) / pixmap.devicePixelRatioF();
        painter.drawPixmap(markergeometry::centred(size, knob), pixmap);
    }
}
