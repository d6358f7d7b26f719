#pragma once

#include <Qt>

namespace testing_support {

constexpr Qt::Alignment kRight = Qt::AlignRight | Qt::AlignVCenter;
constexpr Qt::Alignment kLeft = Qt::AlignLeft | Qt::AlignVCenter;

} // namespace testing_support
