#pragma once

#include <string>
#include <vector>

namespace evfind {

enum class Form
{
    Lines,
    Json,
    ShowHelp,
    ShowVersion,
    Wrong
};

/// What the command line asks for.
struct Request
{
    Form form = Form::Wrong;
    std::vector<std::string> files; ///< names as the system gave them, byte for byte; one for Lines
    std::string message; ///< for ShowHelp the help, for Wrong what is wrong
};

/// Never fails: a wrong command line is an answer too.
[[nodiscard]] Request parseCommandLine(int argc, const char* const* argv);

} // namespace evfind
