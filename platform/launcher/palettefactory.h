#pragma once

#include <QPalette>
#include <QString>

/// The launcher's named palettes: light and calm, text readable everywhere (contrast 4.5:1 at
/// least).
class PaletteFactory
{
public:
    /// The palette of that name: "Application" (what widgets have by themselves), "GenericWindow"
    /// (its Button role marks things on light ground and bears white text), "chart" (white paper,
    /// the Mid role for the grid) or "CriticalButton". An unknown name answers "GenericWindow".
    /// Needs no application object.
    [[nodiscard]] static QPalette getPalette(const QString& name);
};
