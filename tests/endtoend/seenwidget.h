#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QRect>
#include <QStringList>

#include <utility>

namespace testing_support {

/// A row of a table on the screen.
struct SeenRow
{
    QStringList texts;
    QRect place;
    bool isChecked = false;
    bool isEnabled = false;
};

/// A widget on the screen, as the program with the ScreenTeller tells of it.
class SeenWidget
{
public:
    SeenWidget() = default;

    explicit SeenWidget(QJsonObject told)
        : told(std::move(told))
    {
    }

    /// Whether there is one.
    [[nodiscard]] bool isThere() const { return !told.isEmpty(); }

    [[nodiscard]] bool isA(const char* className) const
    {
        return told["class"].toString().contains(QString(" %1 ").arg(className));
    }

    [[nodiscard]] QString name() const { return told["name"].toString(); }

    [[nodiscard]] QString text() const { return told["text"].toString(); }

    [[nodiscard]] bool isEnabled() const { return told["enabled"].toBool(); }

    [[nodiscard]] bool isChecked() const { return told["checked"].toBool(); }

    /// Whether a finger in its middle touches it, and not something that lies above.
    [[nodiscard]] bool isOnTop() const { return told["onTop"].toBool(); }

    [[nodiscard]] quint32 window() const { return static_cast<quint32>(told["window"].toDouble()); }

    [[nodiscard]] QRect place() const { return asRect(told["place"]); }

    [[nodiscard]] QList<SeenRow> rows() const
    {
        QList<SeenRow> rows;
        const QJsonArray all = told["rows"].toArray();
        for (const QJsonValue& row : all) {
            SeenRow seen;
            const QJsonArray texts = row["texts"].toArray();
            for (const QJsonValue& text : texts) {
                seen.texts << text.toString();
            }
            seen.place = asRect(row["place"]);
            seen.isChecked = row["checked"].toBool();
            seen.isEnabled = row["enabled"].toBool();
            rows << seen;
        }
        return rows;
    }

    /// Both ends of an axis of a plot, "distances" in m or "levels" in dB.
    [[nodiscard]] std::pair<double, double> axis(const char* which) const
    {
        return {told[which][0].toDouble(), told[which][1].toDouble()};
    }

    [[nodiscard]] int curves() const { return told["curves"].toInt(); }

private:
    static QRect asRect(const QJsonValue& place)
    {
        return {place[0].toInt(), place[1].toInt(), place[2].toInt(), place[3].toInt()};
    }

    QJsonObject told;
};

} // namespace testing_support
