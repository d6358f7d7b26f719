#pragma once

#include <string>

namespace gather {

enum class Form
{
    Run,
    ShowHelp,
    ShowVersion,
    Wrong
};

/// What the command line asks for.
struct CommandLine
{
    Form form = Form::Wrong;
    std::string snapshot; ///< names as the system gave them, byte for byte
    std::string settings;
    std::string message; ///< for ShowHelp the help, for Wrong what is wrong
};

/// Never fails: a wrong command line is an answer too.
[[nodiscard]] CommandLine parseCommandLine(int argc, const char* const* argv);

} // namespace gather
