// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The user's settings, kept in QSettings under "Tessorin"/"Tessorin". Every read goes to the
// store, so a change made anywhere is seen at the next use; nothing is cached here, except the
// flags a command-line run holds for itself (holdFlags).
#include <QList>
#include <QString>
#include <QVariant>

// The flags whose defaults hold until the user changes them, in their registration order.
enum class SettingsFlag {
    mostRecentFirst,
    gridView,
    saveInTessorin,
    human,
    video,
    hiddenInAlbums,
    hiddenInAllPhotos,
    needConversion,
    showLivePhotos,
    hideEmptyTags,
};

namespace SettingsKey {
inline constexpr char hiddenSections[] = "HiddenSections";
inline constexpr char reviewWorthyActionCount[] = "reviewWorthyActionCount";
inline constexpr char lastReviewRequestAppVersion[] = "lastReviewRequestAppVersion";
// Where saved changes go: "photo" (also when unset) or "sidecar", the photo's XMP sidecar.
inline constexpr char saveChangesIn[] = "saveChangesIn";
// A new sidecar is named NAME.xmp instead of NAME.EXT.xmp.
inline constexpr char sidecarBaseName[] = "sidecarBaseName";
}  // namespace SettingsKey

class Settings {
public:
    static inline constexpr char organisation[] = "Tessorin";
    static inline constexpr char application[] = "Tessorin";

    static QString key(SettingsFlag flag);
    static bool registeredDefault(SettingsFlag flag);
    static QList<SettingsFlag> allFlags();

    // The stored value; for a flag's key that was never stored, its default (which is never
    // written); otherwise an invalid QVariant.
    static QVariant value(const QString& key);
    static void setValue(const QString& key, const QVariant& value);
    // A value for this process only, read before the stored one and never written (the
    // command line's --no-human runs with "human" off without touching the user's choice).
    static void setProcessOverride(const QString& key, const QVariant& value);
    // Every flag as it stands now, held for the rest of the process: a command-line run reads
    // them once, where opening the store for each file was a measurable part of each edit.
    static void holdFlags();

    static bool flag(SettingsFlag flag);
    static void setFlag(SettingsFlag flag, bool on);

    // The collapsed sections of the album list.
    static QList<int> hiddenSections();
    static void setHiddenSections(const QList<int>& sections);

    // Called after each successful save. From the fourth save on, a review is requested once
    // per application version, and only while a window is active; requesting resets the count.
    // There is no store to ask, so the request itself does nothing.
    static void noteReviewWorthyAction(bool windowActive);
};
