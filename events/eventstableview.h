#pragma once

#include <QTableView>

namespace Waveform {

class EventsTableModel;

/// The events of a trace as a table to be read and tapped; one row at a time is chosen.
class EventsTableView : public QTableView
{
    Q_OBJECT

public:
    explicit EventsTableView(QWidget* parent = nullptr);

    /// Shows the model; an events table's own selection comes with it.
    void setModel(QAbstractItemModel* model) override;

    /// As many whole rows as a page has room for beside a plot.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    /// The chosen row stays in view where other panels leave less room.
    void resizeEvent(QResizeEvent* event) override;

    /// Says in words what the icon, or the sign before a number, under the pointer means.
    bool viewportEvent(QEvent* event) override;

private:
    [[nodiscard]] static QString helpFor(const EventsTableModel& events, const QModelIndex& index);
};

} // namespace Waveform
