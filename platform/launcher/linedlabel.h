#pragma once

#include <QLabel>

/// A title with a line behind it up to the right edge, above what it names.
class LinedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit LinedLabel(const QString& text, QWidget* parent = nullptr);

    /// Puts a widget under a lined label with its what's-this text. \return both together, without
    /// a parent; the widget belongs to it
    [[nodiscard]] static QWidget* createLabeledWidget(QWidget* widget);

protected:
    void paintEvent(QPaintEvent* event) override;
};
