#pragma once

#include "platform/launcher/filenameconverter.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class NamePrompt;
class ZuConfigModel;

/// Saves and loads for a plugin: owns the state of the frame's save and load buttons and leads the
/// user through a save.
///
/// Both buttons are off from the press until the work returns: the event loop may turn inside.
class AbstractKeeper : public QObject
{
    Q_OBJECT

public:
    explicit AbstractKeeper(QObject* parent = nullptr);
    ~AbstractKeeper() override;

    /// Saves under this name, which is a safe file name. \return 0, or negative where nothing was
    /// saved
    virtual int doSave(const QString& name) = 0;

    /// Asks for a file and loads it. \return 0, or negative where nothing was loaded
    virtual int doLoad() = 0;

    /// Loads the named file, which somebody has chosen already. In the base nothing can be.
    virtual int doLoadFile(const QString& file);

    /// Whether saving under this name would replace a file.
    [[nodiscard]] virtual bool fileExists(const QString& name) const = 0;

    /// Whether a save under this name, a safe one, now would replace a file: what the user is asked
    /// about. That of fileExists(), unless a save adds to the name.
    [[nodiscard]] virtual bool wouldReplace(const QString& name) const;

    /// The name proposed to the user.
    [[nodiscard]] virtual QString reportAutoName() const = 0;

    [[nodiscard]] bool isSaveEnabled() const; ///< as the button shows it now
    [[nodiscard]] bool isLoadEnabled() const;
    [[nodiscard]] bool isBusy() const; ///< a save or a load is under way
    [[nodiscard]] QDateTime measStartDate() const; ///< invalid before the first measurement
    [[nodiscard]] QDateTime measStopDate() const;

    /// The configuration model to use; not owned.
    void setConfig(ZuConfigModel* model);
    [[nodiscard]] ZuConfigModel* config() const;

    /// Who answers the questions of a save; dialogs at first.
    void setNamePrompt(std::unique_ptr<NamePrompt> prompt);

    void enableSave(bool enable);
    void enableLoad(bool enable);

public slots:
    /// The user wants to leave while a save or a load is under way, and waits for its end; what may
    /// take for ever is to end soon. The wish goes with the work: the next save knows nothing of
    /// it.
    void quitWanted();

    /// The buttons were pressed. Nothing happens while the button is off.
    ///
    /// A save proposes reportAutoName(), asks for a name until it is free or may be replaced, then
    /// calls doSave(). Giving up, or a name of which nothing usable is left, ends the save.
    void save();
    void load();

    /// A file was given by its name: on the command line, by the file manager. Nothing happens
    /// while load is off.
    void loadFile(const QString& file);

signals:
    void saveEnabled(bool enabled);
    void loadEnabled(bool enabled);
    void busyChanged(bool busy);

protected:
    void setMeasStartDate(const QDateTime& date);
    void setMeasStopDate(const QDateTime& date);

    /// Whether the user waits to leave.
    [[nodiscard]] bool isQuitWanted() const;

private:
    [[nodiscard]] QString acceptedName();

    /// Does the work with both buttons off, if it is allowed; the work may delete the keeper.
    void whileBusy(bool allowed, const std::function<void()>& work);
    void setBusy(bool now);
    void announce(bool couldSave, bool couldLoad);

    FileNameConverter converter;
    std::shared_ptr<NamePrompt> prompt; // held by a question that outlives the keeper
    QPointer<ZuConfigModel> configModel;
    QDateTime startDate;
    QDateTime stopDate;
    bool saveWanted = false;
    bool loadWanted = true;
    bool busy = false;
    bool leaving = false;
};
