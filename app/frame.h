#pragma once

#include <QWidget>

class AbstractKeeper;
class PluginWindow;
class QLabel;
class QPushButton;
class WarningWindow;

/// The frame around a plugin's window: its title, and the buttons that load and save.
class Frame : public QWidget
{
    Q_OBJECT

public:
    /// Takes the window in; it stays the plugin's. The keeper may be null, then nothing can be
    /// loaded or saved.
    Frame(PluginWindow* window, AbstractKeeper* keeper);

    /// Lets the plugin's window go.
    ~Frame() override;

    /// Tells the user something without blocking.
    void tell(const QString& text);

protected:
    /// A save under way is finished first.
    void closeEvent(QCloseEvent* event) override;

private:
    void showTitle(const QString& title);
    void connectKeeper();

    PluginWindow* window;
    AbstractKeeper* keeper;
    QLabel* title;
    QPushButton* loadButton;
    QPushButton* saveButton;
    WarningWindow* warning;
    bool closeWhenIdle = false;
};
