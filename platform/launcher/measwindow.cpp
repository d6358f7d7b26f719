#include "platform/launcher/measwindow.h"

#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/warningwindow.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>

namespace {

constexpr int kProgressRow = 0;
constexpr int kContentRow = 1;
constexpr int kPanelRow = 2;
constexpr int kTouchHeight = 44;

/// A key that is held presses it once: its repeats would stop the run that it has started.
class ActionButton final : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (!event->isAutoRepeat()) {
            QPushButton::keyPressEvent(event);
        }
    }
};

} // namespace

MeasWindow::MeasWindow(QWidget* parent)
    : PluginWindow(parent)
    , grid(new QGridLayout(this))
    , panel(new ControlBottomPanel(this))
    , button(new ActionButton(tr("Start"), this))
    , progress(new QProgressBar(this))
{
    buildPage();
    connect(button, &QPushButton::clicked, this, &MeasWindow::startstop);
}

MeasWindow::~MeasWindow() = default;

void MeasWindow::buildPage()
{
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(progress, kProgressRow, 0, 1, -1);
    grid->addWidget(panel, kPanelRow, 0, 1, -1);
    grid->setRowStretch(kContentRow, 1);
    panel->setObjectName(QStringLiteral("bottomPanel"));
    panel->setActionWidget(button);
    button->setObjectName(QStringLiteral("actionButton"));
    button->setMinimumSize(2 * kTouchHeight, kTouchHeight);
    button->setAutoDefault(true); // Enter presses it as Space does
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->hide();
}

void MeasWindow::setModel(PluginModel* model)
{
    if (measModel) {
        disconnect(measModel, nullptr, this, nullptr);
    }
    PluginWindow::setModel(model);
    measModel = qobject_cast<MeasModel*>(model);
    if (measModel.isNull()) {
        return;
    }
    connect(measModel, qOverload<MeasModel*>(&MeasModel::started), this, &MeasWindow::measStarted);
    connect(measModel, qOverload<MeasModel*>(&MeasModel::stopped), this, &MeasWindow::measStopped);
    connect(measModel, qOverload<MeasModel*>(&MeasModel::stopped), this,
            &MeasWindow::tellFailedRun);
    connect(measModel, &MeasModel::refreshed, this, &MeasWindow::doUpdate);
    connect(measModel, &CardModel::cardLost, this, &MeasWindow::cardLost);
}

QPushButton* MeasWindow::actionButton() const
{
    return button;
}

void MeasWindow::doUpdate() { }

void MeasWindow::measStarted()
{
    button->setText(tr("Stop"));
    if (progress) {
        progress->show();
    }
}

void MeasWindow::measStopped()
{
    button->setText(tr("Start"));
    button->setEnabled(true);
    if (progress) {
        progress->hide();
    }
}

void MeasWindow::startstop()
{
    if (measModel.isNull()) {
        return;
    }
    if (measModel->running()) {
        measModel->stop(QString());
        return;
    }
    const int code = [this] {
        const QScopedValueRollback<bool> starting(isStarting, true);
        return measModel->start(0);
    }();
    if (code != 0) {
        finishFailedStart(code);
    }
}

/// Without a word the user would take what there is for the whole measurement.
void MeasWindow::tellFailedRun()
{
    const QString reason = measModel && !isStarting ? measModel->failure() : QString();
    if (!reason.isEmpty()) {
        startFailed(reason);
    }
}

void MeasWindow::analyseFinished() { }

void MeasWindow::startFailed(const QString& text)
{
    showWarning(text);
}

void MeasWindow::cardLost()
{
    showWarning(tr("The measurement card was disconnected."));
}

void MeasWindow::showWarning(const QString& text)
{
    if (warning == nullptr) {
        warning = new WarningWindow(this);
    }
    warning->show(text);
}

QGridLayout* MeasWindow::pageLayout() const
{
    return grid;
}

ControlBottomPanel* MeasWindow::bottomPanel() const
{
    return panel;
}

QProgressBar* MeasWindow::progressWidget() const
{
    return progress;
}

void MeasWindow::addWidget(QWidget* widget)
{
    grid->addWidget(widget, kContentRow, 0, 1, -1);
}

/// Leaves model and window idle, whichever of its announcements the model got to, then tells the
/// user.
void MeasWindow::finishFailedStart(int code)
{
    if (measModel && measModel->isStarted() && !measModel->running()) {
        measModel->stopped(QString());
    }
    button->setEnabled(true);
    const QString reason = measModel ? measModel->failure() : QString();
    startFailed(reason.isEmpty() ? tr("The measurement could not be started (code %1).").arg(code)
                                 : reason);
}
