#include "platform/launcher/pluginicon.h"

#include <QKeyEvent>
#include <QToolButton>

namespace {

/// A tool button that Enter presses as Space does.
class IconButton : public QToolButton
{
public:
    using QToolButton::QToolButton;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            click();
            return;
        }
        QToolButton::keyPressEvent(event);
    }
};

} // namespace

PluginIcon::PluginIcon(const QString& text, const QIcon& picture, QWidget* screen)
    : QObject(screen)
    , toolButton(new IconButton(screen))
{
    constexpr int kPicture = 64;
    constexpr int kButton = 112;
    toolButton->setText(text);
    toolButton->setIcon(picture);
    toolButton->setIconSize(QSize(kPicture, kPicture));
    toolButton->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolButton->setFocusPolicy(Qt::StrongFocus); // by itself Tab passes it
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
