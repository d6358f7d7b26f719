#pragma once

#include <QString>

class Reflectogram;

/// The events of a trace as a plain text table, a line each, with the trace's name, its figures and
/// the units above. What is not known is "-".
[[nodiscard]] QString eventsText(const Reflectogram& refl);
