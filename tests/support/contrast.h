#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace testing_support {

/// Relative luminance of an sRGB colour, WCAG 2.1.
inline double luminance(const QColor& colour)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

/// Contrast ratio of two colours in either order, WCAG 2.1: from 1 to 21.
inline double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace testing_support
