#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

class ControllerCommand;
class DataProxy;

/// The measurement card as plugins see it: commands, identity, coming and going, running values.
///
/// The card behind it is simulated: plugged in at first, it takes every command that it knows and
/// can be unplugged, plugged again, and made to refuse a command.
class CardController : public QObject
{
    Q_OBJECT

public:
    /// What doCommand answers when the command was not done.
    enum Failure
    {
        NoCard = -1,
        UnknownCommand = -2,
    };

    explicit CardController(QObject* parent = nullptr);
    ~CardController() override;

    [[nodiscard]] bool noCard() const;
    [[nodiscard]] QString name() const; ///< the kind of module, "otdr"
    [[nodiscard]] QString
    revision() const; ///< hardware revision, such as "3.0"; empty without a card
    [[nodiscard]] QString serial() const; ///< empty without a card

    /// The configuration that the next measurement is made with, values for one run included.
    ///
    /// Keys ior, helix (percent), distance (m), wavelength (nm, or the text "all"), pulse (ns), rbs
    /// (dB at 1 ns), duration (s, 0 is realtime). The index of refraction is that of the
    /// wavelength, at "all" that of 1310 nm.
    [[nodiscard]] QVariantMap config() const;

    /// The observers of a channel, in the order in which they were registered.
    [[nodiscard]] QList<DataProxy*> dataProxies(const QString& channel) const;

    /// Does the command. \return 0, or a negative code: a Failure or that of setRefusal()
    int doCommand(ControllerCommand& command);

    /// The card's answer to a query ("version", "scale", "dzbox"); empty where it did not answer.
    QString doCommandGetUpdate(const QString& name);

    /// Adds an observer of a channel, once; it is not owned and leaves by itself when it is
    /// deleted.
    void registerProxy(const QString& channel, DataProxy* proxy);

    /// Announces a configuration that went to the card. Receivers may add to the map.
    void updateConfig(QVariantMap& map);

    // The simulated card's other side.
    void plug();
    void unplug();
    void setRevision(const QString& hardwareRevision);

    /// Makes the card refuse a command with this negative code; 0 lets it pass again.
    void setRefusal(const QString& command, int code);

signals:
    void configUpdated(QVariantMap& map);
    void connected(CardController* card);
    void disconnected(CardController* card);

private:
    struct Observer
    {
        QString channel;
        QPointer<DataProxy> proxy;
    };

    QList<Observer> observers;
    QHash<QString, int> refusals;
    QString cardRevision; // of the card, plugged in or not
    bool plugged = true;
};
