#pragma once

#include <QFont>
#include <QString>

/// The font, or a smaller one of its kind in which the text is no wider than so many pixels. Never
/// less than half the size.
[[nodiscard]] QFont fittedFont(const QFont& font, const QString& text, int width_px);
