#include "app/openrequests.h"

#include "app/handover.h"

#include <QLocalSocket>

OpenRequests::OpenRequests(QObject* parent)
    : QObject(parent)
{
    connect(&server, &QLocalServer::newConnection, this, &OpenRequests::welcome);
}

QString OpenRequests::listen(const QString& address)
{
    QLocalServer::removeServer(address);
    return server.listen(address) ? QString() : server.errorString();
}

void OpenRequests::welcome()
{
    while (QLocalSocket* socket = server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        read(socket); // what came before anybody listened
    }
}

void OpenRequests::read(QLocalSocket* socket)
{
    if (socket->bytesAvailable() > handover::kMostBytes) {
        socket->abort();
        return;
    }
    const QByteArray bytes = socket->peek(handover::kMostBytes);
    if (!handover::isComplete(bytes)) {
        return; // the rest is on its way
    }
    socket->readAll();
    const auto files = handover::files(bytes);
    if (!files) {
        socket->abort();
        return;
    }
    socket->write(handover::kTaken);
    socket->flush();
    socket->disconnectFromServer();
    emit requested(*files);
}
