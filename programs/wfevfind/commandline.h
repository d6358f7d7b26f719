#pragma once

#include <string>

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
    std::string file; ///< name as the system gave it, byte for byte
    std::string message; ///< for ShowHelp the help, for Wrong what is wrong
};

/// Never fails: a wrong command line is an answer too.
[[nodiscard]] Request parseCommandLine(int argc, const char* const* argv);

} // namespace evfind
