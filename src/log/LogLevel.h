// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Severity of a log line; the raw value orders the levels against the threshold of Log.
#include <QString>
#include <array>
#include <optional>

enum class LogLevel { error = 0, warning = 10, info = 20, debug = 30, verbose = 40 };

inline constexpr std::array<LogLevel, 5> kAllLogLevels{LogLevel::error, LogLevel::warning, LogLevel::info,
                                                       LogLevel::debug, LogLevel::verbose};

constexpr int rawValue(LogLevel level) { return static_cast<int>(level); }
std::optional<LogLevel> logLevelFromRawValue(int raw);

// The mark printed at the start of each line.
QString description(LogLevel level);

// The system log's own kinds of message. A warning goes out as an error and verbose as the
// default kind, which ranks above debug: that is wanted.
enum class PlatformLogType { error, info, debug, standard };
PlatformLogType platformLogType(LogLevel level);

// Which call-site details a line carries. Only the file, function and line have an effect.
enum class ExtraInfo { no, timestamp, fileFunctionLine, both };
