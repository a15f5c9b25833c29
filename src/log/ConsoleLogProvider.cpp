// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConsoleLogProvider.h"

#include <sys/stat.h>

#include <cstdio>

#ifdef TESSORIN_HAVE_SYSTEMD
#include <syslog.h>
#include <systemd/sd-journal.h>
#endif

QString ConsoleLogProvider::lineText(LogLevel level, const SendableMessage& message, const QString& file,
                                     const QString& function, int line) const {
    QString suffix;
    if (extraInfo == ExtraInfo::fileFunctionLine || extraInfo == ExtraInfo::both)
        suffix = ' ' + file + ':' + function + ':' + QString::number(line);
    return '[' + description(level) + suffix + ']' + message.text();
}

bool ConsoleLogProvider::stderrIsJournal() {
    const QByteArray stream = qgetenv("JOURNAL_STREAM");
    const QList<QByteArray> parts = stream.split(':');
    if (parts.size() != 2) return false;
    struct stat st {};
    if (fstat(fileno(stderr), &st) != 0) return false;
    bool devOk = false, inoOk = false;
    const qulonglong dev = parts[0].toULongLong(&devOk);
    const qulonglong ino = parts[1].toULongLong(&inoOk);
    return devOk && inoOk && dev == st.st_dev && ino == st.st_ino;
}

void ConsoleLogProvider::logPrepared(LogLevel level, const SendableMessage& message, const QString& file,
                                     const QString& function, int line) {
    const QByteArray text = lineText(level, message, file, function, line).toUtf8();
#ifdef TESSORIN_HAVE_SYSTEMD
    if (toJournal_) {
        int priority = LOG_NOTICE;
        switch (platformLogType(level)) {
        case PlatformLogType::error: priority = LOG_ERR; break;
        case PlatformLogType::info: priority = LOG_INFO; break;
        case PlatformLogType::debug: priority = LOG_DEBUG; break;
        case PlatformLogType::standard: priority = LOG_NOTICE; break;
        }
        const QByteArray codeFile = "CODE_FILE=" + file.toUtf8();
        const QByteArray codeLine = "CODE_LINE=" + QByteArray::number(line);
        sd_journal_send_with_location(codeFile.constData(), codeLine.constData(), function.toUtf8().constData(),
                                      "MESSAGE=%s", text.constData(), "PRIORITY=%i", priority,
                                      "TESSORIN_CATEGORY=TS", nullptr);
        return;
    }
#endif
    std::fprintf(stderr, "%s\n", text.constData());
}
