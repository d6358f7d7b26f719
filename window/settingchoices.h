#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Waveform {

/// What a box of the settings panel offers for one setting of section "MeasParams".
struct SettingChoices
{
    QString title;
    QString key;
    QStringList labels;
    QList<QVariant> values; ///< as they are stored, one for each label
};

/// The longest pulse, ns; newer cards alone can send it.
constexpr int kLongestPulse_ns = 20000;

/// A value with its unit, which is translated in context "Units".
[[nodiscard]] QString t(const QString& value, const QString& unit);

[[nodiscard]] SettingChoices timeChoices(); ///< s; 0 is realtime
[[nodiscard]] SettingChoices pulseChoices(bool withLongest); ///< ns
[[nodiscard]] SettingChoices distanceChoices(); ///< m
[[nodiscard]] SettingChoices wavelengthChoices(); ///< nm, or "all"

[[nodiscard]] QString longestPulseLabel();

/// How a value that the box of a setting does not offer reads: in the unit of those that it offers;
/// what is no number as it is.
[[nodiscard]] QString foreignLabel(const QString& key, const QVariant& value);

/// Whether the card has the longest pulse, by the text of its revision as it is stored: compared as
/// text, so that "10" counts as older than "3.0".
[[nodiscard]] bool startsWithLongestPulse(const QString& cardRevision);

/// The same by the number that a card announces: rounded, so that 2.5 counts as 3.
[[nodiscard]] bool hasLongestPulse(double cardRevision);

} // namespace Waveform
