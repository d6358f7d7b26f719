#pragma once

#include <QString>

#include <string>

namespace otdrreport {

/// A text as a page may carry it: what is no printable character (controls, direction marks, half
/// pairs) is a blank, runs of blanks are one.
[[nodiscard]] QString printable(const QString& text);

/// The same for a string of a trace file (Latin-1).
[[nodiscard]] QString printable(const std::string& text);

/// A number with so many decimals, a true minus sign, and a thin blank between thousands; a dash
/// where it is not known.
[[nodiscard]] QString shown(double value, int decimals);

/// What stands for a value that is not known.
[[nodiscard]] QString dash();

} // namespace otdrreport
