#pragma once

#include <QString>
#include <QVector>

/// A library of others that the application uses.
struct Library
{
    QString name;
    QString version; ///< of what is loaded in this process; empty where nothing of it is
    QString licence;
    QString purpose;
};

/// Those that the application is built on; the plugin's are loaded once it is.
[[nodiscard]] QVector<Library> libraries();

/// The version that the name of a library file ends with: "6.1.4" of "libqwt-qt5.so.6.1.4", "12" of
/// "libexample-12.so"; empty where there is none.
[[nodiscard]] QString versionInName(const QString& fileName);
