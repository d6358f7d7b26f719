#pragma once

#include "platform/launcher/measwindow.h"
#include "platform/otdr/event.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wfmeasparams.h"
#include "window/textualanimator.h"

#include <QList>
#include <QPointer>
#include <QRectF>

#include <memory>

class EventMarkersView;
class ReflCurve;
class WaitWnd;
class WarningWindow;
class ZuConfigModel;

namespace Waveform {

class CanvasControls;
class CurveSet;
class EmptyHint;
class MainTrace;
class MarkerMeasuring;
class Model;
class Panels;
class Plot;
class ReflsTableModel;
class RunTraces;
class SettingsPanel;

/// The one screen: the chart with the curves of the loaded traces, the tables and bars below it,
/// and the button that measures.
///
/// Wires them all. Decides which curve is the main one and for which window the curves are sampled.
class Window : public MeasWindow
{
    Q_OBJECT

public:
    explicit Window(ZuConfigModel* config, QWidget* parent = nullptr);
    ~Window() override;

    void setModel(PluginModel* model) override;

    [[nodiscard]] bool isScalable() const override { return true; }

    /// Forwards the keys of whatever it watches to the window, each once; for the host's frame.
    bool eventFilter(QObject* object, QEvent* event) override;
    [[nodiscard]] QList<QObject*> eventFilters() const override;

    [[nodiscard]] ReflsTableModel* reflsTableModel() const;

    [[nodiscard]] WarningWindow* notification() const { return warning; }

    void replot();

public slots:
    void setWaitWindowVisible(bool visible);

    /// Shows on the action button what is being measured and for how long still, s.
    void updateCountdownText(int rTime, int wavelength);
    void oneReflMeasStarted();
    void oneReflMeasFinished();

signals:
    void mainReflName(QString name);
    void realtimeParamsValid();

protected slots:

    void doUpdate() override { }

    void startstop() override;
    void measStarted() override;
    void measStopped() override;
    void analyseFinished() override;
    void setActionButtonText(QString text);
    void deleteAllRefls();
    void deleteRefl(Reflectogram refl);
    void setMainRefl(Reflectogram refl);

    /// Events found by the acquisition: they belong to the main trace. What follows from them is
    /// computed in the background.
    void setEventListToMainRefl(EventList events);

    /// A new snapshot is there: the first of a trace makes a curve, the others refresh it.
    void updateMeased(QString reflFileName, WfMeasParams params);
    void setIor(double ior);
    void setHelix(double helix);
    void setDistance(double xMax);
    void raisePlotControls();
    void rescalePlot(Reflectogram refl);
    void rescalePlot(QRectF region);
    void rescaleCurrentView();
    void changeMainCurve(ReflCurve* curve);
    void showMarkersTable();

    /// Takes all curves but the main one off the plot, or brings them back.
    void setHiddenNonMainCurves(bool hidden);

    /// Lets an object filter the events of the window and of everything in it.
    void installEventFilter(QObject* fltObj);
    void onChangeCardRevision(double rev);

protected:
    void showWarning(const QString& text) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void alignElements();
    void removeProgress();
    void setupPlot();
    void initEventMarkersView();
    void initTwoMarkers();
    void setupEventFilters();
    void connectModel();
    void announceMainRefl(const Reflectogram& deleted);
    [[nodiscard]] QString configured(const QString& key) const;

    Plot* plot = nullptr;
    QPointer<Model> model;
    Panels* panels = nullptr;
    EventMarkersView* eventMarkers = nullptr;
    MarkerMeasuring* markerMeasuring = nullptr;
    WaitWnd* waitWindow = nullptr;
    CanvasControls* canvas = nullptr;
    EmptyHint* emptyHint = nullptr;
    std::unique_ptr<CurveSet> curves;
    std::unique_ptr<MainTrace> mainTrace;
    std::unique_ptr<RunTraces> run;
    TextualAnimator animator;
    QEvent* forwarded = nullptr; ///< the key that the window is being given for the frame
    ZuConfigModel* config;
    SettingsPanel* settings = nullptr;
    WarningWindow* warning = nullptr;
};

} // namespace Waveform
