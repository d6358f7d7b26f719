#include "window/textualanimator.h"

#include <QSignalSpy>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

QString step(TextualAnimator& animator)
{
    QString text;
    EXPECT_TRUE(QMetaObject::invokeMethod(&animator, "sendNewText", Q_RETURN_ARG(QString, text)));
    return text;
}

QStringList texts(const QSignalSpy& spy)
{
    QStringList all;
    for (const QList<QVariant>& arguments : spy) {
        all << arguments.first().toString();
    }
    return all;
}

constexpr int kNever_ms = 3'600'000;

class Animation : public testing::Test
{
protected:
    Animation()
    {
        animator.setText("Events");
        animator.setPointsCount(3);
        animator.setInterval(kNever_ms);
    }

    TextualAnimator animator;
    QSignalSpy told {&animator, SIGNAL(newText( QString ))};
};

TEST_F(Animation, ShowsPointsInTurnFromOneOn)
{
    animator.start();
    for (int i = 0; i < 4; ++i) {
        step(animator);
    }
    EXPECT_EQ(texts(told),
              QStringList({"Events.  ", "Events.. ", "Events...", "Events   ", "Events.  "}));
}

TEST_F(Animation, StepAnswersWhatItTells)
{
    animator.start();
    EXPECT_EQ(step(animator), "Events.. ");
    EXPECT_EQ(texts(told).last(), "Events.. ");
}

TEST_F(Animation, StartsWithTheBareTextAfterAStop)
{
    animator.start();
    animator.stop();
    EXPECT_FALSE(animator.isActive());
    told.clear();
    animator.start();
    EXPECT_EQ(texts(told), QStringList({"Events   "}));
}

TEST_F(Animation, StoppedOneAnswersNothingAndTellsNothing)
{
    EXPECT_EQ(step(animator), QString());
    animator.start();
    animator.stop();
    told.clear();
    EXPECT_EQ(step(animator), QString());
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(Animation, GoesOnByItself)
{
    animator.start(1);
    EXPECT_EQ(animator.interval(), 1);
    EXPECT_EQ(told.size(), 1) << "the first text waited";
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.size() >= 3; }));
    EXPECT_EQ(texts(told).mid(0, 3), QStringList({"Events.  ", "Events.. ", "Events..."}));
}

TEST_F(Animation, WithoutPointsTheTextIsBare)
{
    animator.setPointsCount(0);
    animator.start();
    step(animator);
    EXPECT_EQ(texts(told), QStringList({"Events", "Events"}));
    animator.setPointsCount(-2);
    EXPECT_EQ(step(animator), "Events");
}

TEST_F(Animation, FewerPointsTakeEffectAtOnce)
{
    animator.start();
    step(animator);
    step(animator);
    animator.setPointsCount(1);
    EXPECT_EQ(step(animator), "Events ");
    EXPECT_EQ(step(animator), "Events.");
}

TEST_F(Animation, TextChangesAlone)
{
    animator.start();
    animator.setText("Busy");
    EXPECT_EQ(step(animator), "Busy.. ") << "the points go on";
    EXPECT_EQ(told.size(), 2) << "a new text is told with the next step";
}

TEST_F(Animation, EveryTextHasTheSameLength)
{
    animator.start();
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(step(animator).size(), 9);
    }
}

TEST_F(Animation, StartsInTheIntervalThatItHas)
{
    animator.start();
    EXPECT_TRUE(animator.isActive());
    EXPECT_EQ(animator.interval(), kNever_ms);
    EXPECT_EQ(told.size(), 1) << "the first text waited";
}

TEST(TextualAnimator, SignalsAndSlotsAreTheAgreedOnes)
{
    QStringList names;
    const QMetaObject& meta = TextualAnimator::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        names << QString(meta.method(i).typeName()) + ' ' + meta.method(i).methodSignature();
    }
    names.sort();
    EXPECT_EQ(
        names,
        QStringList({"QString sendNewText()", "void newText(QString)", "void setPointsCount(int)",
                     "void setText(QString)", "void start()", "void start(int)", "void stop()"}));
}

TEST(TextualAnimator, GivenItsTextAtOnceItStartsBare)
{
    TextualAnimator animator("Busy", 2, nullptr);
    animator.setInterval(kNever_ms);
    const QSignalSpy told(&animator, SIGNAL(newText( QString )));
    animator.start();
    step(animator);
    EXPECT_EQ(texts(told), QStringList({"Busy  ", "Busy. "}));
}

TEST(TextualAnimator, IsEmptyAtFirst)
{
    TextualAnimator animator;
    animator.start(kNever_ms);
    EXPECT_EQ(step(animator), QString());
    EXPECT_TRUE(animator.isActive());
}

} // namespace
