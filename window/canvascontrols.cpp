#include "window/canvascontrols.h"

#include "platform/otdr/decimize.h"
#include "plot/plot.h"
#include "plot/qmpanner.h"
#include "plot/qmplotzoomer.h"
#include "window/fullview.h"
#include "window/pagegeometry.h"
#include "window/ui_canvas.h"

#include <QPushButton>
#include <QResizeEvent>

#include <algorithm>
#include <functional>

namespace Waveform {

namespace {

constexpr int kZoomButtonHeight = 52;
constexpr int kZoomButtonAlpha = 128;
constexpr int kLowEdge = 0; ///< above and below what lies over a low canvas
constexpr double kZoomFactor = 2.0;
constexpr double kLeastSpan_dB = 0.05;

} // namespace

CanvasControls::CanvasControls(Plot* plot, QObject* parent)
    : QObject(parent)
    , plot(plot)
    , ui(std::make_unique<Ui_Canvas>())
{
}

CanvasControls::~CanvasControls() = default;

void CanvasControls::setupPlot()
{
    ui->setupUi(plot->canvas());
    ui->miniPlot->hide();
    setupZoomButtons();
    plot->canvas()->installEventFilter(this);
    connect(plot, SIGNAL(scaledTo( QRectF )), ui->miniPlot, SLOT(highlightArea( QRectF )));
}

void CanvasControls::setupZoomButtons()
{
    QPalette translucent = ui->zoomOffButton->palette();
    QColor button = translucent.color(QPalette::Button);
    button.setAlpha(kZoomButtonAlpha);
    translucent.setBrush(QPalette::Button, button);
    const int rows = ui->zoomLayout->rowCount();
    for (int row = 0; row < rows; ++row) {
        auto* widget = qobject_cast<QPushButton*>(ui->zoomLayout->itemAtPosition(row, 0)->widget());
        widget->setAutoDefault(true); // Enter presses it as Space does
        widget->hide();
        widget->setMinimumHeight(kZoomButtonHeight);
        widget->setPalette(translucent);
        // Keeps the row's height while its button is hidden.
        ui->zoomLayout->addItem(
            new QSpacerItem(1, kZoomButtonHeight, QSizePolicy::Fixed, QSizePolicy::Fixed), row, 1);
    }
}

void CanvasControls::setupPanner()
{
    auto* panner = new QmPanner(plot->canvas());
    // The first one does not take: the end of a drag needs no sampling beyond that of its steps.
    connect(panner, SIGNAL(moved( QPoint )), parent(), SLOT(rescalePlot( )));
    connect(panner, SIGNAL(moving( QPoint )), plot, SLOT(shiftScale( QPoint )));
}

void CanvasControls::setupZoomer()
{
    plotZoomer = new QmPlotZoomer(plot);
    plotZoomer->setZoomInFactor(kZoomFactor);
    plotZoomer->setZoomOutFactor(kZoomFactor);
    plotZoomer->setMinRange(kLeastSpan_m);
    plotZoomer->setMinYRange(kLeastSpan_dB);
    QWidget* overview = ui->miniPlot;
    connect(plotZoomer, SIGNAL(newBounds( QRectF )), parent(), SLOT(rescalePlot( QRectF )));
    connect(plotZoomer, SIGNAL(newBounds( QRectF )), overview, SLOT(highlightArea( QRectF )));
    connect(plotZoomer, SIGNAL(maxScaledOut()), overview, SLOT(nohl()));
    connect(ui->zoomOffButton, SIGNAL(clicked()), plotZoomer, SLOT(zoomOff()));
    connect(ui->zoomInButton, SIGNAL(clicked()), plotZoomer, SLOT(zoomIn()));
    connect(ui->zoomOutButton, SIGNAL(clicked()), plotZoomer, SLOT(zoomOut()));
    connect(plotZoomer, SIGNAL(disableZoomIn( bool )), ui->zoomInButton, SLOT(setHidden( bool )));
    connect(plotZoomer, SIGNAL(disableZoomOut( bool )), ui->zoomOutButton, SLOT(setHidden( bool )));
    connect(plotZoomer, SIGNAL(disableZoomOut( bool )), overview, SLOT(setHidden( bool )));
}

bool CanvasControls::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        arrange(static_cast<QResizeEvent*>(event)->size().height());
    }
    return QObject::eventFilter(watched, event);
}

void CanvasControls::arrange(int canvasHeight)
{
    const bool isLow = !pagegeometry::fitsButtonColumn(canvasHeight);
    const int gap = pagegeometry::fitsLegendGap(canvasHeight) ? 1 : 0;
    ui->legendWidthSpacer->changeSize(300, gap * 20, QSizePolicy::Fixed, QSizePolicy::Fixed);
    ui->legendHeightSpacer->changeSize(20, gap * 40, QSizePolicy::Fixed, QSizePolicy::Fixed);
    const QMargins margins = ui->canvasLayout->contentsMargins();
    const int edge = isLow ? kLowEdge : margins.left();
    ui->canvasLayout->setContentsMargins(margins.left(), edge, margins.right(), edge);
    if (isLow == isButtonColumn) {
        isButtonColumn = !isLow;
        ui->zoomLayout->setVerticalSpacing(isLow ? 0 : -1);
        arrangeButtons(isButtonColumn);
    }
    ui->legendLayout->invalidate();
    // Or the overview, which spans all rows, would have its height from the empty one below the
    // buttons, and they would overlap.
    ui->canvasLayout->setRowMinimumHeight(1, ui->zoomLayout->minimumSize().height());
    ui->canvasLayout->invalidate();
    ui->canvasLayout->activate(); // the size that it was laid out for is that of before
}

/// On a low canvas the step buttons stand beside "1:1", each with the spacer of its row.
void CanvasControls::arrangeButtons(bool oneBelowTheOther)
{
    QGridLayout& grid = *ui->zoomLayout;
    QList<QLayoutItem*> items; // each button and its spacer
    while (QLayoutItem* item = grid.takeAt(0)) {
        items << item;
    }
    const auto isSpacer = [](QLayoutItem* item) { return item->spacerItem() != nullptr; };
    std::stable_partition(items.begin(), items.end(), std::not_fn(isSpacer));
    const QPoint column[] = {{0, 0}, {0, 1}, {0, 2}};
    const QPoint corner[] = {{0, 0}, {1, 0}, {1, 1}};
    const int count = items.size() / 2;
    for (int i = 0; i < count; ++i) {
        const QPoint cell = oneBelowTheOther ? column[i] : corner[i];
        grid.addItem(items.at(i), cell.y(), cell.x());
        grid.addItem(items.at(count + i), cell.y(), oneBelowTheOther ? 1 : 2);
    }
}

void CanvasControls::offer()
{
    ui->miniPlot->highlightArea(plotZoomer->currentRect());
    plotZoomer->emitControlSignals();
}

void CanvasControls::offerNothing()
{
    plotZoomer->zoomOff();
    for (QWidget* button : buttons()) {
        button->hide();
    }
    ui->miniPlot->hide();
}

QPushButton* CanvasControls::zoomOffButton() const
{
    return ui->zoomOffButton;
}

QWidgetList CanvasControls::buttons() const
{
    return {ui->zoomOffButton, ui->zoomInButton, ui->zoomOutButton};
}

QmMiniPlot* CanvasControls::miniPlot() const
{
    return ui->miniPlot;
}

QVBoxLayout* CanvasControls::legendLayout() const
{
    return ui->legendLayout;
}

void CanvasControls::raise()
{
    ui->zoomInButton->raise();
    ui->zoomOutButton->raise();
    ui->zoomOffButton->raise();
}

void CanvasControls::setDistance(double xMax_m)
{
    constexpr double kSpan_dB = Plot::kMaxY - Plot::kMinY;
    const double width_m = fullViewWidth(xMax_m);
    ui->miniPlot->setScales(QRectF(0.0, Plot::kMaxY, width_m, -kSpan_dB), false);
    plotZoomer->setMaxRect(QRectF(0.0, Plot::kMinY, width_m, kSpan_dB));
    plot->setMaxX(width_m);
}

void CanvasControls::showRange(double xMax_m)
{
    setDistance(xMax_m);
    plot->setAxisScale(QwtPlot::xBottom, 0.0, fullViewWidth(xMax_m));
    plot->setAxisScale(QwtPlot::yLeft, Plot::kMinY, Plot::kMaxY);
    plot->enableAxis(QwtPlot::xBottom, true);
    plot->enableAxis(QwtPlot::yLeft, true);
}

void CanvasControls::setSampleSpacing(double spacing_m)
{
    constexpr double kLeastSamples = 5.0;
    plotZoomer->setMinRange(std::max(kLeastSpan_m, kLeastSamples * spacing_m));
}

void CanvasControls::fillMiniPlot(const Reflectogram& refl, double upTo_m)
{
    const wf_clip_t whole {0.0, upTo_m, ui->miniPlot->width()};
    ui->miniPlot->setSamples(Decimize(refl, false)(whole), true);
}

} // namespace Waveform
