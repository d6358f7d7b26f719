#pragma once

#include "app/localsocket.h"

#include <QObject>
#include <QStringList>

#include <memory>

class QSocketNotifier;

/// The first instance's ear for what a second one was to open.
class OpenRequests : public QObject
{
    Q_OBJECT

public:
    explicit OpenRequests(QObject* parent = nullptr);
    ~OpenRequests() override;

    /// Listens in place of what an instance that crashed has left at the address. Who may enter its
    /// directory reaches it: that has to be the user's own.
    /// \return an empty text, or why it cannot listen
    [[nodiscard]] QString listen(const QString& address);

signals:
    /// Somebody started the application again; there may be no files.
    void requested(const QStringList& files);

private:
    void welcome();

    QString listensAt;
    LocalSocket ear;
    std::unique_ptr<QSocketNotifier> calls;
};
