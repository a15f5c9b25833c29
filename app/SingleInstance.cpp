// SPDX-License-Identifier: GPL-3.0-or-later
#include "SingleInstance.h"

#include "Log.h"

#include <QLocalSocket>
#include <QStandardPaths>

// In the user's runtime folder: one per user and session, and nobody else's to reach.
QString SingleInstance::serverName() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/org.tessorin.Tessorin");
}

bool SingleInstance::handOver(const QStringList& arguments) {
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(500)) return false;
    socket.write(arguments.join(u'\n').toUtf8() + '\0');
    socket.waitForBytesWritten(1000);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen() {
    // A server left behind by a crashed instance holds the name: nobody answers there.
    QLocalServer::removeServer(serverName());
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_.listen(serverName())) {
        Log::warning(QStringLiteral("single instance: ") + server_.errorString());
        return false;
    }
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = server_.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                const QByteArray data = socket->readAll();
                if (!data.endsWith('\0')) {
                    socket->setProperty("partial", socket->property("partial").toByteArray() + data);
                    return;
                }
                const QByteArray whole = socket->property("partial").toByteArray() + data.chopped(1);
                socket->setProperty("partial", QByteArray());
                const QString text = QString::fromUtf8(whole);
                emit argumentsReceived(text.isEmpty() ? QStringList() : text.split(u'\n'));
            });
        }
    });
    return true;
}
