#include "tests/soak/deskuser.h"

#include "app/frame.h"
#include "app/host.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/choicepopup.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/warningwindow.h"
#include "tests/plot/finger.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QTreeView>
#include <QWheelEvent>

namespace testing_support {

namespace {

constexpr int kPatience_ms = 60'000;
constexpr int kGlance_ms = 5; ///< between two looks at what is waited for

QAbstractButton* buttonIn(const QWidget& window, const QString& caption)
{
    const auto buttons = window.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        if (button->isVisible() && button->text() == caption) {
            return button;
        }
    }
    return nullptr;
}

} // namespace

DeskUser::DeskUser(Host& host)
    : host(host)
{
}

void DeskUser::fail(const QString& what)
{
    if (trouble.isEmpty()) {
        trouble = what;
    }
}

QAbstractButton* DeskUser::button(const QString& caption) const
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        QAbstractButton* found = window->isVisible() ? buttonIn(*window, caption) : nullptr;
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

QWidget* DeskUser::named(const QString& name) const
{
    auto* found = host.frame()->findChild<QWidget*>(name);
    return found != nullptr && found->isVisible() ? found : nullptr;
}

QList<QWidget*> DeskUser::allOfClass(const char* className) const
{
    QList<QWidget*> found;
    const QWidgetList all = QApplication::allWidgets();
    for (QWidget* widget : all) {
        if (widget->isVisible() && widget->inherits(className)) {
            found << widget;
        }
    }
    return found;
}

QWidget* DeskUser::ofClass(const char* className) const
{
    return allOfClass(className).value(0);
}

void DeskUser::tap(QWidget* widget)
{
    if (widget == nullptr || !widget->isEnabled()) {
        fail(widget == nullptr ? QString("what is to be touched is not there")
                               : QString("%1 is off").arg(widget->objectName()));
    }
    if (trouble.isEmpty()) {
        QTest::mouseClick(widget, Qt::LeftButton);
    }
}

void DeskUser::tapButton(const QString& caption)
{
    QAbstractButton* found = button(caption);
    if (found == nullptr || !found->isEnabled()) {
        fail(QString("the button %1 cannot be pressed").arg(caption));
    }
    tap(found);
}

void DeskUser::showPanel(const QString& caption, bool shown)
{
    QAbstractButton* found = button(caption);
    if (found == nullptr) {
        fail("no panel " + caption);
    } else if (found->isChecked() != shown) {
        tap(found);
    }
}

void DeskUser::choose(const QString& title, const QString& entry)
{
    showPanel("Settings", true);
    const auto boxes = host.frame()->findChildren<HistoryCombo*>();
    for (HistoryCombo* box : boxes) {
        if (box->whatsThis() == title) {
            tap(box);
            QWidget* popup = ofClass("ChoicePopup");
            tap(popup == nullptr ? nullptr : buttonIn(*popup, entry));
            waitUntil([&] { return box->currentText() == entry; }, title + " " + entry);
            return;
        }
    }
    fail("no box " + title);
}

void DeskUser::measure()
{
    showPanel("Settings", true);
    auto* window = qobject_cast<MeasWindow*>(host.window());
    auto* model = qobject_cast<MeasModel*>(host.model());
    QSignalSpy stopped(model, SIGNAL(stopped(MeasModel*)));
    QSignalSpy measured(model, SIGNAL(measured(QString, WfMeasParams)));
    bool isRealtime = false;
    const auto boxes = host.frame()->findChildren<HistoryCombo*>();
    for (const HistoryCombo* box : boxes) {
        isRealtime |= box->currentText() == QChar(0x221E);
    }
    tap(window->actionButton());
    if (isRealtime) {
        waitUntil([&] { return measured.size() >= 3 && window->actionButton()->isEnabled(); },
                  "three refreshes");
        tap(window->actionButton());
    }
    waitUntil([&] { return !stopped.isEmpty(); }, "the end of the run");
    if (!model->failure().isEmpty()) {
        fail(model->failure());
    }
    settle();
}

void DeskUser::answerName(QWidget& dialog, const QString& name)
{
    auto* edit = dialog.findChild<QLineEdit*>();
    if (edit == nullptr) {
        fail("nobody asks for a name");
        return;
    }
    edit->selectAll();
    QTest::keyClicks(edit, name);
    whenAsked([](QWidget& question) { // or the wait window, which wants none
        if (auto* box = qobject_cast<QMessageBox*>(&question)) {
            QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
        }
    });
    tap(buttonIn(dialog, "Save"));
}

void DeskUser::save(const QString& name)
{
    whenAsked([this, name](QWidget& dialog) { answerName(dialog, name); });
    QSignalSpy saved(host.keeper(), SIGNAL(saved(QString)));
    tap(named("saveButton"));
    waitUntil([&] { return !host.keeper()->isBusy(); }, "the end of the save");
    if (saved.isEmpty()) {
        fail(name + " was not saved");
    }
    waitUntil([this] { return ofClass("WarningWindow") != nullptr; }, "word of the save");
    readMessages();
}

void DeskUser::readMessages()
{
    const QList<QWidget*> messages = allOfClass("WarningWindow");
    for (QWidget* message : messages) {
        tap(buttonIn(*message, "OK"));
    }
    settle();
}

void DeskUser::load(int count)
{
    whenAsked([this, count](QWidget& dialog) {
        auto* list = dialog.findChild<QTreeView*>();
        if (list == nullptr || list->model()->rowCount() < count) {
            fail("too few files to load");
            QTest::keyClick(&dialog, Qt::Key_Escape);
            return;
        }
        for (int row = 0; row < count; ++row) {
            const QPoint place = list->visualRect(list->model()->index(row, 0)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
        }
        tap(buttonIn(dialog, "Load"));
    });
    tap(named("loadButton"));
    waitUntil([this] { return !host.keeper()->isBusy(); }, "the end of the load");
    settle();
}

void DeskUser::chooseFromMenu(int row, const QString& entry)
{
    showPanel("Reflectograms", true);
    auto* table = qobject_cast<QTableView*>(named("reflectograms"));
    if (table == nullptr || table->model()->rowCount() <= row) {
        fail("no trace to choose");
        return;
    }
    table->scrollTo(table->model()->index(row, 0));
    const QPoint place = table->visualRect(table->model()->index(row, 0)).center();
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    QWidget* menu = ofClass("ReflTableMenu");
    tap(menu == nullptr ? nullptr : buttonIn(*menu, entry));
    settle();
}

void DeskUser::drag(QWidget* widget, QPoint from, QPoint by)
{
    if (widget == nullptr || !trouble.isEmpty()) {
        fail("what is to be dragged is not there");
        return;
    }
    constexpr int kSteps = 4;
    Finger finger(*widget->window());
    finger.press(*widget, from);
    for (int step = 0; step < kSteps; ++step) {
        finger.moveBy(by.x() / kSteps, by.y() / kSteps);
    }
    finger.release();
    QCoreApplication::processEvents();
}

void DeskUser::press(int key)
{
    QTest::keyClick(host.frame(), static_cast<Qt::Key>(key));
}

void DeskUser::turnWheel(int notches)
{
    constexpr int kNotch = 120;
    QWidget* chart = ofClass("Waveform::Plot");
    const QPointF place = chart->rect().center();
    QWheelEvent event(place, chart->mapToGlobal(place.toPoint()), {}, {0, notches * kNotch},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(chart, &event);
}

void DeskUser::close(QWidget* dialog)
{
    if (dialog == nullptr) {
        fail("there is nothing to close");
        return;
    }
    QTest::keyClick(dialog, Qt::Key_Escape);
    settle();
}

void DeskUser::whenAsked(const std::function<void(QWidget&)>& answer)
{
    // A dialog is answered once it waits: only then has it an event loop that it can leave.
    const QPointer<QWidget> before = QApplication::activeModalWidget();
    QTimer::singleShot(kGlance_ms, host.frame(), [this, answer, before] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog != nullptr && dialog != before && dialog->isVisible()) {
            answer(*dialog);
        } else if (trouble.isEmpty() && host.keeper()->isBusy()) {
            whenAsked(answer);
        }
    });
}

void DeskUser::waitUntil(const std::function<bool()>& isSo, const QString& what)
{
    if (trouble.isEmpty() && !QTest::qWaitFor(isSo, kPatience_ms)) {
        fail("waited in vain for " + what);
    }
}

void DeskUser::settle()
{
    for (int round = 0; round < 3; ++round) {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

} // namespace testing_support
