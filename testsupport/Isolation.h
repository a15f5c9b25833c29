#pragma once
// Keeps a test away from the user's settings, folders, locale, time zone and the network.
// While an Isolation lives, HOME, the XDG folders, QSettings' paths and the library folder point
// into a fresh temporary folder; LC_ALL is C.UTF-8 and TZ is UTC; the proxy variables point at a
// local port this object watches, so any request that would leave the machine fails the test.
// Child processes started through testsupport::run inherit all of it. The destructor restores
// everything it changed.
#include <gtest/gtest.h>

#include <QLocale>
#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace testsupport {

class Isolation {
public:
    Isolation();
    ~Isolation();
    Isolation(const Isolation&) = delete;
    Isolation& operator=(const Isolation&) = delete;

    // The temporary folder everything points into.
    QString root() const { return dir_.path(); }
    // Connections that reached the watched proxy port so far.
    int proxyConnections() const { return connections_.load(); }

private:
    void setEnv(const char* name, const QByteArray& value);
    void unsetEnv(const char* name);
    QString makeFolder(const QString& name) const;
    void startProxyTrap();
    void stopProxyTrap();

    QTemporaryDir dir_;
    std::vector<std::pair<QByteArray, std::optional<QByteArray>>> saved_;
    QByteArray savedCLocale_;
    QLocale savedLocale_;
    int listenFd_ = -1;
    int stopPipe_[2] = {-1, -1};
    std::atomic<int> connections_{0};
    std::thread trap_;
};

// A test fixture for tests that need nothing else: every test in it runs isolated.
class IsolatedTest : public ::testing::Test {
protected:
    Isolation& isolation() { return isolation_; }

private:
    Isolation isolation_;
};

}  // namespace testsupport
