#pragma once

#include <QLineF>
#include <QWidget>

/// A red straight line over its parent; touches go through it. As large as the line and a small
/// margin.
class LineWidget : public QWidget
{
    Q_OBJECT

public:
    explicit LineWidget(QWidget* parent);
    LineWidget(const QLineF& line, QWidget* parent);

    /// The line in the widget's own pixels.
    [[nodiscard]] const QLineF& line() const { return drawn; }

    /// Draws another line, given in pixels of the parent.
    virtual void setLine(const QLineF& line);

protected:
    /// Draws the line; one without length is none.
    void paintEvent(QPaintEvent* event) override;

private:
    QLineF drawn;
};
