// SPDX-License-Identifier: GPL-3.0-or-later
// The isolation every test relies on: what it points where, that it puts everything back, and
// that a request for the network fails the test that made it.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSettings>
#include <QTimer>

#include <clocale>

using testsupport::Isolation;

namespace {

// Everything an isolated test could read from outside, as one string to compare.
QByteArray outside() {
    QByteArray all;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR",
                             "TESSORIN_LIBRARY", "LC_ALL", "TZ", "http_proxy", "HTTPS_PROXY", "no_proxy"})
        all += name + QByteArray(qEnvironmentVariableIsSet(name) ? "=" + qgetenv(name) : " unset") + "\n";
    return all + std::setlocale(LC_ALL, nullptr) + "\n" + QLocale().name().toUtf8();
}

void requestTheNetwork() {
    Isolation isolation;
    QNetworkAccessManager network;
    QNetworkReply* reply = network.get(QNetworkRequest(QUrl("http://tessorin-test.example/")));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_TRUE(reply->isFinished());
    EXPECT_NE(reply->error(), QNetworkReply::NoError);
    delete reply;
}

// exiftool's Perl is always here for the tests; it connects where the proxy variables say, as
// any client would.
void childRequestsTheNetwork() {
    Isolation isolation;
    testsupport::run("perl", {"-MIO::Socket::INET", "-e",
                              "$ENV{http_proxy} =~ m{//([^:]+):(\\d+)}; IO::Socket::INET->new(PeerAddr => $1, "
                              "PeerPort => $2) or die"});
}

}  // namespace

TEST(Isolation, PointsEverythingIntoItsFolderAndPutsItBack) {
    const QByteArray before = outside();
    const QString userSettings = QSettings("TessorinIsolationTest", "app").fileName();
    {
        Isolation isolation;
        const QString root = isolation.root();
        EXPECT_TRUE(QFile::exists(root));
        EXPECT_EQ(qEnvironmentVariable("HOME"), root + "/home");
        EXPECT_EQ(qEnvironmentVariable("XDG_CONFIG_HOME"), root + "/config");
        EXPECT_TRUE(qEnvironmentVariable("TESSORIN_LIBRARY").startsWith(root + "/"));
        EXPECT_EQ(qgetenv("LC_ALL"), "C.UTF-8");
        EXPECT_EQ(qgetenv("TZ"), "UTC");
        EXPECT_EQ(QDateTime(QDate(2024, 7, 1), QTime(12, 0)).offsetFromUtc(), 0);

        QSettings settings("TessorinIsolationTest", "app");
        EXPECT_TRUE(settings.fileName().startsWith(root + "/config/")) << settings.fileName().toStdString();
        settings.setValue("written", true);
        settings.sync();
        EXPECT_TRUE(QFile::exists(settings.fileName()));

        // A child process sees the same.
        const auto child = testsupport::run("sh", {"-c", "echo $HOME $LC_ALL $TZ"});
        EXPECT_EQ(child.out.trimmed(), QFile::encodeName(root) + "/home C.UTF-8 UTC");
    }
    EXPECT_EQ(outside(), before);
    EXPECT_EQ(QSettings("TessorinIsolationTest", "app").fileName(), userSettings);
}

TEST(Isolation, ARequestForTheNetworkFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(requestTheNetwork(), "tried to leave the machine");
}

TEST(Isolation, AChildProcessReachingForTheNetworkFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(childRequestsTheNetwork(), "tried to leave the machine");
}

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
