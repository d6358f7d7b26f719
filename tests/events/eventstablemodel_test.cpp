#include "events/eventstablemodel.h"
#include "platform/otdr/otdr.h"
#include "tests/events/eventat.h"
#include "tests/support/echo.h"
#include "tests/support/inlocale.h"
#include "tests/support/tracefiles.h"

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QPair>
#include <QPixmap>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using testing_support::eventAt;
using testing_support::realTraces;
using testing_support::TraceFiles;
using Waveform::EventsTableModel;

Event measured(Event::Type type, double loss_dB, double reflectance_dB)
{
    Event event = eventAt(type, 1000);
    event.loss = loss_dB;
    event.reflectance = reflectance_dB;
    return event;
}

Event section(double length_m, double loss_dB, double orl_dB)
{
    Event event = eventAt(Event::Fiber, 0);
    event.length = length_m;
    event.loss = loss_dB;
    event.orl = orl_dB;
    return event;
}

class EventsTable : public testing::Test
{
protected:
    EventsTable()
        : refl(files.plain())
        , tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning)
    {
    }

    void show(const EventList& events)
    {
        refl.setEventList(events);
        model.setReflectogram(refl);
    }

    QVariant value(int row, int column, int role = Qt::DisplayRole) const
    {
        return model.data(model.index(row, column), role);
    }

    QString text(int row, int column) const { return value(row, column).toString(); }

    QStringList column(int number) const
    {
        QStringList found;
        for (int row = 0; row < model.rowCount(); ++row) {
            found << text(row, number);
        }
        return found;
    }

    QStringList row(int number) const
    {
        QStringList found;
        for (int column = 0; column < model.columnCount(); ++column) {
            found << text(number, column);
        }
        return found;
    }

    QStringList headers() const
    {
        QStringList found;
        for (int column = 0; column < model.columnCount(); ++column) {
            found << model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        }
        return found;
    }

    TraceFiles files;
    Reflectogram refl;
    EventsTableModel model;
    QAbstractItemModelTester tester;
};

const QStringList kHeaders {"N", "Type", "Location", "Loss", "Reflection", "ORL", "Attenuation"};

TEST_F(EventsTable, HasSevenColumnsEvenWhenEmpty)
{
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 7);
    EXPECT_EQ(headers(), kHeaders);
}

TEST_F(EventsTable, HeadersSpeakTheUsersLanguageButTheNumbersDoNot)
{
    const testing_support::Echo language;
    EXPECT_EQ(headers(),
              QStringList({"N", "<Type>", "<Location>", "<Loss>", "<Reflection>", "<ORL>",
                           "<Attenuation>"}));
}

TEST_F(EventsTable, NumbersHaveTheMarkOfTheLocale)
{
    const testing_support::InLocale german(QLocale("de_DE"));
    Event splice = eventAt(Event::NonReflective, 2000);
    splice.loss = 0.25;
    show({eventAt(Event::SpanStart, 0), splice});
    EXPECT_EQ(text(0, 2), "0,00");
    EXPECT_EQ(text(1, 3), "0,25");
    EXPECT_FALSE(text(1, 2).contains('.')) << "grouped: " << qPrintable(text(1, 2));
}

TEST_F(EventsTable, OnlyColumnsHaveHeadersAndOnlyText)
{
    EXPECT_FALSE(model.headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
    EXPECT_FALSE(model.headerData(7, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.headerData(-1, Qt::Horizontal, Qt::DisplayRole).isValid());
}

TEST_F(EventsTable, ClearedHasNoRowsButItsHeaders)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 3000)});
    ASSERT_EQ(model.rowCount(), 2);
    const QSignalSpy resets(&model, SIGNAL(modelReset()));
    model.clear();
    EXPECT_EQ(resets.size(), 1);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 7);
    EXPECT_EQ(headers(), kHeaders);
}

TEST_F(EventsTable, HasARowForEveryEventSectionsIncluded)
{
    const QSignalSpy resets(&model, SIGNAL(modelReset()));
    show({eventAt(Event::SpanStart, 0), section(100, 1, 1), eventAt(Event::SpanEnd, 3000)});
    EXPECT_EQ(resets.size(), 1);
    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.rowCount(model.index(0, 0)), 0) << "no rows below a row";
}

TEST_F(EventsTable, NumbersEventsAndSkipsSections)
{
    show({eventAt(Event::SpanStart, 0), section(100, 1, 1), eventAt(Event::Reflective, 500)});
    EXPECT_EQ(column(EventsTableModel::Number), QStringList({"1", "", "2"}));
    EXPECT_FALSE(value(1, 0).isValid());
}

TEST_F(EventsTable, EventsThatDifferOnlyInPlaceHaveTheirOwnNumbers)
{
    show({eventAt(Event::NonReflective, 500), eventAt(Event::NonReflective, 600),
          section(100, 1, 1), eventAt(Event::NonReflective, 700)});
    EXPECT_EQ(column(EventsTableModel::Number), QStringList({"1", "2", "", "3"}));
}

TEST_F(EventsTable, EventThatTheTraceGotMeanwhileHasNoNumber)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::NonReflective, 500)});
    refl.setEventList({eventAt(Event::SpanStart, 0), eventAt(Event::Reflective, 700)});
    EXPECT_EQ(column(EventsTableModel::Number), QStringList({"1", ""}));
    model.setReflectogram(refl);
    EXPECT_EQ(column(EventsTableModel::Number), QStringList({"1", "2"}));
}

TEST_F(EventsTable, RowsOfEventsReadAsOneExpects)
{
    Event reflective = measured(Event::Reflective, 0.256, -45.678);
    reflective.orl = 33.0; // has no meaning for an event
    reflective.length = 1000.0;
    show({reflective});
    const QString metres = QString::number(
        OTDR::smpl2meters(1000, refl.dataSpacing(), refl.IOR(), refl.helix()), 'f', 2);
    EXPECT_EQ(row(0), QStringList({"1", "", metres, "0.26", "-45.68", "", ""}));
    EXPECT_FALSE(value(0, EventsTableModel::Type).isValid());
    EXPECT_FALSE(value(0, EventsTableModel::Orl).isValid());
    EXPECT_FALSE(value(0, EventsTableModel::Attenuation).isValid());
}

TEST_F(EventsTable, LocationFollowsTheTracesOwnIndexAndHelix)
{
    show({eventAt(Event::NonReflective, 1000)});
    const double before = text(0, EventsTableModel::Location).toDouble();
    refl.setIOR(refl.IOR() * 2.0);
    EXPECT_NEAR(text(0, EventsTableModel::Location).toDouble(), before / 2.0, 0.011);
    refl.setHelix(100.0);
    EXPECT_NEAR(text(0, EventsTableModel::Location).toDouble(), before / 4.0, 0.011);
}

TEST_F(EventsTable, RowsOfSectionsStandWithTheirLengthInParentheses)
{
    show({section(2500.0, 0.5, 31.239)});
    EXPECT_EQ(row(0), QStringList({"", "", "( 2500.00 )", "0.50", "-", "31.24", "0.200"}));
}

TEST_F(EventsTable, SectionsLossOfZeroIsANumberButItsReflectionNot)
{
    Event still = section(1234.567, 0.0, 0.0);
    still.reflectance = 0.0;
    Event bright = section(10.0, 0.1, 20.0);
    bright.reflectance = -60.0;
    show({still, bright});
    EXPECT_EQ(row(0), QStringList({"", "", "( 1234.57 )", "0.00", "-", "0.00", "0.000"}));
    EXPECT_EQ(text(1, EventsTableModel::Reflection), "-60.00");
}

TEST_F(EventsTable, LossOfExactlyZeroIsADash)
{
    show({measured(Event::NonReflective, 0.0, -50.0), measured(Event::NonReflective, 0.001, 0.0)});
    EXPECT_EQ(column(EventsTableModel::Loss), QStringList({"-", "0.00"}));
}

TEST_F(EventsTable, StartAndEndHaveNoLossWhateverIsStored)
{
    show({measured(Event::SpanStart, 1.5, -50.0), measured(Event::SpanEnd, 2.5, -14.7)});
    EXPECT_EQ(column(EventsTableModel::Loss), QStringList({"-", "-"}));
    EXPECT_EQ(column(EventsTableModel::Reflection), QStringList({"-50.00", "-14.70"}));
}

TEST_F(EventsTable, NonReflectiveAndPositiveEventsHaveNoReflectionWhateverIsStored)
{
    show({measured(Event::NonReflective, 0.2, -50.0), measured(Event::Positive, -0.2, -50.0)});
    EXPECT_EQ(column(EventsTableModel::Reflection), QStringList({"-", "-"}));
    EXPECT_EQ(column(EventsTableModel::Loss), QStringList({"0.20", "-0.20"}));
}

TEST_F(EventsTable, ReflectionOfExactlyZeroIsADash)
{
    show({measured(Event::Reflective, 0.2, 0.0)});
    EXPECT_EQ(text(0, EventsTableModel::Reflection), "-");
}

TEST_F(EventsTable, WhatIsNotKnownIsADash)
{
    show({eventAt(Event::Reflective, 100), eventAt(Event::Fiber, 100)});
    EXPECT_EQ(row(0).mid(EventsTableModel::Loss), QStringList({"-", "-", "", ""}));
    EXPECT_EQ(row(1), QStringList({"", "", "-", "-", "-", "-", "-"}));
}

TEST_F(EventsTable, EveryTypeHasAPictureOfItsOwn)
{
    const QList<Event::Type> types {Event::SpanStart, Event::Reflective, Event::NonReflective,
                                    Event::Positive,  Event::Fiber,      Event::SpanEnd};
    EventList events;
    for (const Event::Type type : types) {
        events << eventAt(type, 1000);
    }
    show(events);
    QList<QImage> seen;
    for (int row = 0; row < types.size(); ++row) {
        const auto icon = value(row, EventsTableModel::Type, Qt::DecorationRole).value<QPixmap>();
        EXPECT_EQ(icon.size(), QSize(24, 24));
        EXPECT_TRUE(icon.hasAlphaChannel()) << "it stands on rows of any colour";
        // The shape alone tells them apart.
        const QImage shape = icon.toImage().convertToFormat(QImage::Format_Alpha8);
        EXPECT_FALSE(seen.contains(shape)) << static_cast<char>(types[row]);
        seen << shape;
        for (const int other : {0, 2, 3, 4, 5, 6}) {
            EXPECT_FALSE(value(row, other, Qt::DecorationRole).isValid());
        }
    }
}

TEST_F(EventsTable, EachTypeHasThePictureOfItsName)
{
    const QList<QPair<Event::Type, QString>> names {
        {Event::SpanStart, "spanstart"},   {Event::Reflective, "refl"},
        {Event::NonReflective, "nonrefl"}, {Event::Positive, "positive"},
        {Event::Fiber, "fiber"},           {Event::SpanEnd, "spanend"}};
    for (const auto& [type, name] : names) {
        show({eventAt(type, 1000)});
        const auto icon = value(0, EventsTableModel::Type, Qt::DecorationRole).value<QPixmap>();
        const QPixmap file(QString(":/events/resources/ev-%1.png").arg(name));
        EXPECT_EQ(icon.toImage(), file.toImage()) << qPrintable(name);
    }
}

TEST_F(EventsTable, PicturesComeInTwiceTheSizeToo)
{
    for (const char* name : {"spanstart", "refl", "nonrefl", "positive", "fiber", "spanend"}) {
        const QString file = QString(":/events/resources/ev-%1").arg(name);
        EXPECT_EQ(QImage(file + ".png").size(), QSize(24, 24)) << name;
        EXPECT_EQ(QImage(file + "@2x.png").size(), QSize(48, 48)) << name;
    }
}

TEST_F(EventsTable, UnknownTypeHasAnEmptyPicture)
{
    Event odd = eventAt(Event::Reflective, 100);
    odd.type = static_cast<Event::Type>('x');
    show({odd});
    const QVariant icon = value(0, EventsTableModel::Type, Qt::DecorationRole);
    ASSERT_EQ(icon.userType(), qMetaTypeId<QPixmap>());
    EXPECT_TRUE(icon.value<QPixmap>().isNull());
    EXPECT_EQ(model.typeName(model.index(0, 1)), QString());
}

TEST_F(EventsTable, PictureIsInTheMiddleAndNumbersAtTheRight)
{
    show({eventAt(Event::SpanStart, 0)});
    for (int column = 0; column < 7; ++column) {
        EXPECT_EQ(value(0, column, Qt::TextAlignmentRole).toInt(),
                  (column == 1 ? Qt::AlignHCenter : Qt::AlignRight) | Qt::AlignVCenter);
    }
}

TEST_F(EventsTable, HasNothingInOtherRolesOrPlaces)
{
    show({eventAt(Event::SpanStart, 0)});
    for (const int role : {Qt::ToolTipRole, Qt::EditRole, Qt::BackgroundRole, Qt::FontRole}) {
        EXPECT_FALSE(value(0, 2, role).isValid());
    }
    EXPECT_FALSE(model.data(QModelIndex(), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data(QModelIndex(), Qt::TextAlignmentRole).isValid());
    EXPECT_FALSE(model.eventValue(QModelIndex()).isValid());
    EXPECT_EQ(model.typeName(QModelIndex()), QString());
}

TEST_F(EventsTable, CellThatIsGoneHasNothing)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 100)});
    const QModelIndex last = model.index(1, 2);
    ASSERT_TRUE(model.data(last, Qt::DisplayRole).isValid());
    refl.setEventList({});
    EXPECT_FALSE(model.data(last, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.eventValue(last).isValid());
}

/// Makes an index of any cell.
struct AnyEventCell : EventsTableModel
{
    using EventsTableModel::createIndex;
};

TEST_F(EventsTable, CellRightOfTheLastColumnHasNothing)
{
    refl.setEventList({eventAt(Event::SpanStart, 0)});
    AnyEventCell table;
    table.setReflectogram(refl);
    EXPECT_TRUE(table.data(table.createIndex(0, 6), Qt::TextAlignmentRole).isValid());
    EXPECT_FALSE(table.data(table.createIndex(0, 7), Qt::TextAlignmentRole).isValid());
    EXPECT_EQ(table.typeName(table.createIndex(0, 7)), QString());
}

TEST_F(EventsTable, KnowsReflectionsThatAreOnlyABound)
{
    EventList events;
    for (const Event::Type type : {Event::Reflective, Event::NonReflective, Event::SpanEnd}) {
        events << eventAt(type, 100 * (1 + events.size()));
        events.last().reflectance = -14.7;
        events.last().saturated = true;
    }
    events << eventAt(Event::Reflective, 900);
    events.last().reflectance = -40.0;
    show(events);
    const auto isBound = [this](int row, int column) {
        return model.isBound(model.index(row, column));
    };
    EXPECT_TRUE(isBound(0, EventsTableModel::Reflection));
    EXPECT_FALSE(isBound(0, EventsTableModel::Loss));
    EXPECT_FALSE(isBound(1, EventsTableModel::Reflection)) << "a dash";
    EXPECT_TRUE(isBound(2, EventsTableModel::Reflection));
    EXPECT_FALSE(isBound(3, EventsTableModel::Reflection));
    EXPECT_FALSE(model.isBound(QModelIndex()));
    EXPECT_EQ(value(0, EventsTableModel::Reflection).toString(), "-14.70") << "a number as ever";
}

TEST_F(EventsTable, SaysItsPicturesInWords)
{
    show({eventAt(Event::SpanStart, 0), section(1, 1, 1), eventAt(Event::Reflective, 1),
          eventAt(Event::NonReflective, 1), eventAt(Event::Positive, 1),
          eventAt(Event::SpanEnd, 1)});
    QStringList names;
    for (int row = 0; row < 6; ++row) {
        names << model.typeName(model.index(row, 0));
    }
    EXPECT_EQ(names,
              QStringList({"Start of the fibre", "Fibre section", "Reflective event",
                           "Non-reflective event", "Positive event: the level seems to rise",
                           "End of the fibre"}));
}

TEST_F(EventsTable, ResetEmptiesItsSelectionAndSaysSo)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 100)});
    QItemSelectionModel* selection = model.selectionModel();
    ASSERT_EQ(selection->model(), &model);
    selection->setCurrentIndex(model.index(1, 0),
                               QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QSignalSpy current(selection, SIGNAL(currentRowChanged(QModelIndex, QModelIndex)));
    model.setReflectogram(refl);
    ASSERT_EQ(current.size(), 1);
    EXPECT_EQ(current[0][0].toModelIndex().row(), -1);
    EXPECT_FALSE(selection->currentIndex().isValid());
    EXPECT_FALSE(selection->hasSelection());

    selection->setCurrentIndex(model.index(0, 0), QItemSelectionModel::Select);
    current.clear();
    model.clear();
    EXPECT_EQ(current.size(), 1);
    model.clear();
    EXPECT_EQ(current.size(), 1) << "nothing changed";
}

TEST_F(EventsTable, ShowsTheEventsOfRealFiles)
{
    if (realTraces().isEmpty()) {
        GTEST_SKIP() << "no trace files at hand";
    }
    for (const QString& file : realTraces()) {
        const Reflectogram trace(file);
        model.setReflectogram(trace);
        ASSERT_EQ(model.rowCount(), trace.getEventList().size());
        int number = 0;
        for (int row = 0; row < model.rowCount(); ++row) {
            const Event event = trace.getEventList().at(row);
            if (event.type == Event::Fiber) {
                const double told = trace.getEventList().at(row + 1).attenuationBefore;
                EXPECT_EQ(text(row, EventsTableModel::Attenuation),
                          Event::isKnown(told) ? QString::number(told, 'f', 3) : QString("-"))
                    << qPrintable(file) << " row " << row;
                continue;
            }
            EXPECT_EQ(text(row, EventsTableModel::Number), QString::number(++number));
            EXPECT_NEAR(text(row, EventsTableModel::Location).toDouble(), event.coordinate,
                        0.006 + trace.smpl2dist(0.5))
                << qPrintable(file) << " row " << row;
        }
    }
}

} // namespace
