// SPDX-License-Identifier: GPL-3.0-or-later
#include "Settings.h"

#include <QHash>
#include <QMutex>

#include <QSettings>

#include <array>

namespace {

struct Registered {
    SettingsFlag flag;
    const char* key;
    bool value;
};

constexpr std::array<Registered, 10> kRegistered{{
    {SettingsFlag::mostRecentFirst, "mostRecentFirst", true},
    {SettingsFlag::gridView, "gridView", false},
    {SettingsFlag::saveInTessorin, "saveInTessorin", true},
    {SettingsFlag::human, "human", true},
    {SettingsFlag::video, "video", true},
    {SettingsFlag::hiddenInAlbums, "hiddenInAlbums", true},
    {SettingsFlag::hiddenInAllPhotos, "hiddenInAllPhotos", false},
    {SettingsFlag::needConversion, "needConversion", true},
    {SettingsFlag::showLivePhotos, "showLivePhotos", true},
    {SettingsFlag::hideEmptyTags, "hideEmptyTags", true},
}};

constexpr bool inFlagOrder() {
    for (size_t i = 0; i < kRegistered.size(); ++i)
        if (kRegistered[i].flag != static_cast<SettingsFlag>(i)) return false;
    return true;
}
static_assert(inFlagOrder(), "the table is indexed by SettingsFlag");

const Registered& registered(SettingsFlag flag) { return kRegistered[static_cast<size_t>(flag)]; }

constexpr int kSavesBeforeReview = 4;

}  // namespace

QString Settings::key(SettingsFlag flag) { return QString::fromLatin1(registered(flag).key); }

bool Settings::registeredDefault(SettingsFlag flag) { return registered(flag).value; }

QList<SettingsFlag> Settings::allFlags() {
    QList<SettingsFlag> flags;
    for (const Registered& r : kRegistered) flags << r.flag;
    return flags;
}

namespace {
QMutex overridesMutex;
QHash<QString, QVariant>& overrides() {
    static QHash<QString, QVariant> map;
    return map;
}
}  // namespace

void Settings::setProcessOverride(const QString& key, const QVariant& value) {
    QMutexLocker lock(&overridesMutex);
    overrides().insert(key, value);
}

void Settings::holdFlags() {
    QSettings store(organisation, application);
    QMutexLocker lock(&overridesMutex);
    for (const Registered& r : kRegistered) {
        const QString key = QString::fromLatin1(r.key);
        if (!overrides().contains(key)) overrides().insert(key, store.value(key, r.value));
    }
}

QVariant Settings::value(const QString& key) {
    {
        QMutexLocker lock(&overridesMutex);
        auto it = overrides().constFind(key);
        if (it != overrides().constEnd()) return it.value();
    }
    QSettings store(organisation, application);
    if (store.contains(key)) return store.value(key);
    for (const Registered& r : kRegistered)
        if (key == QLatin1String(r.key)) return r.value;
    return {};
}

void Settings::setValue(const QString& key, const QVariant& value) {
    QSettings(organisation, application).setValue(key, value);
}

bool Settings::flag(SettingsFlag flag) { return value(key(flag)).toBool(); }

void Settings::setFlag(SettingsFlag flag, bool on) { setValue(key(flag), on); }

QList<int> Settings::hiddenSections() {
    QList<int> sections;
    for (const QVariant& v : value(SettingsKey::hiddenSections).toList()) sections << v.toInt();
    return sections;
}

void Settings::setHiddenSections(const QList<int>& sections) {
    QVariantList list;
    for (int s : sections) list << s;
    setValue(SettingsKey::hiddenSections, list);
}

void Settings::noteReviewWorthyAction(bool windowActive) {
    const int count = value(SettingsKey::reviewWorthyActionCount).toInt() + 1;
    setValue(SettingsKey::reviewWorthyActionCount, count);
    if (count < kSavesBeforeReview) return;
    const QString version = QStringLiteral(TESSORIN_VERSION);
    if (version == value(SettingsKey::lastReviewRequestAppVersion).toString() || !windowActive) return;
    setValue(SettingsKey::reviewWorthyActionCount, 0);
    setValue(SettingsKey::lastReviewRequestAppVersion, version);
}
