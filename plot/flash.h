#pragma once

#include <QPixmap>
#include <QRadialGradient>
#include <QWidget>

/// A round translucent light that shows where the screen was touched. Further touches go through
/// it.
class Flash : public QWidget
{
    Q_OBJECT

public:
    explicit Flash(QWidget* parent);

    /// The light that fills a square: strongest in its centre, nothing at half its width.
    [[nodiscard]] QRadialGradient pressEffect(const QRectF& rect) const;

    /// Puts the middle of the light at a point of the parent.
    void centerOn(const QPoint& p);
    void moveByX(int dx);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPixmap pixmap; ///< the light, ready to be drawn
};
