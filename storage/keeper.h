#pragma once

#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/filedialog.h"
#include "platform/launcher/filenameconverter.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wfmeasparams.h"

#include <QDeadlineTimer>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class CardController;
class MeasModel;

namespace Waveform {

class Model;
class ReflsTableModel;

/// Saves the main trace with those measured together with it, and loads traces.
///
/// A report or a flash drive that hangs does not keep a user here who wants to leave: after 5 s it
/// is given up; the traces are saved all the same.
class Keeper : public AbstractKeeper
{
    Q_OBJECT

public:
    Keeper(CardController* card, ReflsTableModel* refls, QObject* parent = nullptr);

    /// Follows the start and stop of measurements. The model may be null.
    void setMeasModel(Model* model);

    int doSave(const QString& name) override;
    int doLoad() override;
    int doLoadFile(const QString& file) override;
    [[nodiscard]] bool fileExists(const QString& name) const override;

    /// The same also for the files that a save of the main trace's group writes.
    [[nodiscard]] bool wouldReplace(const QString& name) const override;
    [[nodiscard]] QString reportAutoName() const override;

    /// The directory of saved traces; made where it is missing.
    [[nodiscard]] QString storeDir() const;
    [[nodiscard]] QString flashcardDir() const;

    /// A file that goes with a saved one: beside it, under its name, with another extension.
    [[nodiscard]] static QString auxFileName(const QString& fileName, const QString& extension);

    /// What is added to the name of a saved group for each of its traces, by their wavelengths:
    /// nothing to a lone one. Where one wavelength was measured more than once, the later ones are
    /// numbered, so that none replaces another.
    [[nodiscard]] static QStringList suffixes(const QList<Reflectogram>& group);

    /// A trace was saved under this path, which has no extension: the next automatic name is due.
    void saveComplied(const QString& fileName);

    /// The path of the report's template for a locale such as "ru_RU": that configured for its
    /// language, or else for any. May be empty.
    [[nodiscard]] static QString reportTemplate(const QString& localeName);

    /// Between the start and the stop of a measurement.
    [[nodiscard]] bool isMeasuring() const { return measRunning; }

    /// Where the configuration of the last measurement is kept; empty without a model.
    [[nodiscard]] QString configFileName() const;

    /// Writes the configuration of the measurement that just ended. False where the file cannot be
    /// written.
    [[nodiscard]] bool saveConfig(const QString& fileName) const;

    /// What saveConfig() wrote; an empty map where the file cannot be read.
    [[nodiscard]] static QVariantMap unserialize(const QString& fileName);
    [[nodiscard]] static WfMeasParams wfMeasParams(const QVariantMap& map);

public slots:
    void started();
    void stopped();
    void started(QString channel);
    void stopped(QString channel);

    /// Running values of the measurement, of which nothing is kept.
    void updated(QVariantMap& map, QString channel);
    void setEventsFindingStatus(bool inProgress);
    void onChangeMainRefl(Reflectogram refl);

signals:
    void saved(QString fileName);
    void setTitle(QString title);
    void loadRefl(QString reflFileName);
    void setWaitWindowVisible(bool visible);
    void showNotification(QString text);
    void maxReflsLimitReached();

private slots:
    void offerSave();

private:
    [[nodiscard]] bool isAnyTaken(const QStringList& names) const;
    [[nodiscard]] bool limitReached();
    [[nodiscard]] QString loadOne(const QString& file);
    void tell(QStringList lines);
    [[nodiscard]] QVector<FileDialog::Place> places() const;
    [[nodiscard]] bool saveOne(const Reflectogram& refl, const QString& base,
                               QDeadlineTimer& leaveBy);
    [[nodiscard]] QString savedMessage(const QString& base) const;

    CardController* card;
    ReflsTableModel* refls;
    bool measRunning = false;
    bool eventsFinding = false;
    int maxRefls = 4;
    std::shared_ptr<FileNameConverter> nameConverter;
    Model* model = nullptr;
};

} // namespace Waveform
