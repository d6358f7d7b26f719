#include "app/frame.h"

#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/warningwindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kTouchHeight = 44;
constexpr int kButtonWidth = 110;
constexpr int kMargin = 8;

QPushButton* newButton(const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setMinimumSize(kButtonWidth, kTouchHeight);
    button->setEnabled(false);
    return button;
}

} // namespace

Frame::Frame(PluginWindow* window, AbstractKeeper* keeper)
    : window(window)
    , keeper(keeper)
    , title(new QLabel(this))
    , loadButton(newButton(tr("Load"), this))
    , saveButton(newButton(tr("Save"), this))
    , warning(new WarningWindow(this))
{
    QFont font = title->font();
    font.setPointSize(14);
    font.setBold(true);
    title->setFont(font);
    loadButton->setObjectName("loadButton");
    saveButton->setObjectName("saveButton");

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(kMargin, kMargin / 2, kMargin, kMargin / 2);
    bar->setSpacing(kMargin);
    bar->addWidget(title, 1);
    bar->addWidget(loadButton);
    bar->addWidget(saveButton);
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addLayout(bar);
    page->addWidget(window, 1);

    const QList<QObject*> filters = window->eventFilters();
    for (QObject* filter : filters) {
        installEventFilter(filter);
    }
    connect(window, &PluginWindow::setTitle, this, &Frame::showTitle);
    if (keeper != nullptr) {
        connectKeeper();
    }
}

Frame::~Frame()
{
    window->setParent(nullptr);
}

void Frame::connectKeeper()
{
    connect(keeper, &AbstractKeeper::loadEnabled, loadButton, &QPushButton::setEnabled);
    connect(keeper, &AbstractKeeper::saveEnabled, saveButton, &QPushButton::setEnabled);
    loadButton->setEnabled(keeper->isLoadEnabled());
    saveButton->setEnabled(keeper->isSaveEnabled());
    connect(loadButton, &QPushButton::clicked, keeper, &AbstractKeeper::load);
    connect(saveButton, &QPushButton::clicked, keeper, &AbstractKeeper::save);
    connect(keeper, &AbstractKeeper::busyChanged, this, [this](bool busy) {
        if (!busy && closeWhenIdle) {
            close();
        }
    });
}

void Frame::showTitle(const QString& text)
{
    title->setText(text);
    setWindowTitle(text);
}

void Frame::tell(const QString& text)
{
    warning->show(text, QString());
}

void Frame::closeEvent(QCloseEvent* event)
{
    closeWhenIdle = keeper != nullptr && keeper->isBusy();
    event->setAccepted(!closeWhenIdle);
    if (closeWhenIdle) {
        keeper->quitWanted();
    }
}
