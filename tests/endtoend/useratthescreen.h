#pragma once

#include "tests/endtoend/seenwidget.h"
#include "tests/endtoend/xserver.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/tracefiles.h"

#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace testing_support {

/// A user who has a home directory and looks at the application on a screen of 1280x800, does what
/// a finger can, and waits to see what follows from it.
class UserAtTheScreen : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the application and waits for its window.
    void start(const QStringList& arguments);

    /// Closes the window, then waits for the end: nothing may have been said on the console.
    void quit();

    /// What is on the screen now.
    [[nodiscard]] QList<SeenWidget> look();

    // The first widget of the kind; one that is not there where there is none.
    [[nodiscard]] SeenWidget named(const QString& name);
    [[nodiscard]] SeenWidget ofClass(const char* className);
    [[nodiscard]] SeenWidget button(const QString& text);
    [[nodiscard]] SeenWidget inDialog(const QString& text); ///< a button there

    /// The text of the label in the line of a caption, to the right of it.
    [[nodiscard]] QString valueBeside(const QString& caption);

    /// Whether these words stand somewhere.
    [[nodiscard]] bool isSaid(const QString& words);

    /// The box under or beside a caption.
    [[nodiscard]] SeenWidget box(const QString& caption);

    [[nodiscard]] SeenWidget plot() { return ofClass("Waveform::Plot"); }

    using Finder = std::function<SeenWidget()>;

    /// Waits until a widget can be touched and rests, then touches it in its middle.
    void tap(const Finder& finder, const char* what);
    void tapButton(const QString& text);
    void tapNamed(const QString& name);
    void tapInDialog(const QString& text);
    void tapOk(); ///< a message that goes then: as long as it stands, the window cannot be closed

    /// Opens the box under a caption and takes an entry.
    void choose(const QString& caption, const QString& entry);

    /// Waits until something is as it should be; fails the test where that takes too long.
    void waitUntil(const std::function<bool()>& isSo, const char* what);

    // In the user's own directories.
    [[nodiscard]] QString homePath(const QString& path) const { return home.filePath(path); }

    [[nodiscard]] QStringList stored(const QString& pattern) const; ///< where traces are saved

    const AcquisitionDir directory;
    const QTemporaryDir home;
    TraceFiles files;
    std::unique_ptr<XServer> screen;
    QProcess application;

private:
    [[nodiscard]] SeenWidget first(const std::function<bool(const SeenWidget&)>& isIt);
    void keepPicture();
    static void checkConsole(const QString& text);

    QLocalSocket teller;
};

} // namespace testing_support
