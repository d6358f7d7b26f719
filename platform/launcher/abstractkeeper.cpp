#include "platform/launcher/abstractkeeper.h"

#include "platform/launcher/dialognameprompt.h"
#include "platform/launcher/launcherlog.h"
#include "platform/launcher/zuconfigmodel.h"

AbstractKeeper::AbstractKeeper(QObject* parent)
    : QObject(parent)
    , prompt(std::make_shared<DialogNamePrompt>())
{
}

AbstractKeeper::~AbstractKeeper() = default;

bool AbstractKeeper::isSaveEnabled() const
{
    return saveWanted && !busy;
}

bool AbstractKeeper::isLoadEnabled() const
{
    return loadWanted && !busy;
}

bool AbstractKeeper::isBusy() const
{
    return busy;
}

QDateTime AbstractKeeper::measStartDate() const
{
    return startDate;
}

QDateTime AbstractKeeper::measStopDate() const
{
    return stopDate;
}

void AbstractKeeper::setConfig(ZuConfigModel* model)
{
    configModel = model;
}

ZuConfigModel* AbstractKeeper::config() const
{
    return configModel;
}

void AbstractKeeper::setNamePrompt(std::unique_ptr<NamePrompt> newPrompt)
{
    if (newPrompt != nullptr) {
        prompt = std::move(newPrompt);
    }
}

void AbstractKeeper::enableSave(bool enable)
{
    const bool could = isSaveEnabled();
    saveWanted = enable;
    announce(could, isLoadEnabled());
}

void AbstractKeeper::enableLoad(bool enable)
{
    const bool could = isLoadEnabled();
    loadWanted = enable;
    announce(isSaveEnabled(), could);
}

void AbstractKeeper::save()
{
    whileBusy(isSaveEnabled(), [this] {
        const QPointer<AbstractKeeper> alive(this);
        const QString name = acceptedName();
        if (alive && !name.isEmpty()) {
            doSave(name);
        }
    });
}

void AbstractKeeper::load()
{
    whileBusy(isLoadEnabled(), [this] { doLoad(); });
}

void AbstractKeeper::loadFile(const QString& file)
{
    whileBusy(isLoadEnabled(), [this, file] { doLoadFile(file); });
}

bool AbstractKeeper::wouldReplace(const QString& name) const
{
    return fileExists(name);
}

int AbstractKeeper::doLoadFile(const QString& /*file*/)
{
    return -1;
}

void AbstractKeeper::quitWanted()
{
    leaving = true;
}

bool AbstractKeeper::isQuitWanted() const
{
    return leaving;
}

void AbstractKeeper::whileBusy(bool allowed, const std::function<void()>& work)
{
    if (!allowed) {
        return;
    }
    const QPointer<AbstractKeeper> alive(this);
    leaving = false;
    setBusy(true);
    work();
    if (alive) {
        setBusy(false);
    }
}

void AbstractKeeper::setMeasStartDate(const QDateTime& date)
{
    startDate = date;
}

void AbstractKeeper::setMeasStopDate(const QDateTime& date)
{
    stopDate = date;
}

/// The safe name that the user settled on; empty where there is none, or where the keeper went
/// meanwhile.
QString AbstractKeeper::acceptedName()
{
    const QPointer<AbstractKeeper> alive(this);
    const std::shared_ptr<NamePrompt> asked = prompt;
    QString proposed = reportAutoName();
    for (;;) {
        const std::optional<QString> typed = asked->askName(proposed);
        if (!typed || alive.isNull()) {
            return {};
        }
        const QString name = converter.convert(*typed);
        if (name.isEmpty()) {
            qCInfo(launcherLog) << "not a usable file name:" << *typed;
            return {};
        }
        const bool isThere = wouldReplace(name); // a drive may take its time; the window goes on
        if (alive.isNull()) {
            return {};
        }
        if (!isThere || asked->askOverwrite(name)) {
            return alive.isNull() ? QString() : name;
        }
        if (alive.isNull()) {
            return {};
        }
        proposed = name;
    }
}

void AbstractKeeper::setBusy(bool now)
{
    const bool couldSave = isSaveEnabled();
    const bool couldLoad = isLoadEnabled();
    busy = now;
    emit busyChanged(now);
    announce(couldSave, couldLoad);
}

/// Emits what has changed against what the buttons could before.
void AbstractKeeper::announce(bool couldSave, bool couldLoad)
{
    if (couldSave != isSaveEnabled()) {
        emit saveEnabled(isSaveEnabled());
    }
    if (couldLoad != isLoadEnabled()) {
        emit loadEnabled(isLoadEnabled());
    }
}
