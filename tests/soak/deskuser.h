#pragma once

#include <QList>
#include <QPoint>
#include <QString>

#include <functional>

class Host;
class QAbstractButton;
class QWidget;

namespace testing_support {

/// A user at the host's window, in the same process: touches what is on the screen as a finger does
/// and waits for what follows. Knows the plugin's widgets by their names and captions alone.
///
/// What cannot be done is told by problem(); after that nothing is touched any more.
class DeskUser
{
public:
    explicit DeskUser(Host& host);

    /// What went wrong first; empty while nothing did.
    [[nodiscard]] QString problem() const { return trouble; }

    // What is on the screen; null where it is not.
    [[nodiscard]] QAbstractButton* button(const QString& caption) const;
    [[nodiscard]] QWidget* named(const QString& name) const;
    [[nodiscard]] QWidget* ofClass(const char* className) const; ///< the first
    [[nodiscard]] QList<QWidget*> allOfClass(const char* className) const;

    void tap(QWidget* widget);
    void tapButton(const QString& caption);

    /// Presses the button of a panel where that is not as wanted.
    void showPanel(const QString& caption, bool shown);

    /// Takes an entry of the box with this title on the settings panel.
    void choose(const QString& title, const QString& entry);

    /// One run to its end; a realtime one is stopped after its first refreshes.
    void measure();

    /// Saves under a name, replaces what has it, and reads the message.
    void save(const QString& name);

    /// Chooses the first files of the load dialog.
    void load(int count);

    /// Presses an entry of the menu of a trace.
    void chooseFromMenu(int row, const QString& entry);

    void drag(QWidget* widget, QPoint from, QPoint by);
    void press(int key); ///< on the frame
    void turnWheel(int notches); ///< over the chart

    /// Closes a page or message on the screen.
    void close(QWidget* dialog);

    /// Does something to the next dialog that waits for an answer; before what opens it.
    void whenAsked(const std::function<void(QWidget& dialog)>& answer);

    void waitUntil(const std::function<bool()>& isSo, const QString& what);

    /// Lets everything that is under way end: events, computations, what waits to be deleted.
    static void settle();

private:
    void fail(const QString& what);
    void answerName(QWidget& dialog, const QString& name);
    void readMessages();

    Host& host;
    QString trouble;
};

} // namespace testing_support
