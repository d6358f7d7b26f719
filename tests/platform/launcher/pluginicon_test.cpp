#include "platform/launcher/pluginicon.h"

#include <QAbstractButton>
#include <QPointer>
#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

TEST(PluginIcon, IsAButtonOnTheStartScreen)
{
    QWidget screen;
    const PluginIcon icon("Waveform", QIcon(), &screen);
    ASSERT_NE(icon.button(), nullptr);
    EXPECT_EQ(icon.button()->parentWidget(), &screen);
    EXPECT_EQ(icon.button()->text(), "Waveform");
    EXPECT_GE(icon.button()->minimumHeight(), 44);
    const QSignalSpy clicked(&icon, SIGNAL(clicked()));
    icon.button()->click();
    EXPECT_EQ(clicked.count(), 1);
}

TEST(PluginIcon, TakesItsButtonAlong)
{
    QWidget screen;
    auto icon = std::make_unique<PluginIcon>("Waveform", QIcon(), &screen);
    const QPointer<QAbstractButton> button = icon->button();
    icon.reset();
    EXPECT_TRUE(button.isNull());
}

TEST(PluginIcon, GoesWithItsScreen)
{
    auto screen = std::make_unique<QWidget>();
    const QPointer<PluginIcon> icon = new PluginIcon("Waveform", QIcon(), screen.get());
    screen.reset();
    EXPECT_TRUE(icon.isNull());
}
