// SPDX-License-Identifier: GPL-3.0-or-later
#include "Log.h"
#include "Isolation.h"
#include "RecordingLogProvider.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <future>
#include <thread>

namespace {

const QString arrow = QStringLiteral("\n\t\u21AA\uFE0F");

TEST(LogLevel, RawValuesAndPlatformTypes) {
    EXPECT_EQ(logLevelFromRawValue(30), LogLevel::debug);
    EXPECT_FALSE(logLevelFromRawValue(15));
    // A warning is an error to the system log, and verbose outranks debug there.
    EXPECT_EQ(platformLogType(LogLevel::warning), PlatformLogType::error);
    EXPECT_EQ(platformLogType(LogLevel::verbose), PlatformLogType::standard);
}

TEST(ConsoleLogProvider, LineCarriesFileFunctionLineOnlyWhenAsked) {
    const auto line = [](ExtraInfo extra, const QVariant& message) {
        return ConsoleLogProvider(LogDateFormatter("yyyy-MM-dd HH:mm:ssSSS"), extra)
            .lineText(LogLevel::debug, SendableMessage(message), "TSAsset", "init(from:delegate:)", 212);
    };
    for (ExtraInfo extra : {ExtraInfo::both, ExtraInfo::fileFunctionLine})
        EXPECT_EQ(line(extra, "text"), "[\U0001F41E TSAsset:init(from:delegate:):212]" + arrow + "text");
    for (ExtraInfo extra : {ExtraInfo::no, ExtraInfo::timestamp})
        EXPECT_EQ(line(extra, "text"), "[\U0001F41E]" + arrow + "text");
    EXPECT_EQ(line(ExtraInfo::no, QVariantList{}), "[\U0001F41E]");
}

// The isolation restores JOURNAL_STREAM, which these tests change.
class JournalStream : public testsupport::IsolatedTest {
protected:
    void set(const QByteArray& value) { isolation().setEnv("JOURNAL_STREAM", value); }
    void unset() { isolation().unsetEnv("JOURNAL_STREAM"); }
};

TEST_F(JournalStream, OnlyTheDeviceAndInodeOfStandardErrorCount) {
    struct stat st {};
    ASSERT_EQ(fstat(fileno(stderr), &st), 0);
    const QByteArray dev = QByteArray::number(qulonglong(st.st_dev));
    set(dev + ':' + QByteArray::number(qulonglong(st.st_ino)));
    EXPECT_TRUE(ConsoleLogProvider::stderrIsJournal());
    for (const QByteArray& other : {dev + ':' + QByteArray::number(qulonglong(st.st_ino) + 1), QByteArray("garbage")}) {
        set(other);
        EXPECT_FALSE(ConsoleLogProvider::stderrIsJournal()) << other.constData();
    }
    unset();
    EXPECT_FALSE(ConsoleLogProvider::stderrIsJournal());
}

TEST_F(JournalStream, OutsideTheJournalLinesGoToStandardError) {
    unset();
    ConsoleLogProvider provider(LogDateFormatter("HH"), ExtraInfo::both);
    ::testing::internal::CaptureStderr();
    provider.log(LogLevel::warning, QStringLiteral("disk full"), "Saver.cpp", "save()", 7);
    EXPECT_EQ(QString::fromStdString(::testing::internal::GetCapturedStderr()),
              "[\u26A0\uFE0F Saver.cpp:save():7]" + arrow + "disk full\n");
}

// Installs a recorder for one test and leaves the shared log as it found it.
class LogDispatch : public ::testing::Test {
protected:
    void SetUp() override { Log::addProvider(recorder_); }
    void TearDown() override {
        Log::removeProvider(recorder_);
        Log::setLevel(rawValue(LogLevel::verbose));
        Log::flush();
    }
    QList<RecordingLogProvider::Entry> entries() {
        Log::flush();
        return recorder_->entries();
    }
    std::shared_ptr<RecordingLogProvider> recorder_ = std::make_shared<RecordingLogProvider>();
};

TEST_F(LogDispatch, CallSiteComesFromTheCaller) {
    const int line = __LINE__ + 1;
    Log::info(QStringLiteral("hello"));
    Log::error(QStringLiteral("named"), "metadata(from:)");
    const auto got = entries();
    ASSERT_EQ(got.size(), 2);
    EXPECT_EQ(got[0].level, LogLevel::info);
    EXPECT_EQ(got[0].text, arrow + "hello");
    EXPECT_EQ(got[0].file, "LogTest.cpp");
    EXPECT_EQ(got[0].line, line);
    EXPECT_TRUE(got[0].function.contains("TestBody")) << got[0].function.toStdString();
    EXPECT_EQ(got[1].function, "metadata(from:)");
    EXPECT_EQ(got[1].line, line + 1);
}

TEST_F(LogDispatch, FileKeepsOnlyItsLastPathPiece) {
    const QStringList paths{"/src/models/TSAsset.cpp", "TSAsset.cpp", "models/", "/"};
    for (const QString& path : paths) Log::send(LogLevel::debug, 1, path, "f", 1);
    QStringList files;
    for (const auto& e : entries()) files << e.file;
    EXPECT_EQ(files, (QStringList{"TSAsset.cpp", "TSAsset.cpp", "models", ""}));
}

TEST_F(LogDispatch, ThresholdLetsErrorsThroughAlways) {
    auto levelsPassing = [this](int threshold) {
        Log::setLevel(threshold);
        const qsizetype before = entries().size();
        for (LogLevel level : kAllLogLevels) Log::send(level, "m", "f", "f", 1);
        QList<LogLevel> passed;
        const auto got = entries();
        for (qsizetype i = before; i < got.size(); ++i) passed << got[i].level;
        return passed;
    };
    EXPECT_EQ(levelsPassing(0), QList<LogLevel>{LogLevel::error});
    EXPECT_EQ(levelsPassing(10), (QList<LogLevel>{LogLevel::error, LogLevel::warning}));
    EXPECT_EQ(levelsPassing(-1), QList<LogLevel>{LogLevel::error});
    EXPECT_EQ(levelsPassing(40), QList<LogLevel>(kAllLogLevels.begin(), kAllLogLevels.end()));
}

// A provider that holds the worker until released.
class GateProvider final : public LogProvider {
public:
    void logPrepared(LogLevel, const SendableMessage&, const QString&, const QString&, int) override { open.wait(); }
    std::shared_future<void> open;
};

TEST_F(LogDispatch, CallerNeverWaitsForTheProviders) {
    std::promise<void> release;
    auto gate = std::make_shared<GateProvider>();
    gate->open = release.get_future().share();
    Log::addProvider(gate);
    Log::info(QStringLiteral("first"));  // holds the worker inside the gate
    Log::info(QStringLiteral("second"));  // must return all the same
    release.set_value();
    Log::removeProvider(gate);
    EXPECT_EQ(entries().size(), 2);
}

TEST_F(LogDispatch, CallsFromManyThreadsAllArriveInPerThreadOrder) {
    constexpr int threads = 4, perThread = 200;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([t] {
            for (int i = 0; i < perThread; ++i) Log::send(LogLevel::debug, i, QString::number(t), "f", i);
        });
    for (auto& w : workers) w.join();
    const auto got = entries();
    ASSERT_EQ(got.size(), threads * perThread);
    QList<int> next(threads, 0);
    for (const auto& e : got) EXPECT_EQ(e.line, next[e.file.toInt()]++);
}

}  // namespace
