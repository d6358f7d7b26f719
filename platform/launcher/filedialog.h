#pragma once

#include <QString>

class QWidget;

/// The instrument's file picker.
class FileDialog
{
public:
    /// Asks for a file to open; empty where the user chose none.
    /// \param filter a plain extension (".sor"), or a filter as QFileDialog takes it ("Traces
    /// (*.sor)")
    static QString getOpenFileName(QWidget* parent, const QString& title, const QString& dir,
                                   const QString& filter);
};
