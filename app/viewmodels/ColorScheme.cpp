// SPDX-License-Identifier: GPL-3.0-or-later
#include "ColorScheme.h"

#include "Log.h"
#include "Settings.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <cmath>

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorSchemeKey = QStringLiteral("color-scheme");

// The portal wraps the value in one variant, older portals in two.
uint unwrapped(QVariant v) {
    while (v.canConvert<QDBusVariant>() && v.userType() == qMetaTypeId<QDBusVariant>()) v = v.value<QDBusVariant>().variant();
    return v.toUInt();
}

}  // namespace

ColorScheme::ColorScheme(QObject* parent, QDBusConnection bus) : QObject(parent) { listenToPortal(std::move(bus)); }

bool ColorScheme::dark() const {
    const QString chosen = preference();
    if (chosen == QLatin1String("dark")) return true;
    if (chosen == QLatin1String("light")) return false;
    return desktop_ == prefersDark;
}

QString ColorScheme::preference() const {
    const QString chosen = Settings::value(QLatin1String(settingsKey)).toString();
    return chosen == QLatin1String("dark") || chosen == QLatin1String("light") ? chosen : QStringLiteral("system");
}

void ColorScheme::setPreference(const QString& preference) {
    if (preference == this->preference()) return;
    Settings::setValue(QLatin1String(settingsKey), preference);
    emit changed();
}

void ColorScheme::setDesktopPreference(uint value) {
    if (value == desktop_) return;
    desktop_ = value;
    emit changed();
}

double ColorScheme::contrast(const QColor& a, const QColor& b) {
    auto luminance = [](const QColor& c) {
        auto channel = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
    };
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

void ColorScheme::listenToPortal(QDBusConnection bus) {
    if (!bus.isConnected()) return;
    if (!bus.connect(portalService, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                     SLOT(portalSettingChanged(QDBusMessage))))
        Log::warning("The desktop's colour scheme will not be followed as it changes: " + bus.lastError().message());
    // Asked without waiting: a desktop without the portal answers with an error, and the
    // screens stay light meanwhile.
    QDBusMessage read = QDBusMessage::createMethodCall(portalService, portalPath, portalSettings, QStringLiteral("Read"));
    read << appearance << colorSchemeKey;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        const QDBusPendingReply<QVariant> reply = *w;
        if (!reply.isError()) setDesktopPreference(unwrapped(reply.value()));
        w->deleteLater();
    });
}

void ColorScheme::portalSettingChanged(const QDBusMessage& message) {
    const QVariantList args = message.arguments();
    if (args.size() == 3 && args[0].toString() == appearance && args[1].toString() == colorSchemeKey)
        setDesktopPreference(unwrapped(args[2]));
}
