// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A destination of log lines. Providers are called only on the log's worker thread, one call
// at a time, so they need no locking of their own for that.
#include "LogLevel.h"
#include "SendableMessage.h"

#include <QString>
#include <QVariant>

class LogProvider {
public:
    virtual ~LogProvider() = default;

    void log(LogLevel level, const QVariant& message, const QString& file, const QString& function, int line) {
        logPrepared(level, SendableMessage(message), file, function, line);
    }

    virtual void logPrepared(LogLevel level, const SendableMessage& message, const QString& file,
                             const QString& function, int line) = 0;
};
