#pragma once

#include "tests/support/tracefiles.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace wfevfind_test {

struct Outcome
{
    int code = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs the event finder to its end; in another locale than the usual where one is named.
Outcome run(const QStringList& arguments, const char* locale = nullptr);

/// What a line of the output says.
struct Found
{
    QString kind;
    long sample = 0;
};

/// The lines for a file that can be searched; each has to be just so.
QList<Found> linesOf(const QString& path);

/// The kinds in order.
QString kindsOf(const QList<Found>& lines);

/// The object for a file that can be searched.
QJsonObject jsonOf(const QString& path);

/// One line on standard error with this part, nothing else.
void expectFailure(const Outcome& outcome, int code, const char* part);

/// A connector, a splice, a rise and an end.
testing_support::TraceBuilder link();

/// The same samples in a trace file: every 10 ns, a pulse of 100 ns.
testing_support::SorSketch sorOf(const testing_support::TraceBuilder& builder);

} // namespace wfevfind_test
