// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogLevel.h"

std::optional<LogLevel> logLevelFromRawValue(int raw) {
    for (LogLevel level : kAllLogLevels)
        if (rawValue(level) == raw) return level;
    return std::nullopt;
}

QString description(LogLevel level) {
    switch (level) {
    case LogLevel::error: return QStringLiteral("\u274C");
    case LogLevel::warning: return QStringLiteral("\u26A0\uFE0F");
    case LogLevel::info: return QStringLiteral("\u2139\uFE0F");
    case LogLevel::debug: return QStringLiteral("\U0001F41E");
    case LogLevel::verbose: return QStringLiteral("\U0001F4E3");
    }
    return {};
}

PlatformLogType platformLogType(LogLevel level) {
    switch (level) {
    case LogLevel::error:
    case LogLevel::warning: return PlatformLogType::error;
    case LogLevel::info: return PlatformLogType::info;
    case LogLevel::debug: return PlatformLogType::debug;
    case LogLevel::verbose: return PlatformLogType::standard;
    }
    return PlatformLogType::standard;
}
