#pragma once

#include "platform/launcher/pluginwindow.h"

#include <QPointer>

class ControlBottomPanel;
class MeasModel;
class QGridLayout;
class QProgressBar;
class QPushButton;
class WarningWindow;

/// The base of measurement windows: a page with a bottom panel and a button that starts and stops
/// the model.
///
/// Page grid: row 0 the progress bar (shown during a run), row 1 what addWidget() brings, row 2 the
/// bottom panel with the action button at its right end.
class MeasWindow : public PluginWindow
{
    Q_OBJECT

public:
    explicit MeasWindow(QWidget* parent = nullptr);
    ~MeasWindow() override;

    /// Connects the model's start, stop, running values and loss of the card, before anything a
    /// subclass connects; lets the earlier model go.
    void setModel(PluginModel* model) override;

    [[nodiscard]] QPushButton* actionButton() const;

protected slots:
    /// Running values arrived. Nothing in the base.
    virtual void doUpdate();

    /// The model started: the button says "Stop".
    virtual void measStarted();

    /// The model stopped: the button says "Start" and can be pressed, whatever was done to it
    /// meanwhile.
    virtual void measStopped();

    /// The action button was pressed: stops the model when it runs, else starts it. After a start
    /// that failed the window is idle again and startFailed() was called once.
    virtual void startstop();

    /// The analysis of a trace ended. Nothing in the base.
    virtual void analyseFinished();

    /// A start failed, or a run that had started well ended in a failure; the text names what.
    /// Shows it with showWarning().
    virtual void startFailed(const QString& text);

    /// The card went during a run. Says so with showWarning().
    virtual void cardLost();

protected:
    /// Shows a message without blocking; the base has a warning window of its own for that.
    virtual void showWarning(const QString& text);

    [[nodiscard]] QGridLayout* pageLayout() const;
    [[nodiscard]] ControlBottomPanel* bottomPanel() const;

    /// The progress bar of row 0; null once a subclass has deleted it.
    [[nodiscard]] QProgressBar* progressWidget() const;

    /// Adds the page's content: row 1, all columns.
    void addWidget(QWidget* widget);

private:
    void buildPage();
    void finishFailedStart(int code);
    void tellFailedRun();

    QPointer<MeasModel> measModel;
    QGridLayout* grid;
    ControlBottomPanel* panel;
    QPushButton* button;
    QPointer<QProgressBar> progress;
    WarningWindow* warning = nullptr;
    bool isStarting = false; ///< what fails now is told by its return value
};
