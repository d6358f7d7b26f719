#pragma once

#include "platform/launcher/cardplugin.h"
#include "platform/launcher/launcherplugininterface.h"

#include <QPointer>

/// The base of measurement plugins: makes model, window and keeper when they are first asked for,
/// each once.
///
/// window() also makes the model and hands it to the window; myKeeper() makes both before the
/// keeper. A factory may itself ask for what was made before it; what is still being made answers
/// null. The plugin owns all three.
class MeasPlugin : public CardPlugin, public LauncherPluginInterface
{
    Q_OBJECT
    Q_INTERFACES(LauncherPluginInterface)

public:
    explicit MeasPlugin(QString category);
    ~MeasPlugin() override;

    PluginWindow* window() override;
    PluginModel* model() override;
    PluginIcon* icon() override;
    QWidget* status() override;

    [[nodiscard]] bool isOptionsOpen() const override { return true; }

    void showWindow() override;

    /// The model that createCardModel() makes.
    PluginModel* createModel() override;

    AbstractKeeper* myKeeper() override;

    [[nodiscard]] QString name() const override;
    [[nodiscard]] QString category() const override;
    [[nodiscard]] CardController* card() const override;
    void release() override;

private:
    enum class Stage
    {
        NotMade,
        Making,
        Made,
    };

    QString pluginCategory;
    QPointer<PluginModel> pluginModel;
    QPointer<PluginWindow> pluginWindow;
    QPointer<AbstractKeeper> pluginKeeper;
    Stage modelStage = Stage::NotMade;
    Stage windowStage = Stage::NotMade;
    Stage keeperStage = Stage::NotMade;
};
