#pragma once

#include "platform/otdr/reflectogram.h"
#include "twomarkers/twomarkersresult.h"

#include <QFutureWatcher>
#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class LSALine;
class ORLCalc;
class QmPlotMarker;

namespace Waveform {

/// Measures a trace between two markers, anew whenever a marker is moved or the trace changes.
///
/// All but the return loss is told at once. That takes its time and is computed on a thread of the
/// global pool, one computation after the other; what is asked for meanwhile ends in one more for
/// the places where the markers are then. Everything is called from the GUI thread; the destructor
/// waits for a computation that is under way.
class TwoMarkersModel : public QObject
{
    Q_OBJECT

public:
    explicit TwoMarkersModel(QObject* parent);

    /// \param useLSA whether levels are those of a least-squares line
    TwoMarkersModel(bool useLSA, QObject* parent);
    ~TwoMarkersModel() override;

    /// Whether levels are those of a least-squares line between the markers.
    [[nodiscard]] bool usesLSA() const { return useLSA; }

    /// The two markers, A first; whoever made them keeps them. Without both nothing is measured.
    /// Whoever hands them over tells markerMoved() of their moves.
    void setMarkers(const QList<QmPlotMarker*>& both);

    /// Computes the return loss by another calculator than the one that the first trace would make.
    /// Only before the first trace.
    void setORLCalc(std::unique_ptr<ORLCalc> calc); // NOLINT(readability-identifier-naming)

    /// Measures where the markers are now.
    void calculate();

    /// The return loss between two distances, dB; what the thread of the pool does.
    double doORLRecalculation(double a_m, double b_m); // NOLINT(readability-identifier-naming)

public slots:
    /// Measures on another trace from now on. Markers outside it are put to its ends.
    void setReflectogram(Reflectogram newRefl);
    void setUseLSA(bool use); // NOLINT(readability-identifier-naming)

signals:
    /// The return loss of the result is 0; it comes by orlChanged().
    void resultsChanged(TwoMarkersResult result);
    void usingLSAChanged(bool use); // NOLINT(readability-identifier-naming)

    /// The return loss, dB, NaN where it cannot be told: twice for each computation, and twice more
    /// where another one was asked for meanwhile.
    void orlChanged(double orl);

private slots:
    void markerMoved();
    void runORLCalculation(); // NOLINT(readability-identifier-naming)
    void throwORL(); // NOLINT(readability-identifier-naming)
    void runQueuedORLRecalculation(); // NOLINT(readability-identifier-naming)

private:
    [[nodiscard]] bool hasMarkers() const;
    void requestORL(const TwoMarkersResult& result); // NOLINT(readability-identifier-naming)

    Reflectogram refl;
    QList<QPointer<QmPlotMarker>> markers;
    std::unique_ptr<LSALine> lsa;
    bool useLSA = false;
    std::unique_ptr<ORLCalc> orlCalc;
    std::unique_ptr<QFutureWatcher<double>> orlWatcher;
    bool orlQueued = false;
};

} // namespace Waveform
