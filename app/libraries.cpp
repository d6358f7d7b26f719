#include "app/libraries.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <gnu/libc-version.h>
#include <link.h>

namespace {

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Libraries)
};

int collect(dl_phdr_info* info, std::size_t /*size*/, void* files)
{
    if (info->dlpi_name != nullptr && *info->dlpi_name != '\0') {
        // The loader knows the library by a link; what that leads to has the whole version.
        const QFileInfo file(QFile::decodeName(info->dlpi_name));
        static_cast<QStringList*>(files)->append(QFileInfo(file.canonicalFilePath()).fileName());
    }
    return 0;
}

/// The version of the library in this process whose file name begins so.
QString loadedVersion(const QString& beginning)
{
    QStringList files;
    ::dl_iterate_phdr(&collect, &files);
    for (const QString& file : qAsConst(files)) {
        if (file.startsWith(beginning)) {
            return versionInName(file);
        }
    }
    return {};
}

} // namespace

QString versionInName(const QString& fileName)
{
    static const QRegularExpression behind(R"(\.so\.(\d+(\.\d+)*)$)");
    static const QRegularExpression before(R"(-(\d+(\.\d+)*)\.so$)");
    for (const QRegularExpression& form : {behind, before}) {
        const QRegularExpressionMatch match = form.match(fileName);
        if (match.hasMatch()) {
            return match.captured(1);
        }
    }
    return {};
}

QVector<Library> libraries()
{
    return {
        {"Qt", qVersion(), Words::tr("LGPL 3 or GPL 2"), Words::tr("windows, files, processes")},
        {"Qwt", loadedVersion("libqwt"), Words::tr("Qwt License 1.0 (LGPL 2.1 with exceptions)"),
         Words::tr("the chart")},
        {"Grantlee", loadedVersion("libGrantlee_Templates"), Words::tr("LGPL 2.1 or later"),
         Words::tr("templates of reports, in the report program")},
        {"Guidelines Support Library",
         {},
         Words::tr("MIT"),
         Words::tr("views of samples, built in")},
        {"libstdc++", loadedVersion("libstdc++"),
         Words::tr("GPL 3 or later with the GCC Runtime Library Exception"),
         Words::tr("the language")},
        {"GNU C Library", QString::fromLatin1(::gnu_get_libc_version()),
         Words::tr("LGPL 2.1 or later"), Words::tr("the system")},
    };
}
