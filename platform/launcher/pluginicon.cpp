#include "platform/launcher/pluginicon.h"

#include <QToolButton>

PluginIcon::PluginIcon(const QString& text, const QIcon& picture, QWidget* screen)
    : QObject(screen)
    , toolButton(new QToolButton(screen))
{
    constexpr int kPicture = 64;
    constexpr int kButton = 112;
    toolButton->setText(text);
    toolButton->setIcon(picture);
    toolButton->setIconSize(QSize(kPicture, kPicture));
    toolButton->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolButton->setMinimumSize(kButton, kButton);
    connect(toolButton, &QToolButton::clicked, this, &PluginIcon::clicked);
}

PluginIcon::~PluginIcon()
{
    delete toolButton.data();
}

QAbstractButton* PluginIcon::button() const
{
    return toolButton;
}
