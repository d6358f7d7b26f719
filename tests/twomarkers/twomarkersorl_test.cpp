#include "platform/otdr/orlcalc.h"
#include "tests/support/finish.h"
#include "tests/twomarkers/measuredtrace.h"

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace testing_support; // builder and units
using testing::ElementsAre;
using testing::Pair;
using Waveform::TwoMarkersModel;

/// What a slow calculator waits for and what it saw.
struct Gate
{
    [[nodiscard]] std::vector<std::pair<double, double>> asked()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return stretches;
    }

    QSemaphore open; ///< a computation takes one to go on
    std::atomic<int> begun {0};
    std::atomic<int> atOnce {0};
    std::atomic<int> mostAtOnce {0};
    std::atomic<int> done {0};
    std::atomic<bool> onGuiThread {false};
    std::mutex mutex;
    std::vector<std::pair<double, double>> stretches;
};

/// Begins at once and computes only when the gate is opened. Instead of a return loss it may tell
/// the place of marker B.
class SlowCalc : public ORLCalc
{
public:
    enum Answer
    {
        PlaceOfB,
        ReturnLoss
    };

    SlowCalc(std::shared_ptr<Gate> gate, Answer answer)
        : ORLCalc(Reflectogram())
        , gate(std::move(gate))
        , answer(answer)
    {
    }

    double recalculate(double a_m, double b_m) override
    {
        const int now = ++gate->atOnce;
        gate->mostAtOnce = std::max(now, gate->mostAtOnce.load());
        gate->onGuiThread = QThread::currentThread() == QCoreApplication::instance()->thread();
        {
            const std::lock_guard<std::mutex> lock(gate->mutex);
            gate->stretches.emplace_back(a_m, b_m);
        }
        ++gate->begun;
        gate->open.acquire();
        const double result = answer == PlaceOfB ? b_m : ORLCalc::recalculate(a_m, b_m);
        --gate->atOnce;
        ++gate->done;
        return result;
    }

private:
    std::shared_ptr<Gate> gate;
    Answer answer;
};

class BackgroundOrl : public MeasuredTrace
{
protected:
    BackgroundOrl()
        : fibre(files.measured(TraceBuilder().fibre(6_km), plainFibre()))
    {
    }

    ~BackgroundOrl() override { gate->open.release(1000); }

    /// Two markers at 100 m and 1100 m whose return loss is being computed.
    void begin(SlowCalc::Answer answer = SlowCalc::PlaceOfB)
    {
        model.setORLCalc(std::make_unique<SlowCalc>(gate, answer));
        put(100.0, 1100.0);
        model.setReflectogram(fibre);
        EXPECT_TRUE(QTest::qWaitFor([this] { return gate->begun == 1; }));
    }

    void moveBTo(double b_m)
    {
        markerB.setXValue(b_m);
        QMetaObject::invokeMethod(&model, "markerMoved");
    }

    /// Lets all computations go on until nothing comes any more.
    void settle()
    {
        gate->open.release(1000);
        finish();
    }

    [[nodiscard]] std::vector<double> told() const
    {
        std::vector<double> values;
        for (const QList<QVariant>& arguments : orls) {
            values.push_back(arguments.first().toDouble());
        }
        return values;
    }

    /// What the calculator itself tells of a trace.
    [[nodiscard]] static double truth(const Reflectogram& refl, double a_m, double b_m)
    {
        return ORLCalc(refl).recalculate(a_m, b_m);
    }

    Reflectogram fibre;
    std::shared_ptr<Gate> gate = std::make_shared<Gate>();
};

TEST_F(BackgroundOrl, IsToldTwiceWhereNothingElseWasAskedFor)
{
    begin();
    EXPECT_EQ(results.size(), 1); // all the rest does not wait for it
    EXPECT_EQ(orls.size(), 0);
    settle();
    EXPECT_THAT(told(), ElementsAre(1100.0, 1100.0));
    EXPECT_THAT(gate->asked(), ElementsAre(Pair(100.0, 1100.0)));
    EXPECT_FALSE(gate->onGuiThread);
}

TEST_F(BackgroundOrl, ThreeMovesMeanwhileMakeOneMoreComputationAtTheLastPlace)
{
    begin();
    moveBTo(1200.0);
    moveBTo(1300.0);
    moveBTo(1400.0);
    EXPECT_EQ(results.size(), 4);
    settle();
    EXPECT_THAT(gate->asked(), ElementsAre(Pair(100.0, 1100.0), Pair(100.0, 1400.0)));
    // The old value, the new one for which the second handler waits, and that of its own end twice.
    EXPECT_THAT(told(), ElementsAre(1100.0, 1400.0, 1400.0, 1400.0));
}

TEST_F(BackgroundOrl, QueuedComputationTakesThePlacesOfItsStart)
{
    begin();
    moveBTo(1200.0);
    markerB.setXValue(1500.0); // nobody is told
    settle();
    EXPECT_THAT(gate->asked(), ElementsAre(Pair(100.0, 1100.0), Pair(100.0, 1500.0)));
    EXPECT_THAT(told(), ElementsAre(1100.0, 1500.0, 1500.0, 1500.0));
}

TEST_F(BackgroundOrl, RequestAfterTheEndStartsAtOnce)
{
    begin();
    settle();
    orls.clear();
    moveBTo(1700.0);
    settle();
    EXPECT_THAT(told(), ElementsAre(1700.0, 1700.0));
    EXPECT_EQ(gate->begun, 2);
}

TEST_F(BackgroundOrl, ComputationsFollowOneAnother)
{
    begin();
    for (int i = 0; i < 200; ++i) {
        moveBTo(1200.0 + i);
        gate->open.release(3);
        if (i % 7 == 0) {
            QCoreApplication::processEvents();
        }
    }
    settle();
    EXPECT_EQ(gate->mostAtOnce, 1);
    EXPECT_EQ(gate->done, gate->begun);
    EXPECT_EQ(told().back(), 1399.0);
}

TEST_F(BackgroundOrl, IsNotAskedForWithoutALength)
{
    model.setORLCalc(std::make_unique<SlowCalc>(gate, SlowCalc::PlaceOfB));
    put(700.0, 700.0);
    model.setReflectogram(fibre);
    settle();
    EXPECT_EQ(results.size(), 1);
    EXPECT_EQ(gate->begun, 0);
    EXPECT_EQ(orls.size(), 0);
}

TEST_F(BackgroundOrl, IsNotAskedForBeforeTheFibreNorWithoutATrace)
{
    model.setORLCalc(std::make_unique<SlowCalc>(gate, SlowCalc::PlaceOfB));
    model.setReflectogram(fibre);
    put(-1.0, 700.0);
    model.calculate();
    put(700.0, -1.0);
    model.calculate();
    model.setReflectogram(Reflectogram());
    put(100.0, 700.0);
    model.calculate();
    settle();
    EXPECT_EQ(gate->begun, 0);
    EXPECT_EQ(orls.size(), 0);
}

TEST_F(BackgroundOrl, IsAskedForFromTheFrontOn)
{
    model.setReflectogram(fibre);
    put(700.0, 0.0);
    model.calculate();
    finish();
    ASSERT_EQ(orls.size(), 2);
    EXPECT_EQ(told().back(), truth(fibre, 0.0, 700.0));
}

TEST_F(BackgroundOrl, TraceExchangedMeanwhileIsMeasuredInTheEnd)
{
    const Reflectogram other =
        files.measured(TraceBuilder().fibre(6_km).attenuation(0.4_dB), plainFibre());
    ASSERT_GT(std::abs(truth(fibre, 100.0, 1100.0) - truth(other, 100.0, 1100.0)), 0.05);
    begin(SlowCalc::ReturnLoss);
    model.setReflectogram(other);
    EXPECT_EQ(gate->begun, 1); // queued
    settle();
    EXPECT_EQ(gate->begun, 2);
    ASSERT_EQ(orls.size(), 4);
    EXPECT_EQ(told().back(), truth(other, 100.0, 1100.0));
}

TEST_F(BackgroundOrl, TraceTakenAwayMeanwhileLeavesNoNumber)
{
    begin(SlowCalc::ReturnLoss);
    model.setReflectogram(Reflectogram());
    settle();
    EXPECT_EQ(gate->begun, 1); // without a trace there is nothing to ask for
    ASSERT_EQ(orls.size(), 2);
    EXPECT_TRUE(std::isnan(told().back()));
}

TEST_F(BackgroundOrl, EndsRightWhateverCameBetween)
{
    const Reflectogram other =
        files.measured(TraceBuilder().fibre(6_km).attenuation(0.4_dB), plainFibre());
    put(100.0, 1100.0);
    for (int i = 0; i < 300; ++i) {
        model.setReflectogram(i % 2 == 0 ? fibre : other);
        moveBTo(1000.0 + i);
        if (i % 5 == 0) {
            QCoreApplication::processEvents();
        }
    }
    finish();
    EXPECT_EQ(told().back(), truth(other, 100.0, 1299.0));
    for (const double orl : told()) {
        EXPECT_FALSE(std::isnan(orl));
    }
}

TEST_F(BackgroundOrl, QueuedRequestOfMarkersThatWentAsksNothing)
{
    auto own = std::make_unique<TwoMarkersModel>(nullptr);
    own->setORLCalc(std::make_unique<SlowCalc>(gate, SlowCalc::PlaceOfB));
    auto second = std::make_unique<QmPlotMarker>(&canvas);
    second->setXValue(900.0);
    own->setMarkers({&markerA, second.get()});
    own->setReflectogram(fibre);
    ASSERT_TRUE(QTest::qWaitFor([this] { return gate->begun == 1; }));
    own->calculate();
    second.reset();
    settle();
    EXPECT_EQ(gate->begun, 1);
}

TEST_F(BackgroundOrl, QueuedRequestOfAFirstMarkerThatWentAsksNothing)
{
    auto own = std::make_unique<TwoMarkersModel>(nullptr);
    own->setORLCalc(std::make_unique<SlowCalc>(gate, SlowCalc::PlaceOfB));
    auto first = std::make_unique<QmPlotMarker>(&canvas);
    markerB.setXValue(900.0);
    own->setMarkers({first.get(), &markerB});
    own->setReflectogram(fibre);
    ASSERT_TRUE(QTest::qWaitFor([this] { return gate->begun == 1; }));
    own->calculate();
    first.reset();
    settle();
    EXPECT_EQ(gate->begun, 1);
}

TEST_F(BackgroundOrl, ModelThatGoesWaitsForTheComputation)
{
    auto own = std::make_unique<TwoMarkersModel>(nullptr);
    own->setORLCalc(std::make_unique<SlowCalc>(gate, SlowCalc::PlaceOfB));
    own->setMarkers({&markerA, &markerB});
    put(100.0, 900.0);
    own->setReflectogram(fibre);
    own->calculate(); // one more in the queue, which nobody will want
    ASSERT_TRUE(QTest::qWaitFor([this] { return gate->begun == 1; }));
    std::thread opener([this] {
        QThread::msleep(50);
        gate->open.release(1000);
    });
    own.reset();
    EXPECT_EQ(gate->done, 1);
    opener.join();
    finish();
    EXPECT_EQ(gate->begun, 1);
}

} // namespace
