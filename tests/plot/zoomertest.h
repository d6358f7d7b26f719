#pragma once

#include "plot/plot.h"
#include "plot/qmplotzoomer.h"
#include "tests/plot/shownpart.h"

#include <QCoreApplication>
#include <QObject>
#include <QRectF>

#include <gmock/gmock.h>

#include <string>
#include <vector>

/// Writes down what a zoomer says, in order.
class ZoomerListener : public QObject
{
    Q_OBJECT

public:
    explicit ZoomerListener(QmPlotZoomer* zoomer)
    {
        connect(zoomer, SIGNAL(disableZoomOut(bool)), SLOT(onZoomOut(bool)));
        connect(zoomer, SIGNAL(maxScaledOut()), SLOT(onScaledOut()));
        connect(zoomer, SIGNAL(maxScaledIn()), SLOT(onOther()));
        connect(zoomer, SIGNAL(disableZoomIn(bool)), SLOT(onZoomIn(bool)));
        connect(zoomer, SIGNAL(newBounds(QRectF)), SLOT(onBounds(QRectF)));
        connect(zoomer, SIGNAL(newBounds(double, double)), SLOT(onOther()));
        connect(zoomer, SIGNAL(newBounds(double, double, double, double)), SLOT(onOther()));
    }

    std::vector<std::string> said;
    QRectF bounds;

public slots:

    void onZoomOut(bool disable) { said.emplace_back(disable ? "no way out" : "out"); }

    void onScaledOut() { said.emplace_back("full view"); }

    void onZoomIn(bool disable) { said.emplace_back(disable ? "no way in" : "in"); }

    void onBounds(QRectF rect)
    {
        said.emplace_back("bounds");
        bounds = rect;
    }

    void onOther() { said.emplace_back("something else"); }
};

/// A zoomer on a chart of 10 km by 50 dB, of which a tenth of the distances is shown.
class Zoomer : public testing::Test
{
protected:
    Zoomer()
        : zoomer(new QmPlotZoomer(&plot))
        , listener(zoomer)
    {
        plot.resize(800, 480);
        plot.show();
        QCoreApplication::processEvents();
        zoomer->setMinRange(0.5);
        zoomer->setMinYRange(0.05);
        zoomer->setMaxRect({0.0, 0.0, 10000.0, 50.0});
        view({2000.0, 10.0, 1000.0, 20.0});
    }

    /// Shows a part as others do it, without the zoomer and without a replot.
    void view(const QRectF& rect)
    {
        plot.setAxisScale(QwtPlot::xBottom, rect.x(), rect.x() + rect.width());
        plot.setAxisScale(QwtPlot::yLeft, rect.y(), rect.y() + rect.height());
    }

    QRectF shown() { return testing_support::shownPart(plot); }

    void expectShown(const QRectF& expected)
    {
        EXPECT_NEAR(shown().x(), expected.x(), 1e-9);
        EXPECT_NEAR(shown().y(), expected.y(), 1e-9);
        EXPECT_NEAR(shown().width(), expected.width(), 1e-9);
        EXPECT_NEAR(shown().height(), expected.height(), 1e-9);
    }

    Waveform::Plot plot;
    QmPlotZoomer* zoomer;
    ZoomerListener listener;
};
