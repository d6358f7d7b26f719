#pragma once

#include <QPalette>
#include <QString>

/// The launcher's named palettes, for the day and for the night: calm, text readable everywhere
/// (contrast 4.5:1 at least; 3:1 where it is disabled).
class PaletteFactory
{
public:
    enum class Light
    {
        Day,
        Night ///< dark grounds, that do not dazzle in a manhole
    };

    /// The palette of that name: "Application" (what widgets have by themselves), "GenericWindow"
    /// (its Button role marks things on light ground and bears white text), "chart" (white paper,
    /// the Mid role for the grid), "table" (light, for what is written in the colours of the
    /// traces) or "CriticalButton". An unknown name answers "GenericWindow".
    ///
    /// Day and night differ in the grounds of controls only: paper stays light, as the colours of
    /// the traces are dark, and what marks things on it stays the same.
    /// Needs no application object.
    [[nodiscard]] static QPalette getPalette(const QString& name, Light light = Light::Day);
};
