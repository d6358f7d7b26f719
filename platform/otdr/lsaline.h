#pragma once

#include "platform/otdr/reflectogram.h"

#include <QLineF>

/// A least-squares line through a stretch of a trace, refitted at a cost that does not depend on
/// its length.
class LSALine // NOLINT(readability-identifier-naming): a given name
{
public:
    LSALine(double x1_m, double x2_m, const Reflectogram& refl);

    /// Refits between two distances, in either order: the line from (x1, level) to (x2, level).
    /// With fewer than two samples between them the levels of the trace itself.
    QLineF updateLineX1X2(double x1_m, double x2_m);

    [[nodiscard]] QLineF line() const { return current; }

private:
    Reflectogram refl;
    QLineF current;
};
