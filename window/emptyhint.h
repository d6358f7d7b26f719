#pragma once

#include "platform/launcher/measmodel.h"

#include <QLabel>
#include <QPointer>

namespace Waveform {

class ReflsTableModel;

/// What to do, in quiet words in the middle of a canvas on which there is nothing yet.
///
/// Shown while no trace is loaded and none is being measured, beside what lies over the canvas;
/// touches go through it to the canvas.
class EmptyHint : public QLabel
{
    Q_OBJECT

public:
    EmptyHint(QWidget* canvas, ReflsTableModel* refls);

    /// Tells the way to the button that measures where it is not on the screen, and stands beside
    /// the results that may be shown over the canvas.
    void heed(QWidget* startButton, QWidget* resultBox);

    /// Follows the runs of this model, which may be null, and no longer those of another.
    void follow(MeasModel* newModel);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private slots:
    void onStarted();
    void onStopped();
    void showWhereEmpty();

private:
    void showWay();
    void place();

    QPointer<ReflsTableModel> refls;
    QPointer<MeasModel> model;
    QPointer<QWidget> start;
    QPointer<QWidget> results;
    bool isMeasuring = false;
};

} // namespace Waveform
