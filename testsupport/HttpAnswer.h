// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A one-answer HTTP server on the loopback address, standing in for an online service: every
// request gets the same status and JSON body. The requests it got are kept for the test to read.
#include <QByteArray>
#include <QHostAddress>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>

namespace testsupport {

class HttpAnswer {
public:
    HttpAnswer(QByteArray status, QByteArray body) {
        server_.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&server_, &QTcpServer::newConnection, [this, status, body] {
            QTcpSocket* s = server_.nextPendingConnection();
            auto* got = new QByteArray;
            QObject::connect(s, &QObject::destroyed, [got] { delete got; });
            QObject::connect(s, &QTcpSocket::readyRead, s, [this, s, got, status, body] {
                *got += s->readAll();
                if (!got->contains("\r\n\r\n")) return;
                request_ += *got;
                s->write("HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\nConnection: close\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\n\r\n" + body);
                s->disconnectFromHost();
            });
            QObject::connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
        });
    }
    // The service's base address, with a path as a real one may have.
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/nominatim").arg(server_.serverPort()); }
    const QByteArray& request() const { return request_; }

private:
    QTcpServer server_;
    QByteArray request_;
};

}  // namespace testsupport
