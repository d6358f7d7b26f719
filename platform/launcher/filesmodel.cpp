#include "platform/launcher/filesmodel.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QTextDocument>

#include <algorithm>

FilesModel::FilesModel(const QStringList& nameFilters, int atMost, QObject* parent)
    : QAbstractTableModel(parent)
    , filters(nameFilters)
    , atMost(atMost)
{
}

int FilesModel::left() const
{
    return std::max(0, atMost - checkedFiles.size());
}

void FilesModel::setDirectory(const QString& dir)
{
    beginResetModel();
    files = QDir(dir).entryInfoList(filters, QDir::Files | QDir::Readable, QDir::Name);
    // Not by QDir, which would read the dates anew for each comparison.
    std::stable_sort(files.begin(), files.end(), [](const QFileInfo& a, const QFileInfo& b) {
        return a.lastModified() > b.lastModified();
    });
    endResetModel();
}

int FilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : files.size();
}

int FilesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FilesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= files.size()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return text(files.at(index.row()), index.column());
    case Qt::ToolTipRole:
        // A name that looks like a tag would be taken for one.
        return Qt::convertFromPlainText(files.at(index.row()).absoluteFilePath());
    case Qt::CheckStateRole:
        if (index.column() == Name) {
            return isChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
        }
        return {};
    case Qt::TextAlignmentRole:
        return static_cast<int>((index.column() == Size ? Qt::AlignRight : Qt::AlignLeft)
                                | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant FilesModel::text(const QFileInfo& file, int column) const
{
    switch (column) {
    case Name:
        return file.fileName();
    case Date:
        return file.lastModified().toString(QStringLiteral("dd.MM.yyyy hh:mm"));
    case Size:
        return QLocale().formattedDataSize(file.size(), 0, QLocale::DataSizeSIFormat);
    default:
        return {};
    }
}

bool FilesModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole || !mayBeChecked(index.row())) {
        return false;
    }
    const QString path = files.at(index.row()).absoluteFilePath();
    checkedFiles.removeAll(path);
    if (value.toInt() == Qt::Checked) {
        if (atMost == 1) {
            checkedFiles.clear();
        }
        checkedFiles << path;
    }
    // Others may have come free, or not be free any more.
    emit dataChanged(this->index(0, 0), this->index(rowCount() - 1, ColumnCount - 1));
    emit checkedChanged();
    return true;
}

QVariant FilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return static_cast<int>((section == Size ? Qt::AlignRight : Qt::AlignLeft)
                                | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case Name:
        return tr("Name");
    case Date:
        return tr("Date");
    case Size:
        return tr("Size");
    default:
        return {};
    }
}

Qt::ItemFlags FilesModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    if (!mayBeChecked(index.row())) {
        return Qt::ItemNeverHasChildren;
    }
    return Qt::ItemNeverHasChildren | Qt::ItemIsEnabled | Qt::ItemIsSelectable
        | Qt::ItemIsUserCheckable;
}

bool FilesModel::isChecked(int row) const
{
    return checkedFiles.contains(files.at(row).absoluteFilePath());
}

bool FilesModel::mayBeChecked(int row) const
{
    return row < files.size() && (isChecked(row) || left() > 0 || atMost == 1);
}
