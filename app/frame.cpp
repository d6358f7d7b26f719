#include "app/frame.h"

#include "app/filename.h"
#include "app/help.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/nightswitch.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/warningwindow.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QShortcut>
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
    button->setAutoDefault(true); // Enter presses it as Space does
    return button;
}

} // namespace

Frame::Frame(PluginWindow* window, AbstractKeeper* keeper)
    : window(window)
    , keeper(keeper)
    , title(new QLabel(this))
    , loadButton(newButton(tr("Load"), this))
    , saveButton(newButton(tr("Save"), this))
    , helpButton(newButton(tr("Help"), this))
    , warning(new WarningWindow(this))
{
    QFont font = title->font();
    font.setPointSize(14);
    font.setBold(true);
    title->setFont(font);
    loadButton->setObjectName("loadButton");
    saveButton->setObjectName("saveButton");
    helpButton->setObjectName("helpButton");
    helpButton->setEnabled(true);
    connect(helpButton, &QPushButton::clicked, this, [this] { help::show(this); });
    setAcceptDrops(true);

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(kMargin, kMargin / 2, kMargin, kMargin / 2);
    bar->setSpacing(kMargin);
    bar->addWidget(title, 1);
    auto* night = new NightSwitch(this);
    bar->addWidget(night);
    bar->addWidget(loadButton);
    bar->addWidget(saveButton);
    bar->addWidget(helpButton);
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
    connectKeys();
    setTabOrder(night, loadButton);
    setTabOrder(loadButton, saveButton);
    setTabOrder(saveButton, helpButton);
    loadButton->setFocus(); // what most begin with
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

/// The keys that every desktop knows; where a button has one, its tool tip tells.
void Frame::connectKeys()
{
    const auto addKey = [this](QKeySequence::StandardKey key, QPushButton* button) {
        const auto* shortcut = new QShortcut(QKeySequence(key), this);
        connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
        button->setToolTip(QKeySequence(key).toString(QKeySequence::NativeText));
    };
    addKey(QKeySequence::HelpContents, helpButton);
    addKey(QKeySequence::Open, loadButton);
    addKey(QKeySequence::Save, saveButton);
    const auto* quit = new QShortcut(Qt::CTRL + Qt::Key_Q, this);
    connect(quit, &QShortcut::activated, this, &Frame::close);
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

void Frame::comeToFront()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}

void Frame::dragEnterEvent(QDragEnterEvent* event)
{
    event->setAccepted(event->mimeData()->hasUrls());
    if (event->isAccepted()) {
        event->setDropAction(Qt::CopyAction); // the files stay where they are
    }
}

void Frame::dropEvent(QDropEvent* event)
{
    const filename::Dropped things = filename::dropped(*event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit dropped(things.files, things.elsewhere);
}

void Frame::closeEvent(QCloseEvent* event)
{
    closeWhenIdle = keeper != nullptr && keeper->isBusy();
    event->setAccepted(!closeWhenIdle);
    if (closeWhenIdle) {
        keeper->quitWanted();
    }
}
