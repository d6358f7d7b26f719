#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class QWidget;

/// The instrument's file picker.
class FileDialog
{
public:
    /// A directory that is offered, under the name that the user knows it by.
    struct Place
    {
        QString name;
        QString dir;
    };

    struct Request
    {
        QString title;
        QVector<Place> places; ///< the first is shown at first; one at least
        QString filter; ///< a plain extension (".sor"), or as QFileDialog takes it
        int atMost = 1; ///< so many files may be chosen

        /// The key in section "paths" of the launcher's configuration under which the directory of
        /// the last choice is kept, to be shown at first the next time; empty for none.
        QString rememberedAs = {};
    };

    /// Asks for a file to open; empty where the user chose none.
    /// \param filter a plain extension (".sor"), or a filter as QFileDialog takes it ("Traces
    /// (*.sor)")
    static QString getOpenFileName(QWidget* parent, const QString& title, const QString& dir,
                                   const QString& filter);

    /// Asks for files to open, in the order in which they were chosen. Without a parent the dialog
    /// stands over the active window.
    static QStringList getOpenFileNames(QWidget* parent, const Request& request);
};
