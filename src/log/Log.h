// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one way the system writes diagnostics. A call never blocks and never fails: the message
// becomes text on the caller's thread, everything else happens later on LogActor.
//
//     Log::debug("📷 loaded");                        // function name from the call site
//     Log::error(message, "metadata(from:)");          // function name given
#include "ConsoleLogProvider.h"
#include "LogLevel.h"
#include "LogProvider.h"

#include <QString>
#include <QVariant>
#include <memory>
#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
using LogSite = std::source_location;
#else
// clang 14 with libstdc++ 12 (the fuzzing build) has no std::source_location; the same
// compiler builtins name the call site.
class LogSite {
public:
    static constexpr LogSite current(const char* file = __builtin_FILE(), const char* function = __builtin_FUNCTION(),
                                     unsigned line = __builtin_LINE()) noexcept {
        return LogSite(file, function, line);
    }
    constexpr const char* file_name() const noexcept { return file_; }
    constexpr const char* function_name() const noexcept { return function_; }
    constexpr unsigned line() const noexcept { return line_; }

private:
    constexpr LogSite(const char* file, const char* function, unsigned line) : file_(file), function_(function), line_(line) {}
    const char* file_;
    const char* function_;
    unsigned line_;
};
#endif

class Log {
public:
    static void error(const QVariant& message, LogSite site = LogSite::current()) {
        sendFrom(LogLevel::error, message, site);
    }
    static void warning(const QVariant& message, LogSite site = LogSite::current()) {
        sendFrom(LogLevel::warning, message, site);
    }
    static void info(const QVariant& message, LogSite site = LogSite::current()) {
        sendFrom(LogLevel::info, message, site);
    }
    static void debug(const QVariant& message, LogSite site = LogSite::current()) {
        sendFrom(LogLevel::debug, message, site);
    }
    static void verbose(const QVariant& message, LogSite site = LogSite::current()) {
        sendFrom(LogLevel::verbose, message, site);
    }

    // The same, naming the function in the line instead of the compiler's signature text.
    static void error(const QVariant& message, const QString& function,
                      LogSite site = LogSite::current()) {
        sendFrom(LogLevel::error, message, site, function);
    }
    static void warning(const QVariant& message, const QString& function,
                        LogSite site = LogSite::current()) {
        sendFrom(LogLevel::warning, message, site, function);
    }
    static void info(const QVariant& message, const QString& function,
                     LogSite site = LogSite::current()) {
        sendFrom(LogLevel::info, message, site, function);
    }
    static void debug(const QVariant& message, const QString& function,
                      LogSite site = LogSite::current()) {
        sendFrom(LogLevel::debug, message, site, function);
    }
    static void verbose(const QVariant& message, const QString& function,
                        LogSite site = LogSite::current()) {
        sendFrom(LogLevel::verbose, message, site, function);
    }

    // The call form all the above reduce to; `file` may be a whole path.
    static void send(LogLevel level, const QVariant& message, const QString& file, const QString& function, int line);

    // Appends a console provider; start-up calls it once.
    static void configure(const LogDateFormatter& formatter, ExtraInfo extraInfo);
    static void addProvider(std::shared_ptr<LogProvider> provider);
    static void removeProvider(std::shared_ptr<LogProvider> provider);
    // Errors always pass; another level passes when its raw value is at most the threshold.
    static void setLevel(int level);
    // Waits until everything logged so far has reached the providers.
    static void flush();

private:
    static void sendFrom(LogLevel level, const QVariant& message, const LogSite& site,
                     const QString& function = {});
};
