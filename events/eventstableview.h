#pragma once

#include <QTableView>

namespace Waveform {

/// The events of a trace as a table to be read and tapped; one row at a time is chosen.
class EventsTableView : public QTableView
{
    Q_OBJECT

public:
    explicit EventsTableView(QWidget* parent = nullptr);

    /// Shows the model; an events table's own selection comes with it.
    void setModel(QAbstractItemModel* model) override;

protected:
    /// Says in words what the icon under the pointer means.
    bool viewportEvent(QEvent* event) override;
};

} // namespace Waveform
