#pragma once

#include <QWidget>

class QHBoxLayout;

/// The row of controls at the bottom of a measurement window: widgets from the left, the action at
/// the right end.
class ControlBottomPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ControlBottomPanel(QWidget* parent = nullptr);

    /// Puts a widget after those on the left, or before them. The panel takes it over.
    /// \param width least width, pixels; 0 leaves it to the widget
    /// \param stretch share of the free width, as in QBoxLayout
    void addWidget(QWidget* widget, int width, int stretch, Qt::Alignment alignment = {});
    void prependWidget(QWidget* widget, int width, int stretch, Qt::Alignment alignment = {});

    /// Adds a gap of so many pixels after the widgets on the left; 0: all the free width.
    void addSpacer(int width);

    /// Puts a widget at the right end, or aligns the one that is there anew.
    void setActionWidget(QWidget* widget, Qt::Alignment alignment = {});

private:
    void insertWidget(int index, QWidget* widget, int width, int stretch, Qt::Alignment alignment);

    QHBoxLayout* items;
    QHBoxLayout* actions;
};
