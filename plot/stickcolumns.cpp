#include "plot/stickcolumns.h"

#include "platform/otdr/tracestate.h"

#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int kEmpty = std::numeric_limits<int>::max();

} // namespace

StickColumns::StickColumns(const QRect& area)
    : area(area)
    , top(static_cast<std::size_t>(std::max(0, area.width())), kEmpty)
{
}

/// First sample of each column, and behind the last column the first sample beyond it.
std::vector<std::size_t> StickColumns::borders(const TraceState& state, const QwtScaleMap& xMap,
                                               double pixelRatio) const
{
    const auto count = static_cast<double>(state.trace->size());
    const double metresPerNs = state.metresPerNs();
    std::vector<std::size_t> result;
    result.reserve(top.size() + 1);
    for (std::size_t column = 0; column <= top.size(); ++column) {
        const double left = area.left() + static_cast<double>(column) - 0.5;
        const double distance_m = xMap.invTransform(left / pixelRatio);
        const double index = std::ceil(state.trace->sampleAt(distance_m, metresPerNs));
        const double inside = index > 0.0 ? std::min(index, count) : 0.0; // 0 for what is no number
        const auto border = static_cast<std::size_t>(inside);
        result.push_back(result.empty() ? border : std::max(border, result.back()));
    }
    return result;
}

void StickColumns::add(const TraceState& state, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                       double pixelRatio)
{
    if (!state.trace || top.empty()) {
        return;
    }
    const std::vector<std::size_t> first = borders(state, xMap, pixelRatio);
    std::vector<otdr::Sample> highest;
    highest.reserve(top.size());
    state.trace->pyramid().appendHighest(first, highest);
    std::size_t column = 0;
    for (const otdr::Sample& sample : highest) {
        while (first[column + 1] <= sample.index) {
            ++column;
        }
        const double row = yMap.transform(state.trace->toLevel_dB(sample.raw)) * pixelRatio;
        // Rows far outside would not fit an int.
        top[column] =
            std::min(top[column], qRound(std::clamp(row, area.top() - 1.0, area.bottom() + 2.0)));
    }
}

bool StickColumns::isCovered(int column) const
{
    return top[static_cast<std::size_t>(column)] != kEmpty;
}

bool StickColumns::hasGaps() const
{
    return closedTop() != top;
}

/// The top rows with every gap between two sticks filled up to the lower of them.
std::vector<int> StickColumns::closedTop() const
{
    std::vector<int> closed = top;
    std::size_t last = closed.size(); // the covered column before, once there is one
    for (std::size_t column = 0; column < closed.size(); ++column) {
        if (top[column] == kEmpty) {
            continue;
        }
        for (std::size_t gap = last + 1; gap < column; ++gap) {
            closed[gap] = std::max(top[last], top[column]);
        }
        last = column;
    }
    return closed;
}

std::vector<QRect> StickColumns::rectangles(double baseline_px) const
{
    const std::vector<int> rows = closedTop();
    const int bottom =
        std::clamp(qRound(std::clamp(baseline_px, -1e6, 1e6)), area.top() - 1, area.bottom());

    struct Step
    {
        int left;
        int height;
    };

    std::vector<QRect> result;
    std::vector<Step> open; // heights grow from the first to the last
    const int columns = static_cast<int>(top.size());
    for (int column = 0; column <= columns; ++column) {
        const int row = column < columns ? rows[static_cast<std::size_t>(column)] : kEmpty;
        const int height = row == kEmpty ? 0 : std::max(0, bottom - std::max(row, area.top()) + 1);
        int left = column;
        while (!open.empty() && open.back().height > height) {
            const Step step = open.back();
            open.pop_back();
            const int below = std::max(height, open.empty() ? 0 : open.back().height);
            result.emplace_back(area.left() + step.left, bottom - step.height + 1,
                                column - step.left, step.height - below);
            left = step.left;
        }
        if (height > 0 && (open.empty() || open.back().height < height)) {
            open.push_back({left, height});
        }
    }
    return result;
}
