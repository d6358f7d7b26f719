#include "events/eventstablemodel.h"

#include "platform/otdr/otdr.h"
#include "platform/otdr/screennumber.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QItemSelectionModel>

#include <cmath>
#include <utility>

// Has to stand outside of any namespace.
static void loadResources()
{
    Q_INIT_RESOURCE(events);
}

namespace Waveform {

namespace {

/// The picture of this name; on a dense screen the one of twice the size that lies beside it.
QPixmap iconFrom(const QString& file)
{
    QString dense = file;
    dense.replace(".png", "@2x.png");
    // Told the format, Qt loads none of its plugins for images, which took longer than all else
    // here.
    QImageReader reader(qApp->devicePixelRatio() > 1.0 ? dense : file, "png");
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImage(reader.read());
}

QString orDash(double value, int decimals)
{
    return std::isfinite(value) ? screennumber::fixed(value, decimals) : QString("-");
}

/// Where an exact zero stands for "none".
QString orDashIfZero(double value)
{
    return value == 0.0 ? QString("-") : orDash(value, 2);
}

} // namespace

EventsTableModel::EventsTableModel(QObject* parent)
    : QAbstractTableModel(parent)
    , selection(new QItemSelectionModel(this, this))
{
    loadResources();
    const std::pair<Event::Type, const char*> files[] = {
        {Event::SpanStart, ":/events/resources/ev-spanstart.png"},
        {Event::Reflective, ":/events/resources/ev-refl.png"},
        {Event::NonReflective, ":/events/resources/ev-nonrefl.png"},
        {Event::Positive, ":/events/resources/ev-positive.png"},
        {Event::Fiber, ":/events/resources/ev-fiber.png"},
        {Event::SpanEnd, ":/events/resources/ev-spanend.png"},
    };
    for (const auto& [type, file] : files) {
        icons.insert(type, iconFrom(file));
    }
}

void EventsTableModel::setReflectogram(Reflectogram newRefl)
{
    show(newRefl);
}

void EventsTableModel::clear()
{
    show(Reflectogram());
}

void EventsTableModel::show(const Reflectogram& newRefl)
{
    // The reset itself would drop the current row without telling those who follow it.
    selection->clear();
    beginResetModel();
    refl = newRefl;
    numberedEvents = refl.getEventList();
    for (int i = numberedEvents.size() - 1; i >= 0; --i) {
        if (numberedEvents.at(i).type == Event::Fiber) {
            numberedEvents.removeAt(i);
        }
    }
    endResetModel();
}

int EventsTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : refl.getEventList().size();
}

int EventsTableModel::columnCount(const QModelIndex& /*parent*/) const
{
    return ColumnCount;
}

QVariant EventsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case Number:
        return "N";
    case Type:
        return tr("Type");
    case Location:
        return tr("Location");
    case Loss:
        return tr("Loss");
    case Reflection:
        return tr("Reflection");
    case Orl:
        return tr("ORL");
    case Attenuation:
        return tr("Attenuation");
    default:
        return {};
    }
}

bool EventsTableModel::isCell(const QModelIndex& index) const
{
    return index.isValid() && index.row() < rowCount() && index.column() < ColumnCount;
}

QVariant EventsTableModel::data(const QModelIndex& index, int role) const
{
    if (!isCell(index)) {
        return {};
    }
    switch (role) {
    case Qt::DecorationRole:
        return index.column() == Type ? icons.value(refl.getEventList().at(index.row()).type)
                                      : QVariant();
    case Qt::TextAlignmentRole:
        return static_cast<int>((index.column() == Type ? Qt::AlignHCenter : Qt::AlignRight)
                                | Qt::AlignVCenter);
    case Qt::DisplayRole:
        return eventValue(index);
    default:
        return {};
    }
}

QVariant EventsTableModel::eventValue(const QModelIndex& index) const
{
    if (!isCell(index)) {
        return {};
    }
    const Event event = refl.getEventList().at(index.row());
    return event.type == Event::Fiber ? sectionValue(event, index.column())
                                      : pointValue(event, index.column());
}

QVariant EventsTableModel::sectionValue(const Event& section, int column) const
{
    switch (column) {
    case Location:
        return Event::isKnown(section.length) ? "( " + orDash(section.length, 2) + " )"
                                              : QString("-");
    case Loss:
        return orDash(section.loss, 2);
    case Reflection:
        return orDashIfZero(section.reflectance);
    case Orl:
        return orDash(section.orl, 2);
    case Attenuation:
        return orDash(section.attenuation(), 3);
    default:
        return {};
    }
}

QVariant EventsTableModel::pointValue(const Event& event, int column) const
{
    switch (column) {
    case Number: {
        const int place = numberedEvents.indexOf(event);
        return place < 0 ? QVariant() : QVariant(1 + place);
    }
    case Location:
        return orDash(
            OTDR::smpl2meters(event.position, refl.dataSpacing(), refl.IOR(), refl.helix()), 2);
    case Loss:
        return event.type == Event::SpanStart || event.type == Event::SpanEnd
            ? QString("-")
            : orDashIfZero(event.loss);
    case Reflection:
        return event.type == Event::Positive || event.type == Event::NonReflective
            ? QString("-")
            : orDashIfZero(event.reflectance);
    default:
        return {};
    }
}

QString EventsTableModel::typeName(const QModelIndex& index) const
{
    if (!isCell(index)) {
        return {};
    }
    switch (refl.getEventList().at(index.row()).type) {
    case Event::SpanStart:
        return tr("Start of the fibre");
    case Event::Reflective:
        return tr("Reflective event");
    case Event::NonReflective:
        return tr("Non-reflective event");
    case Event::Positive:
        return tr("Positive event: the level seems to rise");
    case Event::Fiber:
        return tr("Fibre section");
    case Event::SpanEnd:
        return tr("End of the fibre");
    }
    return {};
}

bool EventsTableModel::isBound(const QModelIndex& index) const
{
    return isCell(index) && index.column() == Reflection
        && refl.getEventList().at(index.row()).saturated && eventValue(index).toString() != "-";
}

} // namespace Waveform
