// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The system's one error: a failure that needs words for the user.
#include <QByteArray>
#include <QString>
#include <exception>
#include <utility>

class TSError : public std::exception {
public:
    explicit TSError(QString message) : message_(std::move(message)), utf8_(message_.toUtf8()) {}

    const QString& message() const { return message_; }
    // The message through the application's translations; the message itself is the key.
    QString localizedDescription() const;
    const char* what() const noexcept override { return utf8_.constData(); }

private:
    QString message_;
    QByteArray utf8_;
};
