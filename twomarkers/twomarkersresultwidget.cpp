#include "twomarkers/twomarkersresultwidget.h"

#include "platform/otdr/screennumber.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>

#include <cmath>

namespace Waveform {

namespace {

constexpr double kOpacity = 0.85;
constexpr double kRoom = 5.5; ///< of the paper around the labels; half a pixel makes a sharp border
constexpr double kCorner = 8.0;

} // namespace

TwoMarkersResultWidget::TwoMarkersResultWidget(QWidget* parent)
    : QWidget(parent)
{
    auto* rows = new QGridLayout(this);
    rows->setVerticalSpacing(0);
    rows->setAlignment(Qt::AlignRight | Qt::AlignTop);
    a = addRow(*rows, "A: ");
    b = addRow(*rows, "B: ");
    length = addRow(*rows, tr("Length: "));
    loss = addRow(*rows, tr("Loss: "));
    attenuation = addRow(*rows, tr("Attenuation: "));
    reflection = addRow(*rows, tr("Reflection: "));
    orl = addRow(*rows, tr("ORL: "));
    // As wide as a usual value, so that the table keeps its size while a marker is dragged.
    rows->setColumnMinimumWidth(1, fontMetrics().horizontalAdvance("-00.000 dB/km"));
}

QLabel* TwoMarkersResultWidget::addRow(QGridLayout& rows, const QString& caption)
{
    auto* captionLabel = new QLabel(caption, this);
    auto* valueLabel = new QLabel(this);
    const int row = rows.count() / 2;
    int column = 0;
    for (QLabel* label : {captionLabel, valueLabel}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignRight);
        rows.addWidget(label, row, column++);
    }
    return valueLabel;
}

void TwoMarkersResultWidget::setResult(TwoMarkersResult res)
{
    a->setText(res.formatted(TwoMarkersResult::A));
    a->setAlignment(Qt::AlignRight);
    b->setText(res.formatted(TwoMarkersResult::B));
    length->setText(res.formatted(TwoMarkersResult::Length));
    loss->setText(res.formatted(TwoMarkersResult::Loss));
    attenuation->setText(res.formatted(TwoMarkersResult::Attenuation));
    reflection->setText(std::isfinite(res.reflection) ? res.formatted(TwoMarkersResult::Reflection)
                                                      : QString("-"));
}

void TwoMarkersResultWidget::setORL(double newOrl)
{
    orl->setText(std::isnan(newOrl) ? QString("-") : screennumber::fixed(newOrl, 2) + tr(" dB"));
}

void TwoMarkersResultWidget::paintEvent(QPaintEvent* /*event*/)
{
    // The trace goes on beneath: without paper the values could not be read where it does.
    QColor paper = palette().color(QPalette::Base);
    paper.setAlphaF(kOpacity);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(paper);
    painter.drawRoundedRect(QRectF(childrenRect()).adjusted(-kRoom, -kRoom, kRoom, kRoom), kCorner,
                            kCorner);
}

} // namespace Waveform
