// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// An HTTP server on the loopback address, standing in for an online service or a tile server:
// every request gets the same answer, which the test may change between requests. What it was
// asked is kept for the test to read.
#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>

namespace testsupport {

class HttpAnswer {
public:
    QByteArray status;
    QByteArray body;
    QByteArray contentType = "application/json";
    QByteArray cacheControl;  // no Cache-Control header when empty
    // Answers this long after each request, so that requests overlap and can be counted.
    int delayMs = 0;

    int requests = 0;
    int open = 0, maxOpen = 0;  // requests not yet answered, now and at most

    HttpAnswer(QByteArray status, QByteArray body) : status(std::move(status)), body(std::move(body)) {
        server_.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            while (QTcpSocket* s = server_.nextPendingConnection()) {
                auto* got = new QByteArray;
                QObject::connect(s, &QObject::destroyed, [got] { delete got; });
                QObject::connect(s, &QTcpSocket::readyRead, s, [this, s, got] {
                    *got += s->readAll();
                    while (got->contains("\r\n\r\n")) {
                        const qsizetype end = got->indexOf("\r\n\r\n") + 4;
                        lastRequest_ = got->left(end);
                        request_ += lastRequest_;
                        got->remove(0, end);
                        ++requests;
                        maxOpen = std::max(maxOpen, ++open);
                        QTimer::singleShot(delayMs, s, [this, s] { answer(s); });
                    }
                });
                QObject::connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
            }
        });
    }
    // The service's base address, with a path as a real one may have.
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/nominatim").arg(server_.serverPort()); }
    // A tile server's URL template.
    QString tileTemplate() const { return QStringLiteral("http://127.0.0.1:%1/{z}/{x}/{y}.png").arg(server_.serverPort()); }
    // Every request so far, and the last one.
    const QByteArray& request() const { return request_; }
    const QByteArray& lastRequest() const { return lastRequest_; }

private:
    void answer(QTcpSocket* s) {
        --open;
        QByteArray head = "HTTP/1.1 " + status + "\r\nContent-Type: " + contentType + "\r\n";
        if (!cacheControl.isEmpty()) head += "Cache-Control: " + cacheControl + "\r\n";
        s->write(head + "Connection: close\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        s->disconnectFromHost();
    }

    QTcpServer server_;
    QByteArray request_;
    QByteArray lastRequest_;
};

}  // namespace testsupport
