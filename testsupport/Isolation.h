// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps a test away from the user's settings, folders, locale, time zone and the network.
// While an Isolation lives, HOME, the XDG folders, QSettings' paths and the library folder point
// into a fresh temporary folder; LC_ALL is C.UTF-8 and TZ is UTC; the proxy variables point at a
// local port this object watches, so any request that would leave the machine fails the test.
// Child processes started through testsupport::run inherit all of it. The destructor restores
// everything it changed.
//
// Every test binary made with tessorin_add_tests runs each test inside its own Isolation, from
// before the fixture is made to after it is gone, and the whole run inside one more; a test
// binary that builds something before its tests start makes an Isolation first.
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
    // Changes a variable until this Isolation ends.
    void setEnv(const char* name, const QByteArray& value);
    void unsetEnv(const char* name);

    // The innermost Isolation alive, if any.
    static Isolation* current();
    // The locale QLocale() gives inside every Isolation made from now on: C unless a test binary
    // checks texts in another language.
    static void setTestLocale(const QLocale& locale);

private:
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
    Isolation* outer_ = nullptr;
};

// A test fixture for tests that need their Isolation's folder or to change a variable.
class IsolatedTest : public ::testing::Test {
protected:
    Isolation& isolation() { return *isolation_; }

private:
    // The one this test runs in; one of its own when the binary isolates nothing.
    std::unique_ptr<Isolation> own_ = Isolation::current() ? nullptr : std::make_unique<Isolation>();
    Isolation* isolation_ = Isolation::current();
};

}  // namespace testsupport
