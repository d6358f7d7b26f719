#pragma once

#include <QGenericPlugin>
#include <QJsonArray>
#include <QJsonObject>

class QWidget;

/// Tells a test what is on the screen of the program that loads it: the program itself has no code
/// for that.
///
/// Answers each line that comes on the local socket whose path it is given with one line, a JSON
/// array of all visible widgets. For each: "class" with those it derives from, "name", "text",
/// "window" (the X window of its top level), "place" on the screen, "enabled", "checked", and
/// "onTop": whether a finger at its centre touches it. For tables also "rows" with their texts,
/// places and states, for plots the ends of both axes and the number of curves.
class ScreenTeller : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "screenteller.json")

public:
    QObject* create(const QString& name, const QString& socket) override;

private:
    [[nodiscard]] static QJsonArray visibleWidgets();
    [[nodiscard]] static QJsonObject tell(const QWidget& widget);
};
