#include "bench/fewcolours.h"

#include <QHash>
#include <QVector>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

struct Colour
{
    std::array<int, 3> parts;
    int pixels;
};

using Box = QVector<Colour>;

Colour colourOf(QRgb value, int pixels)
{
    return {{qRed(value), qGreen(value), qBlue(value)}, pixels};
}

qint64 pixelsOf(const Box& box)
{
    qint64 pixels = 0;
    for (const Colour& colour : box) {
        pixels += colour.pixels;
    }
    return pixels;
}

std::pair<int, int> rangeOf(const Box& box, std::size_t part)
{
    const auto [low, high] =
        std::minmax_element(box.begin(), box.end(), [part](const Colour& a, const Colour& b) {
            return a.parts[part] < b.parts[part];
        });
    return {low->parts[part], high->parts[part]};
}

std::size_t widestPart(const Box& box)
{
    std::size_t widest = 0;
    int width = -1;
    for (std::size_t part = 0; part < 3; ++part) {
        const auto [low, high] = rangeOf(box, part);
        if (high - low > width) {
            width = high - low;
            widest = part;
        }
    }
    return widest;
}

/// How much is lost where the box becomes one colour: its width, and less what few pixels have.
double weight(const Box& box)
{
    const auto [low, high] = rangeOf(box, widestPart(box));
    return (high - low) * std::sqrt(static_cast<double>(pixelsOf(box)));
}

/// Halves a box of two colours at least, in the middle of its widest range.
std::pair<Box, Box> halves(Box box)
{
    const std::size_t part = widestPart(box);
    const auto [low, high] = rangeOf(box, part);
    const int middle = (low + high) / 2;
    const auto border = std::partition(
        box.begin(), box.end(), [&](const Colour& colour) { return colour.parts[part] <= middle; });
    const int count = static_cast<int>(border - box.begin());
    return {box.mid(0, count), box.mid(count)};
}

/// The colour of most pixels in the box: plain areas keep theirs exactly.
QRgb valueOf(const Box& box)
{
    const auto most =
        std::max_element(box.begin(), box.end(),
                         [](const Colour& a, const Colour& b) { return a.pixels < b.pixels; });
    return qRgb(most->parts[0], most->parts[1], most->parts[2]);
}

QVector<Box> boxesOf(const Box& all, int most)
{
    QVector<Box> boxes {all};
    while (boxes.size() < most) {
        const auto widest =
            std::max_element(boxes.begin(), boxes.end(),
                             [](const Box& a, const Box& b) { return weight(a) < weight(b); });
        if (widest->size() < 2) {
            break;
        }
        const auto [first, second] = halves(*widest);
        *widest = first;
        boxes << second;
    }
    return boxes;
}

} // namespace

QImage withFewColours(const QImage& picture, int most)
{
    const QImage source = picture.convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> counts;
    for (int y = 0; y < source.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        std::for_each(line, line + source.width(), [&](QRgb value) { ++counts[value]; });
    }
    Box all;
    for (auto it = counts.constBegin(); it != counts.constEnd(); ++it) {
        all << colourOf(it.key(), it.value());
    }
    QHash<QRgb, uchar> places;
    QVector<QRgb> table;
    const QVector<Box> boxes = boxesOf(all, most);
    for (const Box& box : boxes) {
        for (const Colour& colour : box) {
            places.insert(qRgb(colour.parts[0], colour.parts[1], colour.parts[2]),
                          static_cast<uchar>(table.size()));
        }
        table << valueOf(box);
    }
    QImage result(source.size(), QImage::Format_Indexed8);
    result.setColorTable(table);
    for (int y = 0; y < source.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        std::transform(line, line + source.width(), result.scanLine(y),
                       [&](QRgb value) { return places.value(value); });
    }
    return result;
}
