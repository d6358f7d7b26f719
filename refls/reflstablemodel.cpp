#include "refls/reflstablemodel.h"

#include "platform/launcher/palettefactory.h"
#include "platform/otdr/screennumber.h"

#include <QDateTime>
#include <QFileInfo>
#include <QFuture>
#include <QFutureWatcher>
#include <QtConcurrentRun>

#include <algorithm>
#include <cmath>

namespace Waveform {

namespace {

const QColor colors[4] = {Qt::darkBlue, Qt::black, Qt::darkMagenta, Qt::darkGreen};

// Never wound back: the colour of a new trace follows how many were added since the start.
unsigned int color_idx = 0; // NOLINT(readability-identifier-naming): a given name

QString twoDecimals(double value)
{
    return std::isnan(value) ? QString("-") : screennumber::fixed(value, 2);
}

QString dateText(const Reflectogram& refl)
{
    const auto sor = refl.sorData();
    if (!sor || !sor->hasFxdParams()) {
        return "-";
    }
    const qint64 milliseconds = sor->fxdParams().dateTime * 1000;
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toUTC().toString("dd.MM.yyyy hh:mm");
}

} // namespace

ReflsTableModel::ReflsTableModel(QObject* parent)
    : QAbstractTableModel(parent)
    , mainRowBrush(
          PaletteFactory::getPalette("GenericWindow").color(QPalette::Current, QPalette::Button))
{
}

Reflectogram ReflsTableModel::mainRefl() const
{
    return traces.value(mainIndex);
}

QColor ReflsTableModel::getColor(const Reflectogram& refl) const
{
    const int row = traces.indexOf(refl);
    return row < 0 ? colors.value(0) : colors.at(row);
}

QList<Reflectogram> ReflsTableModel::association(Reflectogram refl) const
{
    for (int i = associations.size() - 1; i >= 0; --i) {
        if (associations.at(i).contains(refl)) {
            return associations.at(i);
        }
    }
    return {refl};
}

bool ReflsTableModel::isNewRefl(QString file) const
{
    return std::none_of(traces.begin(), traces.end(),
                        [&](const Reflectogram& refl) { return refl.fileName() == file; });
}

void ReflsTableModel::addRefl(Reflectogram refl)
{
    traces << refl;
    colors << Waveform::colors[color_idx & 3U];
    ++color_idx;
    reset();
    emit resize();
    setMainRefl(refl);
}

void ReflsTableModel::addReflFromFile(QString file)
{
    if (!isNewRefl(file)) {
        return;
    }
    const Reflectogram refl(file);
    if (refl.isValid()) {
        addRefl(refl);
    }
}

void ReflsTableModel::setMainRefl(int row)
{
    if (row == mainIndex) {
        return;
    }
    mainIndex = row;
    emit mainReflChanged(mainRefl());
    reset();
}

void ReflsTableModel::setMainRefl(Reflectogram refl)
{
    setMainRefl(traces.indexOf(refl));
}

void ReflsTableModel::deleteRefl(int row)
{
    if (row >= 0 && row < traces.size()) {
        deleteRefl(traces.at(row));
    }
}

void ReflsTableModel::deleteRefl(const Reflectogram& refl)
{
    // A copy: refl may lie in the list that shrinks below.
    const Reflectogram gone = refl; // NOLINT(performance-unnecessary-copy-initialization)
    const int row = traces.indexOf(gone);
    if (row < 0) {
        return;
    }
    const bool wasMain = mainIndex == row;
    traces.removeAt(row);
    colors.removeAt(row);
    if (traces.isEmpty()) {
        mainIndex = -1;
        emit mainReflChanged(Reflectogram());
    } else {
        // The mark stays on the row number, not on the trace.
        if (mainIndex >= traces.size()) {
            --mainIndex;
        }
        if (wasMain) {
            emit mainReflChanged(mainRefl());
        }
    }
    forgetAssociations(gone);
    reset();
    emit reflDeleted(gone);
}

void ReflsTableModel::deleteAllRefls()
{
    traces.clear();
    colors.clear();
    associations.clear();
    mainIndex = -1;
    emit allReflsDeleted();
    reset();
}

void ReflsTableModel::forgetAssociations(const Reflectogram& refl)
{
    for (int i = associations.size() - 1; i >= 0; --i) {
        associations[i].removeAll(refl);
        if (associations.at(i).size() <= 1) {
            associations.removeAt(i);
        }
    }
}

void ReflsTableModel::associate(Reflectogram refl, Reflectogram target)
{
    for (const QList<Reflectogram>& group : qAsConst(associations)) {
        if (group.contains(target)) {
            return; // a group that exists is left as it is
        }
    }
    associations.append({target, refl});
}

void ReflsTableModel::update()
{
    reset();
}

void ReflsTableModel::reset()
{
    beginResetModel();
    endResetModel();
}

int ReflsTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : traces.size();
}

int ReflsTableModel::columnCount(const QModelIndex& /*parent*/) const
{
    return ColumnCount;
}

QVariant ReflsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        switch (section) {
        case Name:
            return tr("Name");
        case Date:
            return tr("Date");
        case Wavelength:
            return QString(QChar(0x03BB));
        case Distance:
            return tr("Distance");
        case Pulse:
            return tr("Pulse");
        case Orl:
            return tr("ORL");
        case TotalLoss:
            return tr("Total loss");
        default:
            break;
        }
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

QVariant ReflsTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount()) {
        return {};
    }
    switch (role) {
    case Qt::TextAlignmentRole:
        return static_cast<int>((index.column() <= Date ? Qt::AlignHCenter : Qt::AlignRight)
                                | Qt::AlignVCenter);
    case Qt::DisplayRole:
        return displayValue(traces.at(index.row()), index.column());
    case Qt::ForegroundRole:
        return foreground(index.row(), index.column());
    case Qt::BackgroundRole:
        return index.row() == mainIndex ? QVariant(mainRowBrush) : QVariant();
    default:
        return {};
    }
}

QVariant ReflsTableModel::foreground(int row, int column) const
{
    if (row == mainIndex) {
        return QBrush(Qt::white);
    }
    return column == Name ? QVariant(QBrush(colors.at(row))) : QVariant();
}

QVariant ReflsTableModel::displayValue(const Reflectogram& refl, int column) const
{
    switch (column) {
    case Name:
        return QFileInfo(refl.fileName()).baseName();
    case Date:
        return dateText(refl);
    case Wavelength:
        return refl.wavelength();
    case Distance:
        return refl.endOfFiber() < 0 ? QString("-") : screennumber::fixed(refl.endOfFiber(), 2);
    case Pulse:
        return refl.pulseWidth();
    case Orl:
        return orlText(refl);
    case TotalLoss: {
        const auto sor = refl.sorData();
        return sor && sor->keyEvents() ? twoDecimals(sor->keyEvents()->totalLoss) : QString("-");
    }
    default:
        return {};
    }
}

QString ReflsTableModel::orlText(const Reflectogram& refl) const
{
    const auto sor = refl.sorData();
    if (sor && sor->keyEvents()) {
        return twoDecimals(sor->keyEvents()->orl);
    }
    if (refl.isValid()) {
        computeFigures(refl);
    }
    return "-";
}

void ReflsTableModel::computeFigures(const Reflectogram& refl) const
{
    Reflectogram copy = refl;
    auto* watcher = new QFutureWatcher<void>; // deletes itself when the computation ends
    connect(watcher, SIGNAL(finished()), this, SLOT(reset()));
    connect(watcher, SIGNAL(finished()), watcher, SLOT(deleteLater()));
    watcher->setFuture(QtConcurrent::run([copy]() mutable { copy.fillOrl(); }));
}

} // namespace Waveform
