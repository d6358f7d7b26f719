#pragma once

#include <QString>

namespace otdrreport {

enum class Task
{
    Write,
    ShowHelp,
    ShowVersion,
    Wrong
};

/// What the command line asks for.
struct Request
{
    Task task = Task::Wrong;
    QString trace; ///< the trace file
    QString html; ///< the report to write
    QString templateFile; ///< empty for the built-in template
    QString message; ///< for ShowHelp the help, for Wrong what is wrong

    /// Where the picture goes: beside the report, under its name, as .png.
    [[nodiscard]] QString picture() const;
};

/// Never fails: a wrong command line is an answer too.
///
/// One whose report or picture would replace the trace file, the template or each other is wrong.
[[nodiscard]] Request parseCommandLine(int argc, const char* const* argv);

} // namespace otdrreport
