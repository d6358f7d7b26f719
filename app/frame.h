#pragma once

#include <QWidget>

class AbstractKeeper;
class PluginWindow;
class QLabel;
class QPushButton;
class WarningWindow;

/// The frame around a plugin's window: its title, the buttons that load, save and help, and what is
/// dropped on it.
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

    /// Comes before the other windows, out of the task bar if it is there.
    void comeToFront();

signals:
    /// Things were dropped here out of a file manager, as it names them.
    void dropped(const QStringList& files, const QStringList& elsewhere);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    /// A save under way is finished first.
    void closeEvent(QCloseEvent* event) override;

private:
    void showTitle(const QString& title);
    void connectKeeper();
    void connectKeys();

    PluginWindow* window;
    AbstractKeeper* keeper;
    QLabel* title;
    QPushButton* loadButton;
    QPushButton* saveButton;
    QPushButton* helpButton;
    WarningWindow* warning;
    bool closeWhenIdle = false;
};
