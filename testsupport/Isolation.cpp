// SPDX-License-Identifier: GPL-3.0-or-later
#include "Isolation.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QSettings>

#include <arpa/inet.h>
#include <cerrno>
#include <clocale>
#include <ctime>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace testsupport {

namespace {

Isolation* innermost = nullptr;
QLocale& testLocale() {
    static QLocale locale = QLocale::c();
    return locale;
}

void setSettingsPaths(const QString& user, const QString& system) {
    for (QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, user);
        QSettings::setPath(format, QSettings::SystemScope, system);
    }
}

}  // namespace

Isolation* Isolation::current() { return innermost; }
void Isolation::setTestLocale(const QLocale& locale) { testLocale() = locale; }

Isolation::Isolation()
    : savedCLocale_(std::setlocale(LC_ALL, nullptr)), savedLocale_(QLocale()), outer_(std::exchange(innermost, this)) {
    if (!dir_.isValid()) {
        ADD_FAILURE() << "could not make a temporary folder for the test";
        return;
    }
    const QString home = makeFolder("home");
    const QString config = makeFolder("config");
    const QString systemConfig = makeFolder("config-system");
    setEnv("HOME", QFile::encodeName(home));
    setEnv("XDG_CONFIG_HOME", QFile::encodeName(config));
    setEnv("XDG_CONFIG_DIRS", QFile::encodeName(systemConfig));
    setEnv("XDG_DATA_HOME", QFile::encodeName(makeFolder("data")));
    setEnv("XDG_CACHE_HOME", QFile::encodeName(makeFolder("cache")));
    setEnv("XDG_STATE_HOME", QFile::encodeName(makeFolder("state")));
    setEnv("XDG_RUNTIME_DIR", QFile::encodeName(makeFolder("runtime")));
    setEnv("TESSORIN_LIBRARY", QFile::encodeName(makeFolder("library")));
    // Nor the desktop's session bus (its portal's colour scheme, say).
    unsetEnv("DBUS_SESSION_BUS_ADDRESS");
    setSettingsPaths(config, systemConfig);

    setEnv("LC_ALL", "C.UTF-8");
    unsetEnv("LANGUAGE");
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(testLocale());
    setEnv("TZ", "UTC");
    tzset();

    startProxyTrap();
}

Isolation::~Isolation() {
    innermost = outer_;
    stopProxyTrap();
    const int reached = connections_.load();
    if (reached > 0)
        ADD_FAILURE() << reached << " connection(s) tried to leave the machine through the proxy";

    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
        if (it->second)
            qputenv(it->first.constData(), *it->second);
        else
            qunsetenv(it->first.constData());
    }
    tzset();
    std::setlocale(LC_ALL, savedCLocale_.constData());
    QLocale::setDefault(savedLocale_);
    // Qt's own defaults, now that the environment is the caller's again.
    const QString config = qEnvironmentVariable("XDG_CONFIG_HOME", QDir::homePath() + "/.config");
    setSettingsPaths(config, QLibraryInfo::path(QLibraryInfo::SettingsPath));
}

void Isolation::setEnv(const char* name, const QByteArray& value) {
    saved_.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
    qputenv(name, value);
}

void Isolation::unsetEnv(const char* name) {
    saved_.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
    qunsetenv(name);
}

QString Isolation::makeFolder(const QString& name) const {
    const QString path = dir_.filePath(name);
    QDir().mkpath(path);
    // Qt ignores a runtime folder others can read; the rest do not care.
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

// The proxy variables point at a port we listen on, so a request that would reach the network
// arrives here instead: it is counted (the test fails) and closed at once (the code under test
// sees a failed connection rather than a hang).
void Isolation::startProxyTrap() {
    listenFd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    if (listenFd_ < 0 || ::bind(listenFd_, reinterpret_cast<sockaddr*>(&addr), len) != 0 ||
        ::listen(listenFd_, 16) != 0 || ::getsockname(listenFd_, reinterpret_cast<sockaddr*>(&addr), &len) != 0 ||
        ::pipe2(stopPipe_, O_CLOEXEC) != 0) {
        ADD_FAILURE() << "could not open the local port the proxy variables point at";
        return;
    }
    const QByteArray proxy = "http://127.0.0.1:" + QByteArray::number(ntohs(addr.sin_port));
    for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY",
                             "FTP_PROXY", "ALL_PROXY"})
        setEnv(name, proxy);
    // Servers a test runs on this machine stay reachable.
    setEnv("no_proxy", "localhost,127.0.0.1,::1");
    setEnv("NO_PROXY", "localhost,127.0.0.1,::1");

    trap_ = std::thread([this] {
        pollfd fds[2] = {{listenFd_, POLLIN, 0}, {stopPipe_[0], POLLIN, 0}};
        for (;;) {
            fds[0].revents = fds[1].revents = 0;
            if (::poll(fds, 2, -1) < 0 && errno != EINTR) return;
            // Also on stop: a connection already queued still counts.
            for (int fd; (fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
                ++connections_;
                ::close(fd);
            }
            if (fds[1].revents) return;
        }
    });
}

void Isolation::stopProxyTrap() {
    if (trap_.joinable()) {
        const char stop = 0;
        [[maybe_unused]] ssize_t n = ::write(stopPipe_[1], &stop, 1);
        trap_.join();
    }
    for (int fd : {listenFd_, stopPipe_[0], stopPipe_[1]})
        if (fd >= 0) ::close(fd);
    listenFd_ = stopPipe_[0] = stopPipe_[1] = -1;
}

}  // namespace testsupport
