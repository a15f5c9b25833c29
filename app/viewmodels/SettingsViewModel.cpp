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
    case KindRole: return row.key.isEmpty() ? QStringLiteral("disclosure") : QStringLiteral("switch");
    case SymbolRole: return row.symbol;
    case OnRole: return row.key.isEmpty() ? QVariant() : QVariant(Settings::value(row.key).toBool());
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
