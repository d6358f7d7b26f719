#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

class PluginModel;

/// The one screen of a plugin, shown in the host's frame.
class PluginWindow : public QWidget
{
    Q_OBJECT

public:
    explicit PluginWindow(QWidget* parent = nullptr);

    /// Gives the window its model, which is not owned; null takes it away.
    virtual void setModel(PluginModel* model);

    /// Whether the frame may give the window any size; otherwise it keeps the size hint.
    [[nodiscard]] virtual bool isScalable() const;

    /// Objects that want to see the input events of the host's frame, to be installed there as
    /// event filters: never on the application nor on the window itself.
    [[nodiscard]] virtual QList<QObject*> eventFilters() const;

    [[nodiscard]] PluginModel* pluginModel() const;

signals:
    /// The frame shall show this title.
    void setTitle(const QString& title);

private:
    QPointer<PluginModel> currentModel;
};
