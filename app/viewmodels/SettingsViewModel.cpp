// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsViewModel.h"
#include <QCoreApplication>

#include "Log.h"
#include "Settings.h"

SettingsViewModel::SettingsViewModel(QObject* parent) : QAbstractListModel(parent) {}

// Photo access chooses the library's folders, in place of the platform's access settings.
const QList<SettingsViewModel::Row>& SettingsViewModel::rows() {
    static const QList<Row> table{
        {0, 0, QCoreApplication::translate("SettingsViewModel", "About"), QCoreApplication::translate("SettingsViewModel", "About Tessorin"), {}, QStringLiteral("info.circle")},
        {1, 0, QCoreApplication::translate("SettingsViewModel", "Photo Order"), QCoreApplication::translate("SettingsViewModel", "Most recent first"), QStringLiteral("mostRecentFirst"),
         QStringLiteral("arrow.up.arrow.down.circle")},
        {2, 0, QCoreApplication::translate("SettingsViewModel", "Tags"), QCoreApplication::translate("SettingsViewModel", "Human Readable"), QStringLiteral("human"),
         QStringLiteral("accessibility")},
        {3, 0, QCoreApplication::translate("SettingsViewModel", "Live Photos"), QCoreApplication::translate("SettingsViewModel", "Show Live Photos preview"),
         QStringLiteral("showLivePhotos"), QStringLiteral("livephoto")},
        {4, 0, QCoreApplication::translate("SettingsViewModel", "Video"), QCoreApplication::translate("SettingsViewModel", "Show Videos"), QStringLiteral("video"),
         QStringLiteral("film.circle")},
        {5, 0, QCoreApplication::translate("SettingsViewModel", "Allow Photo Access"), QCoreApplication::translate("SettingsViewModel", "Change Photo Access..."), {},
         QStringLiteral("photo.fill.on.rectangle.fill")},
        {6, 0, QCoreApplication::translate("SettingsViewModel", "Modified Images"), QCoreApplication::translate("SettingsViewModel", "Save in Tessorin album"),
         QStringLiteral("saveInTessorin"), QStringLiteral("tag.circle")},
        // "Modify" writes into the photo, or into its XMP sidecar and leaves the photo as it is.
        {7, 0, QCoreApplication::translate("SettingsViewModel", "Save changes in"), QCoreApplication::translate("SettingsViewModel", "the photo"),
         SettingsKey::saveChangesIn, QStringLiteral("photo.fill.on.rectangle.fill"), QStringLiteral("photo")},
        {7, 1, QCoreApplication::translate("SettingsViewModel", "Save changes in"), QCoreApplication::translate("SettingsViewModel", "an XMP sidecar"),
         SettingsKey::saveChangesIn, QStringLiteral("doc.text"), QStringLiteral("sidecar")},
        {7, 2, QCoreApplication::translate("SettingsViewModel", "Save changes in"), QCoreApplication::translate("SettingsViewModel", "Name new sidecars NAME.xmp"),
         SettingsKey::sidecarBaseName, QStringLiteral("tag"), {}},
    };
    return table;
}

int SettingsViewModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(rows().size()); }

QVariant SettingsViewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows().size()) return {};
    const Row& row = rows()[index.row()];
    switch (role) {
    case SectionRole: return row.section;
    case SectionTitleRole: return row.sectionTitle;
    case Qt::DisplayRole:
    case TextRole: return row.text;
    case KindRole: return row.key.isEmpty() ? QStringLiteral("disclosure") : row.choice.isEmpty() ? QStringLiteral("switch") : QStringLiteral("choice");
    case SymbolRole: return row.symbol;
    case OnRole: {
        if (row.key.isEmpty()) return {};
        const QVariant value = Settings::value(row.key);
        if (row.choice.isEmpty()) return value.toBool();
        // Unset, the first choice of the setting holds.
        return value.isValid() ? value.toString() == row.choice : row.row == 0;
    }
    case TagRole: return row.tag();
    default: return {};
    }
}

QHash<int, QByteArray> SettingsViewModel::roleNames() const {
    return {{SectionRole, "section"}, {SectionTitleRole, "sectionTitle"}, {TextRole, "rowText"}, {KindRole, "kind"},
            {SymbolRole, "symbol"},   {OnRole, "on"},                     {TagRole, "tag"}};
}

void SettingsViewModel::setSwitch(int tag, bool on) {
    for (int i = 0; i < rows().size(); ++i) {
        const Row& row = rows()[i];
        if (row.tag() != tag || row.key.isEmpty()) continue;
        if (!row.choice.isEmpty()) {
            if (!on) return;  // a choice is left by choosing another
            Settings::setValue(row.key, row.choice);
            Log::info(QStringLiteral("Choice: %1 is %2").arg(row.key, row.choice));
            emit dataChanged(index(0), index(int(rows().size()) - 1), {OnRole});
            return;
        }
        Settings::setValue(row.key, on);
        Log::info(QStringLiteral("Switch: %1 is %2").arg(tag).arg(on ? "true" : "false"));
        emit dataChanged(index(i), index(i), {OnRole});
        if (row.key == QLatin1String("human")) emit humanChanged();
        return;
    }
}

void SettingsViewModel::select(int tag) {
    if (tag == 0) emit aboutRequested();
    if (tag == 5) {
        Log::info(QStringLiteral("photoAccess settings opened: true"));
        emit photoAccessRequested();
    }
}

void SettingsViewModel::close() { emit closed(); }
