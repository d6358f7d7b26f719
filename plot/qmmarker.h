#pragma once

#include "plot/markergeometry.h"

#include <QPixmap>
#include <QStaticText>
#include <QWidget>

/// A thin vertical line over the height of its parent, with a round knob near the bottom by which a
/// finger drags it.
///
/// A short tap on the knob checks the marker or takes the check away; checked markers move together
/// where a QmMovingMarkers watches them. The marker follows the height of its parent and never
/// leaves it sideways by itself.
class QmMarker : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool checkable READ isCheckable WRITE setCheckable)
    Q_PROPERTY(bool checked READ isChecked WRITE setChecked)
    Q_PROPERTY(bool movable READ isMovable WRITE setMovable)
    Q_PROPERTY(QChar symbol READ symbol WRITE setSymbol)
    Q_PROPERTY(QPixmap symbolPixmap READ symbolPixmap WRITE setSymbol)

public:
    /// Column of the line inside the marker.
    static constexpr int markerBorder // NOLINT(readability-identifier-naming)
        = markergeometry::kLine;

    /// At the left edge of the parent, as high as it.
    explicit QmMarker(QWidget* parent);

    [[nodiscard]] bool isCheckable() const { return checkable; }

    [[nodiscard]] bool isChecked() const { return marked; }

    [[nodiscard]] bool isMovable() const { return movable; }

    [[nodiscard]] QChar symbol() const; ///< null where there is none

    [[nodiscard]] const QPixmap& symbolPixmap() const { return pixmap; }

    /// Whether the marker may go so many pixels aside: it is movable and stays inside its parent.
    [[nodiscard]] virtual bool canMove(int dx) const;

    /// The knob of a marker of that size.
    [[nodiscard]] static QRect pointerRect(int width, int height);

    /// Where the marker goes when its parent is resized: it stays.
    [[nodiscard]] virtual QPoint findNewPos(QResizeEvent* event) const;

    /// Without effect where the marker is not checkable.
    void setChecked(bool check);

    /// What is no longer checkable keeps its check.
    void setCheckable(bool check);

    /// What is no longer movable is no longer checkable either.
    void setMovable(bool move);

    /// A finger rested on the marker for a second.
    virtual void longTap();
    void stopLongTapTimer();

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    /// Puts the line at a column of the parent, inside it or not.
    void centerOn(double x);

    /// Goes aside as far as told, or not at all where it cannot.
    void moveBy(int dx);

    /// Shown in the knob, before any pixmap; a null character takes it away.
    void setSymbol(const QChar& character);
    void setSymbol(const QPixmap& picture);

signals:
    void checked(QmMarker* marker);
    void unchecked(QmMarker* marker);
    void moved(QmMarker* marker); ///< a drag has ended
    void movedBy(QmMarker* marker, int dx); ///< a drag went on by so many pixels
    void longTapped(QmMarker* marker);
    void slideDown(QmMarker* marker); ///< the finger is below the parent
    void doubleClicked(QmMarker* marker);

protected:
    /// Milliseconds since the epoch, by which the length of a tap is told.
    [[nodiscard]] virtual qint64 now() const;

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;

    /// A finger on a marker that goes away is let go: no long tap, no drag.
    void hideEvent(QHideEvent* event) override;

private:
    void drag(int dx);
    void paintLine(QPainter& painter, const QColor& color) const;
    void paintKnob(QPainter& painter, const QColor& color) const;
    void paintSymbol(QPainter& painter, const QColor& ink) const;

    /// Whether the knob shows the light of a checked marker.
    [[nodiscard]] bool isLit() const { return checkable && marked; }

    bool moving = false;
    bool movable = true;
    bool pressed = false;
    int lastX = 0; ///< of the finger, on the screen
    int longTapTimer = -1; ///< -1 where none runs
    QRect knob;
    QPixmap pixmap;
    QStaticText text;
    bool checkable = true;
    bool marked = false;
    qint64 pressTime = 0;
};
