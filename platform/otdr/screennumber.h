#pragma once

#include <QLocale>
#include <QString>

/// Numbers as the user reads them. What goes into a file, a message, the configuration or a report
/// is written with QString::number(), which knows no locale.
namespace screennumber {

/// The user's locale, without separators of thousands: a figure of a measurement is one word.
[[nodiscard]] QLocale locale();

/// In fixed notation.
[[nodiscard]] QString fixed(double value, int decimals);

/// In fixed or in exponential notation, whichever is shorter, with six digits that count.
[[nodiscard]] QString general(double value);

/// A number that stands in the code with a point, such as "2.5".
[[nodiscard]] QString fromCode(const QString& number);

} // namespace screennumber
