// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The provider that start-up installs: the systemd journal when standard error goes there,
// standard error otherwise.
#include "LogProvider.h"

#include <QLocale>
#include <QTimeZone>

#include <utility>

// The date format of the log, in the user's locale and time zone. Kept by the console provider
// for time stamps, which no line carries today.
class LogDateFormatter {
public:
    explicit LogDateFormatter(QString format)
        : format_(std::move(format)), locale_(QLocale::system()), timeZone_(QTimeZone::systemTimeZone()) {}

    const QString& format() const { return format_; }
    const QLocale& locale() const { return locale_; }
    const QTimeZone& timeZone() const { return timeZone_; }

private:
    QString format_;
    QLocale locale_;
    QTimeZone timeZone_;
};

class ConsoleLogProvider final : public LogProvider {
public:
    ConsoleLogProvider(LogDateFormatter dateFormatter, ExtraInfo extraInfo)
        : dateFormatter(std::move(dateFormatter)), extraInfo(extraInfo), toJournal_(stderrIsJournal()) {}

    void logPrepared(LogLevel level, const SendableMessage& message, const QString& file, const QString& function,
                     int line) override;

    // "[mark file:function:line]" followed by the message's text.
    QString lineText(LogLevel level, const SendableMessage& message, const QString& file, const QString& function,
                     int line) const;

    // True when systemd connected our standard error to the journal: JOURNAL_STREAM then names
    // the device and inode of that very stream.
    static bool stderrIsJournal();

    const LogDateFormatter dateFormatter;
    const ExtraInfo extraInfo;

private:
    const bool toJournal_;
};
