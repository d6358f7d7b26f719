#pragma once

#include "platform/launcher/filedialog.h"

#include <QDialog>

class FilesModel;
class QButtonGroup;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QTreeView;

/// Lets the user choose files from a few places.
///
/// A touch on a row checks it; a double click, or Enter while nothing is checked, opens the row at
/// once.
class OpenDialog : public QDialog
{
    Q_OBJECT

public:
    OpenDialog(const FileDialog::Request& request, QWidget* parent);

    /// Paths, in the order in which they were chosen; none before it was accepted.
    [[nodiscard]] QStringList files() const;

    /// The one that is shown.
    [[nodiscard]] QString directory() const { return shownDir; }

    /// Shows a directory at first, as one more place where it is none of them. One that is gone is
    /// left.
    void startAt(const QString& dir);

public slots:
    void accept() override;

protected:
    /// Lets Tab reach every place: in a group Qt leaves it the one that is checked.
    bool focusNextPrevChild(bool next) override;

private:
    QTreeView* newList();
    QHBoxLayout* newFoot();
    void addPlace(const FileDialog::Place& place);
    void showPlace(const QString& dir);
    void askPlace();
    void openRow(const QModelIndex& index);
    void countLeft();

    FilesModel* model;
    QHBoxLayout* placesRow;
    QButtonGroup* places;
    QTreeView* list;
    QLabel* empty;
    QLabel* left;
    QPushButton* openButton;
    QString shownDir;
    QStringList chosen; ///< when it was accepted: the end of a double click still comes to the list
};
