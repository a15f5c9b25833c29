// SPDX-License-Identifier: GPL-3.0-or-later
#include "Log.h"

#include "LogActor.h"

#include <algorithm>
#include <atomic>

namespace {

// Providers added and not removed, counted when asked rather than when the actor gets to it,
// so that a message sent after addProvider returns is still taken. A run without a provider
// (the command-line tool) queues nothing: a line a file on the log thread was a measurable
// part of each edit.
std::atomic<int> providerCount{0};

bool anyProvider() { return providerCount.load(std::memory_order_relaxed) > 0; }

QString lastPathPiece(const QString& path) {
    const QStringList pieces = path.split('/', Qt::SkipEmptyParts);
    return pieces.isEmpty() ? QString() : pieces.last();
}

}  // namespace

void Log::sendFrom(LogLevel level, const QVariant& message, const LogSite& site,
                   const QString& function) {
    if (!anyProvider()) return;
    send(level, message, QString::fromUtf8(site.file_name()),
         function.isEmpty() ? QString::fromUtf8(site.function_name()) : function, int(site.line()));
}

void Log::send(LogLevel level, const QVariant& message, const QString& file, const QString& function, int line) {
    if (!anyProvider()) return;
    SendableMessage prepared(message);
    LogActor::shared().enqueue([level, prepared, file, function, line] {
        LogActor& actor = LogActor::shared();
        if (level != LogLevel::error && actor.level < rawValue(level)) return;
        const QString shortFile = lastPathPiece(file);
        for (const auto& provider : actor.providers) provider->logPrepared(level, prepared, shortFile, function, line);
    });
}

void Log::configure(const LogDateFormatter& formatter, ExtraInfo extraInfo) {
    addProvider(std::make_shared<ConsoleLogProvider>(formatter, extraInfo));
}

void Log::addProvider(std::shared_ptr<LogProvider> provider) {
    providerCount.fetch_add(1, std::memory_order_relaxed);
    LogActor::shared().enqueue([provider = std::move(provider)] { LogActor::shared().providers.push_back(provider); });
}

void Log::removeProvider(std::shared_ptr<LogProvider> provider) {
    providerCount.fetch_sub(1, std::memory_order_relaxed);
    LogActor::shared().enqueue([provider = std::move(provider)] {
        auto& providers = LogActor::shared().providers;
        providers.erase(std::remove(providers.begin(), providers.end(), provider), providers.end());
    });
}

void Log::setLevel(int level) {
    LogActor::shared().enqueue([level] { LogActor::shared().level = level; });
}

void Log::flush() { LogActor::shared().drain(); }
