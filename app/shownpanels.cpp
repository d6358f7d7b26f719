#include "app/shownpanels.h"

#include "platform/launcher/wrappanel.h"

QStringList panelNames()
{
    return {"events", "reflectograms", "measurement"};
}

void showPanels(QWidget& window, const QStringList& names)
{
    auto* buttons = window.findChild<WrapPanel*>();
    if (buttons == nullptr) {
        return;
    }
    for (const QString& name : names) {
        buttons->setShown(window.findChild<QWidget*>(name, Qt::FindDirectChildrenOnly), true);
    }
}
