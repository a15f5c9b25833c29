// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps every line it is given, for tests that check what was logged. Call Log::flush() before
// reading so that the worker has delivered everything logged so far.
#include "LogProvider.h"

#include <QList>
#include <mutex>

class RecordingLogProvider final : public LogProvider {
public:
    struct Entry {
        LogLevel level;
        QString text;
        QString file;
        QString function;
        int line;
    };

    void logPrepared(LogLevel level, const SendableMessage& message, const QString& file, const QString& function,
                     int line) override {
        std::lock_guard lock(mutex_);
        entries_.append({level, message.text(), file, function, line});
    }

    QList<Entry> entries() const {
        std::lock_guard lock(mutex_);
        return entries_;
    }

private:
    mutable std::mutex mutex_;
    QList<Entry> entries_;
};
