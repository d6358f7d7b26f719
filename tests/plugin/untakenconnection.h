#pragma once

namespace testing_support {

// The one connection that is not to take: the end of a drag has nothing left to do.
constexpr const char* kUntakenConnection = "No such slot Waveform::Window::rescalePlot(";

} // namespace testing_support
