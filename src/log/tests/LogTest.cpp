#include "Log.h"
#include "RecordingLogProvider.h"
#include "TSError.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <future>
#include <thread>

namespace {

const QString arrow = QStringLiteral("\n\t\u21AA\uFE0F");

TEST(LogLevel, RawValuesAndMarks) {
    QList<int> raws;
    for (LogLevel level : kAllLogLevels) raws << rawValue(level);
    EXPECT_EQ(raws, (QList<int>{0, 10, 20, 30, 40}));
    for (LogLevel level : kAllLogLevels) EXPECT_EQ(logLevelFromRawValue(rawValue(level)), level);
    EXPECT_FALSE(logLevelFromRawValue(15));
    EXPECT_FALSE(logLevelFromRawValue(50));

    EXPECT_EQ(description(LogLevel::error), QStringLiteral("\u274C"));
    EXPECT_EQ(description(LogLevel::warning), QStringLiteral("\u26A0\uFE0F"));
    EXPECT_EQ(description(LogLevel::info), QStringLiteral("\u2139\uFE0F"));
    EXPECT_EQ(description(LogLevel::debug), QStringLiteral("\U0001F41E"));
    EXPECT_EQ(description(LogLevel::verbose), QStringLiteral("\U0001F4E3"));

    EXPECT_EQ(platformLogType(LogLevel::warning), PlatformLogType::error);
    EXPECT_EQ(platformLogType(LogLevel::verbose), PlatformLogType::standard);
}

TEST(ConsoleLogProvider, LineCarriesFileFunctionLineOnlyWhenAsked) {
    const SendableMessage message(QStringLiteral("text"));
    const LogDateFormatter formatter(QStringLiteral("yyyy-MM-dd HH:mm:ssSSS"));
    const QString withSite = "[\U0001F41E TSAsset:init(from:delegate:):212]" + arrow + "text";
    const QString bare = "[\U0001F41E]" + arrow + "text";
    for (ExtraInfo extra : {ExtraInfo::both, ExtraInfo::fileFunctionLine})
        EXPECT_EQ(ConsoleLogProvider(formatter, extra)
                      .lineText(LogLevel::debug, message, "TSAsset", "init(from:delegate:)", 212),
                  withSite);
    for (ExtraInfo extra : {ExtraInfo::no, ExtraInfo::timestamp})
        EXPECT_EQ(ConsoleLogProvider(formatter, extra)
                      .lineText(LogLevel::debug, message, "TSAsset", "init(from:delegate:)", 212),
                  bare);
    EXPECT_EQ(ConsoleLogProvider(formatter, ExtraInfo::no).lineText(LogLevel::error, SendableMessage(QVariantList{}), "", "", 0),
              "[\u274C]");
}

class JournalStream : public ::testing::Test {
protected:
    void SetUp() override { saved_ = qgetenv("JOURNAL_STREAM"); hadValue_ = qEnvironmentVariableIsSet("JOURNAL_STREAM"); }
    void TearDown() override {
        if (hadValue_) qputenv("JOURNAL_STREAM", saved_);
        else qunsetenv("JOURNAL_STREAM");
    }
    QByteArray saved_;
    bool hadValue_ = false;
};

TEST_F(JournalStream, OnlyTheDeviceAndInodeOfStandardErrorCount) {
    struct stat st {};
    ASSERT_EQ(fstat(fileno(stderr), &st), 0);
    qputenv("JOURNAL_STREAM", QByteArray::number(qulonglong(st.st_dev)) + ':' + QByteArray::number(qulonglong(st.st_ino)));
    EXPECT_TRUE(ConsoleLogProvider::stderrIsJournal());
    qputenv("JOURNAL_STREAM", QByteArray::number(qulonglong(st.st_dev)) + ':' + QByteArray::number(qulonglong(st.st_ino) + 1));
    EXPECT_FALSE(ConsoleLogProvider::stderrIsJournal());
    qputenv("JOURNAL_STREAM", "garbage");
    EXPECT_FALSE(ConsoleLogProvider::stderrIsJournal());
    qunsetenv("JOURNAL_STREAM");
    EXPECT_FALSE(ConsoleLogProvider::stderrIsJournal());
}

TEST_F(JournalStream, OutsideTheJournalLinesGoToStandardError) {
    qunsetenv("JOURNAL_STREAM");
    ConsoleLogProvider provider(LogDateFormatter("HH"), ExtraInfo::both);
    ::testing::internal::CaptureStderr();
    provider.log(LogLevel::warning, QStringLiteral("disk full"), "Saver.cpp", "save()", 7);
    const QString written = QString::fromStdString(::testing::internal::GetCapturedStderr());
    EXPECT_EQ(written, "[\u26A0\uFE0F Saver.cpp:save():7]" + arrow + "disk full\n");
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
    Log::send(LogLevel::debug, 1, "/src/models/TSAsset.cpp", "f", 1);
    Log::send(LogLevel::debug, 1, "TSAsset.cpp", "f", 1);
    Log::send(LogLevel::debug, 1, "models/", "f", 1);
    Log::send(LogLevel::debug, 1, "/", "f", 1);
    const auto got = entries();
    ASSERT_EQ(got.size(), 4);
    EXPECT_EQ(got[0].file, "TSAsset.cpp");
    EXPECT_EQ(got[1].file, "TSAsset.cpp");
    EXPECT_EQ(got[2].file, "models");
    EXPECT_EQ(got[3].file, "");
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

TEST_F(LogDispatch, RemovedProviderHearsNothing) {
    Log::removeProvider(recorder_);
    Log::error(QStringLiteral("nobody listens"));
    EXPECT_TRUE(entries().isEmpty());
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
    // While the worker is held these calls must still return, with their text already made.
    QString mutableText = QStringLiteral("before");
    Log::info(mutableText);
    mutableText = QStringLiteral("after");
    release.set_value();
    Log::removeProvider(gate);

    const auto got = entries();
    ASSERT_EQ(got.size(), 2);
    EXPECT_EQ(got[1].text, arrow + "before");
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

TEST(TSError, CarriesItsMessage) {
    try {
        throw TSError(QStringLiteral("\U0001F4F7 Can't save"));
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "\U0001F4F7 Can't save");
        EXPECT_EQ(dynamic_cast<const TSError&>(e).message(), QStringLiteral("\U0001F4F7 Can't save"));
        EXPECT_EQ(dynamic_cast<const TSError&>(e).localizedDescription(), QStringLiteral("\U0001F4F7 Can't save"));
    }
}

}  // namespace
