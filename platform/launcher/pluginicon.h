#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>

class QAbstractButton;
class QToolButton;
class QWidget;

/// A plugin's entry on the launcher's start screen: a button with a picture and a name.
class PluginIcon : public QObject
{
    Q_OBJECT

public:
    /// Makes the button on that screen, which then owns it. \param screen must not be null
    PluginIcon(const QString& text, const QIcon& picture, QWidget* screen);
    ~PluginIcon() override;

    /// Null once its screen is gone.
    [[nodiscard]] QAbstractButton* button() const;

signals:
    void clicked();

private:
    QPointer<QToolButton> toolButton;
};
