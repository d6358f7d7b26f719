#pragma once

#include "platform/launcher/measmodel.h"
#include "platform/otdr/event.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/supparamsblock.h"
#include "platform/otdr/wfmeasparams.h"

#include <QDir>
#include <QFileSystemWatcher>
#include <QString>

#include <memory>

class CardController;
class OtdrMeasController;
class ZuConfigModel;

namespace Waveform {

// What is measured where the configuration says nothing.
extern const char* const defPulse; ///< ns
extern const char* const defIOR;
extern const char* const defHelix; ///< percent
extern const char* const defDistance; ///< m
extern const char* const defRBS; ///< dB at 1 ns
extern const char* const defDuration; ///< s
extern const char* const defWavelength; ///< nm

/// The measurement: its parameters, its start and stop, the trace it leaves and the events found in
/// it.
///
/// Runs the acquisition program through its controller and watches the temporary directory, in
/// which every refresh of the trace appears as a new snapshot file.
class Model : public MeasModel
{
    Q_OBJECT

public:
    /// What checkWFSnapshot() finds.
    enum SnapshotCheck
    {
        NewSnapshot = 0,
        SameSnapshot = 1,
        UnreadableSnapshot = 2,
        NoSnapshot = 3,
    };

    explicit Model(CardController* card);
    ~Model() override;

    [[nodiscard]] bool running() const override;

    /// Starts a measurement; the mode has no meaning here.
    /// \return 0, the card's negative code where it refuses, or that of the controller; negative
    /// during a run, which goes on
    int start(unsigned int mode) override;
    int stop(const QString& reason) override;

    [[nodiscard]] WfMeasParams currentParams() const { return params; }

    [[nodiscard]] const SupParamsBlock& supParams() const { return *supBlock; }

    // The configured parameters; the defaults above where nothing is configured.
    [[nodiscard]] quint16 pulse() const; ///< ns, truncated
    [[nodiscard]] quint16 wavelength() const; ///< nm, rounded; 0 for both wavelengths
    [[nodiscard]] double distance() const; ///< m
    [[nodiscard]] double helix() const; ///< percent
    [[nodiscard]] double ior() const; ///< of 1310 nm, whatever the wavelength

    /// A configured value as a number.
    [[nodiscard]] double setting(QString key, QString section, QString def) const;

    /// Writes the settings file for the acquisition program and tells its path.
    [[nodiscard]] QString summCfgFileName() const;

    /// The directory of the user's temporary files; made where it is missing.
    [[nodiscard]] QDir tempDir() const;

    /// Path of a temporary file; name begins with a slash.
    [[nodiscard]] QString tmpFileName(const QString& name) const;
    [[nodiscard]] QString waveformSnapshotName() const;
    void setTmpFiles();

    /// Compares the snapshot file with the last one seen.
    int checkWFSnapshot();

    void preformSupplierParameters(CardController* card);
    void formSupplierParameters(CardController* card);

public slots:
    void stopped(const QString& channel) override;
    void onCardConnected(CardController* card);
    void onCardDisconnected(CardController* card);
    void onGatherStarted();
    void onMeasStarted(int num, int from, WfMeasParams params);
    void onMeasFinished(int num);
    void onAnalisisStarted();
    void onEventFound(QString event);
    void onAnalisisFinished();

    /// The run is over. What went wrong in it is in failure() before the listeners hear of its end.
    void onGatherFinished();

signals:
    /// There is a new snapshot. The duration in params is what has been measured so far.
    void measured(QString reflFileName, WfMeasParams params);
    void measTick(int rTime, int wavelength); ///< time left of the trace, s; nm
    void analisisStarted();
    void analisisFinished();
    void eventListReady(EventList _evList); // NOLINT(bugprone-reserved-identifier): a given name
    void measStarted();
    void measFinished();
    void setActionButtonEnabled(bool enabled);

protected:
    void doInit() override;
    void timerEvent(QTimerEvent* event) override;

private slots:
    int notifyMeasured();
    void updated(QVariantMap& map) override;
    void directoryChanged(QString directory);

private:
    using MeasModel::updated;

    void initWfMeasController();
    void watchAgain();
    void removeSettingsFile();
    void noteTrouble(const QString& text);
    [[nodiscard]] WfMeasParams paramsForWindow() const;

    WfMeasParams params;
    OtdrMeasController* controller = nullptr;
    int timerId = -1;
    QString snapshotName;
    int snapshotChecksum = -1;
    std::unique_ptr<SupParamsBlock> supBlock;
    Reflectogram trace;
    EventList events;
    bool traceIsOpen = false; ///< begun and not ended
    QString trouble; ///< of the run, in words for the user; the first that came
    bool cardConnected = false;
    ZuConfigModel* config = nullptr;
    std::unique_ptr<QFileSystemWatcher> watcher;
};

} // namespace Waveform
