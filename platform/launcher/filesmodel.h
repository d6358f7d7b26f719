#pragma once

#include <QAbstractTableModel>
#include <QFileInfoList>
#include <QStringList>

/// The files of a directory, the newest first, of which some may be checked.
///
/// What is checked stays so when another directory is shown. Once all that may be are, the others
/// are disabled; where one alone may be, checking another takes its place.
class FilesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Name,
        Date,
        Size,
        ColumnCount
    };

    /// \param nameFilters as QDir takes them ("*.sor"); capitals do not matter
    FilesModel(const QStringList& nameFilters, int atMost, QObject* parent = nullptr);

    /// Paths, in the order in which they were checked.
    [[nodiscard]] QStringList checked() const { return checkedFiles; }

    [[nodiscard]] int left() const; ///< so many may still be checked

    /// Shows the files of a directory; none where it cannot be read.
    void setDirectory(const QString& dir);

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    void checkedChanged();

private:
    [[nodiscard]] bool isChecked(int row) const;
    [[nodiscard]] bool mayBeChecked(int row) const;
    [[nodiscard]] QVariant text(const QFileInfo& file, int column) const;

    QStringList filters;
    int atMost;
    QFileInfoList files;
    QStringList checkedFiles;
};
