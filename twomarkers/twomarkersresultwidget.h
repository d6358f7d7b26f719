#pragma once

#include "twomarkers/twomarkersresult.h"

#include <QWidget>

class QGridLayout;
class QLabel;

namespace Waveform {

/// A small table of what was measured between the markers: captions and values.
class TwoMarkersResultWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TwoMarkersResultWidget(QWidget* parent = nullptr);

public slots:
    /// Shows a result; its return loss comes by setORL().
    void setResult(TwoMarkersResult res);

    /// Shows a return loss, dB; NaN where it is not known.
    void setORL(double orl); // NOLINT(readability-identifier-naming)

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QLabel* addRow(QGridLayout& rows, const QString& caption);

    QLabel* a = nullptr;
    QLabel* b = nullptr;
    QLabel* length = nullptr;
    QLabel* loss = nullptr;
    QLabel* attenuation = nullptr;
    QLabel* reflection = nullptr;
    QLabel* orl = nullptr;
};

} // namespace Waveform
