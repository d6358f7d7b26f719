#include "app/missingprograms.h"

#include "platform/launcher/programs.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStringList>

namespace {

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(MissingPrograms)
};

} // namespace

QString missingPrograms()
{
    const struct
    {
        QString path;
        QString consequence;
    } programs[] = {
        {programPath("wfgather"), Words::tr("Nothing can be measured: the program %1 is missing.")},
        {programPath("wfevfind"),
         Words::tr("No events can be found in a file: the program %1 is missing.")},
        {programPath("otdrreport"),
         Words::tr("No reports can be written: the program %1 is missing.")},
    };

    QStringList missing;
    for (const auto& program : programs) {
        const QFileInfo file(program.path);
        if (!file.isFile() || !file.isExecutable()) {
            missing << program.consequence.arg(program.path);
        }
    }
    return missing.join('\n');
}
