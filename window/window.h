#pragma once

#include "platform/launcher/measwindow.h"
#include "platform/otdr/event.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wfmeasparams.h"

#include <QList>
#include <QPointer>
#include <QRectF>

#include <memory>

class EventMarkersView;
class QmPlotZoomer;
class ReflCurve;
class Ui_Canvas;
class WaitWnd;
class WarningWindow;
class ZuConfigModel;

namespace Waveform {

class Model;
class Plot;
class ReflsTableModel;

/// The one screen: the chart with the curves of the loaded traces, and the button that measures.
///
/// Owns the curves. Decides which one is the main one, which one a running measurement refreshes,
/// and for which window they are sampled.
class Window : public MeasWindow
{
    Q_OBJECT

public:
    explicit Window(ZuConfigModel* config, QWidget* parent = nullptr);
    ~Window() override;

    void setModel(PluginModel* model) override;

    [[nodiscard]] bool isScalable() const override { return true; }

    /// Forwards the keys of whatever it watches to the window; for the host's frame.
    bool eventFilter(QObject* object, QEvent* event) override;
    [[nodiscard]] QList<QObject*> eventFilters() const override;

    [[nodiscard]] ReflsTableModel* reflsTableModel() const { return reflsModel; }

    [[nodiscard]] WarningWindow* notification() const { return warning; }

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
    void setActionButtonText(QString text);
    void deleteAllRefls();
    void deleteRefl(Reflectogram refl);
    void setMainRefl(Reflectogram refl);
    void setEventListToMainRefl(EventList events);

    /// A new snapshot is there: the first of a trace makes a curve, the others refresh it.
    void updateMeased(QString reflFileName, WfMeasParams params);
    void setHelix(double helix);
    void setDistance(double xMax);
    void raisePlotControls();
    void rescalePlot(Reflectogram refl);
    void rescalePlot(QRectF region);
    void rescaleCurrentView();
    void changeMainCurve(ReflCurve* curve);
    void showMarkersTable();

    /// Lets an object filter the events of the window and of everything in it.
    void installEventFilter(QObject* fltObj);

protected:
    void showWarning(const QString& text) override;

private:
    void alignElements();
    void removeProgress();
    void initReflsTable();
    void setupPlot();
    void setupZoomButtons();
    void setupPanner();
    void setupZoomer();
    void initEventMarkersView();
    void setupEventFilters();
    void connectModel();
    void fillMiniPlot(const Reflectogram& refl, double upTo_m);
    void clearCurves();
    void eraseCurve(ReflCurve* curve);
    [[nodiscard]] ReflCurve* curveOf(const Reflectogram& refl) const;
    [[nodiscard]] QString configured(const QString& key) const;
    [[nodiscard]] bool realtimeAllowed() const;

    Plot* plot = nullptr;
    QPointer<Model> model;
    ReflsTableModel* reflsModel = nullptr;
    EventMarkersView* eventMarkers = nullptr;
    WaitWnd* waitWindow = nullptr;
    std::unique_ptr<Ui_Canvas> canvasUi; ///< what lies over the canvas; its widgets belong to that
    QmPlotZoomer* zoomer = nullptr;
    ReflCurve* mainCurve = nullptr;
    ReflCurve* measCurve = nullptr;
    QList<ReflCurve*> curves;
    ReflCurve* prevMeasCurve = nullptr;
    ZuConfigModel* config;
    WarningWindow* warning = nullptr;
};

} // namespace Waveform
