#pragma once

#include "platform/otdr/reflectogram.h"

#include <QAbstractTableModel>
#include <QBrush>
#include <QColor>
#include <QList>

namespace Waveform {

/// The traces that are loaded at the same time, one row each, with one of them the main one.
///
/// Gives every trace its drawing colour and records which traces were measured together. How many
/// traces may be loaded is decided before they come here.
class ReflsTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Name,
        Date,
        Wavelength,
        Distance,
        Pulse,
        Orl,
        TotalLoss,
        ColumnCount
    };

    explicit ReflsTableModel(QObject* parent = nullptr);

    [[nodiscard]] const QList<Reflectogram>& refls() const { return traces; }

    /// The main trace; an empty one where there is none.
    [[nodiscard]] Reflectogram mainRefl() const;

    /// The drawing colour of a trace; that of the first trace for one that is not in the set.
    [[nodiscard]] QColor getColor(const Reflectogram& refl) const;

    /// The traces that belong together with this one, itself included.
    [[nodiscard]] QList<Reflectogram> association(Reflectogram refl) const;

    /// False where a trace of exactly this file name is in the set.
    [[nodiscard]] bool isNewRefl(QString file) const;

    /// Appends a trace; it becomes the main one.
    void addRefl(Reflectogram refl);

    /// Takes a trace out of the set; does nothing for one that is not in it. The main trace is then
    /// the one in the row of the old, or the last.
    void deleteRefl(const Reflectogram& refl);

    /// Computes end-to-end loss and return loss of a trace in the background; the table shows them
    /// when that is done.
    void computeFigures(const Reflectogram& refl) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

public slots:
    void deleteAllRefls();
    void deleteRefl(int row);
    void setMainRefl(int row);
    void setMainRefl(Reflectogram refl);

    /// What is known of the traces has changed.
    void update();

    /// Opens a file and adds its trace; does nothing for a file that is loaded already or is no
    /// trace.
    void addReflFromFile(QString file);

    /// Records that refl was measured together with target. Once target is in a group, nothing
    /// changes.
    void associate(Reflectogram refl, Reflectogram target);

signals:
    void resize(); ///< the columns may want other widths
    void reflDeleted(Reflectogram refl); ///< it is no longer in the set
    void mainReflChanged(Reflectogram refl); ///< an empty one where there is none
    void allReflsDeleted();

private slots:
    void reset();

private:
    [[nodiscard]] QVariant displayValue(const Reflectogram& refl, int column) const;
    [[nodiscard]] QString orlText(const Reflectogram& refl) const;
    [[nodiscard]] QVariant foreground(int row, int column) const;
    void forgetAssociations(const Reflectogram& refl);

    QList<Reflectogram> traces;
    QList<QColor> colors; ///< of the traces, row by row
    int mainIndex = -1;
    QBrush mainRowBrush;
    QList<QList<Reflectogram>> associations;
};

} // namespace Waveform
