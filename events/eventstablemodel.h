#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/reflectogram.h"

#include <QAbstractTableModel>
#include <QList>
#include <QMap>
#include <QPixmap>

class QItemSelectionModel;

namespace Waveform {

/// The events of a trace, one row each: what was found on the fibre, numbered, and the sections
/// between, which have no number and stand with their length in parentheses.
class EventsTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Number,
        Type,
        Location,
        Loss,
        Reflection,
        Orl,
        Attenuation,
        ColumnCount
    };

    explicit EventsTableModel(QObject* parent = nullptr);

    /// Shows the events of this trace; to be called again when they change.
    void setReflectogram(Reflectogram refl);
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// The text of a cell; nothing where it has none. A value that is not known is "-".
    [[nodiscard]] QVariant eventValue(const QModelIndex& index) const;

    /// What the icon of a row says, in words. Empty for an invalid index.
    [[nodiscard]] QString typeName(const QModelIndex& index) const;

    /// Whether a cell holds a reflection that saturated the receiver: as much was reflected, or
    /// more.
    [[nodiscard]] bool isBound(const QModelIndex& index) const;

    /// The selection that goes with the table, for its view and for who follows the current event.
    /// Other events have other rows: it is emptied, and says so, before each reset.
    [[nodiscard]] QItemSelectionModel* selectionModel() const { return selection; }

private:
    [[nodiscard]] bool isCell(const QModelIndex& index) const;
    [[nodiscard]] QVariant sectionValue(const Event& section, int column) const;
    [[nodiscard]] QVariant pointValue(const Event& event, int column) const;
    void show(const Reflectogram& newRefl);

    Reflectogram refl;
    QMap<Event::Type, QPixmap> icons;
    QList<Event> numberedEvents; ///< all but the fibre sections; only to number the rows
    QItemSelectionModel* selection;
};

} // namespace Waveform
