#pragma once

#include <QObject>
#include <QTimer>

/// The patience with the acquisition program: how long it may say nothing while it runs, and how
/// long it may take to leave when it is to.
///
/// Measured by timers that know nothing of the time of day.
class GatherPatience : public QObject
{
    Q_OBJECT

public:
    explicit GatherPatience(QObject* parent);

    /// How long it may say nothing; 30 s to begin with.
    void setSilenceLimit(int limit_ms);

    /// A program that takes so many times longer than the instrument may be silent as much longer;
    /// a faster one is given the usual time.
    void setPace(double timesSlower);

    /// It begins, or something came from it: the time of silence begins anew.
    void listenOn();

    [[nodiscard]] bool isListening() const { return silence.isActive(); }

    /// Its silence means nothing any more.
    void stopListening() { silence.stop(); }

    /// It was told to leave and has 5 s to do so, from the first time that this is called.
    void expectObedience();

public slots:
    /// It has left.
    void forget();

signals:
    void silent();
    void disobedient();

private:
    int silenceLimit_ms;
    double pace = 1.0;
    QTimer silence;
    QTimer obedience;
};
