#pragma once

#include <QImage>

/// The picture with so many colours at most, of which a file needs a byte a pixel only.
///
/// Median cut: the box of colours that is widest, by the pixels in it, is halved until there are
/// enough. A picture of few colours keeps them all. Without dithering, so that even areas stay
/// even.
[[nodiscard]] QImage withFewColours(const QImage& picture, int most);
