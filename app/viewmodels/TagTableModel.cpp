// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagTableModel.h"

#include "Log.h"
#include "ModuleTexts.h"
#include "TSAlbum.h"
#include "TSMetaVideo.h"

#include <QClipboard>
#include <QGuiApplication>
#include <algorithm>

namespace {

// The tag table lists a movie's key spaces by name, whatever order the file has them in.
std::shared_ptr<const TSMetaVideo> sortedByKeySpace(const TSMetaVideo& video) {
    auto sorted = std::make_shared<TSMetaVideo>();
    QStringList spaces = video.keySpaces();
    std::sort(spaces.begin(), spaces.end());
    for (const QString& space : spaces)
        for (const auto& item : video.spaces.value(space)) sorted->add(item.item);
    return sorted;
}

}  // namespace

TagTableModel::TagTableModel(QObject* parent)
    : QAbstractListModel(parent), metaDic_(std::make_unique<TSMetaDictionay>(TSMetaData())) {
    TSEnvironment::observable().addObserver(this);
}

QHash<QString, bool>& TagTableModel::collapseState() {
    static QHash<QString, bool> state;
    return state;
}

QString TagTableModel::sectionKeyText(int section) const { return metaDic_->sectionKey(section).value_or(QString()); }

bool TagTableModel::isOpen(int section) const { return collapseState().value(sectionKeyText(section), true); }

int TagTableModel::rowsIn(int section) const {
    if (needingDownload_) return section == 0 ? 1 : 0;
    return metaDic_->numberOfRows(section);
}

QList<TagTableModel::Entry> TagTableModel::sectionEntries(int section) const {
    QList<Entry> out;
    if (!isOpen(section)) return out;
    if (needingDownload_) return {{Kind::download, section, 0}};
    for (int r = 0; r < rowsIn(section); ++r) out.append({Kind::row, section, r});
    return out;
}

void TagTableModel::rebuildEntries() {
    entries_.clear();
    for (int s = 0; s < metaDic_->numberOfSections(); ++s) {
        // A section without rows has no header.
        if (rowsIn(s) == 0) continue;
        entries_.append({Kind::header, s, -1});
        entries_.append(sectionEntries(s));
    }
}

void TagTableModel::reload() {
    beginResetModel();
    const auto album = TSEnvironment::currentAlbum();
    const auto asset = album->currentAsset;
    needingDownload_ = asset && album->needDownload();
    if (asset && asset->isVideo() && asset->metaVideo())
        metaDic_ = std::make_unique<TSMetaVideoDictionary>(sortedByKeySpace(*asset->metaVideo()));
    else
        metaDic_ = std::make_unique<TSMetaDictionay>(asset ? asset->metaData() : TSMetaData(), needingDownload_);
    rebuildEntries();
    endResetModel();
    emit reloaded();
}

void TagTableModel::processedMetaData(const std::shared_ptr<TSAlbum>&) { reload(); }

int TagTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(entries_.size()); }

QVariant TagTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= entries_.size()) return {};
    const Entry& e = entries_[index.row()];
    switch (role) {
    case KindRole:
        switch (e.kind) {
        case Kind::header: return QStringLiteral("header");
        case Kind::row: return QStringLiteral("row");
        case Kind::download: return QStringLiteral("download");
        }
        return {};
    case SectionRole: return e.section;
    case TitleRole: return metaDic_->sectionTitle(metaDic_->sectionKey(e.section));
    case OpenRole: return isOpen(e.section);
    case LabelRole: return e.kind == Kind::row ? metaDic_->row(e.section, e.row).first : QString();
    case ValueRole: {
        if (e.kind != Kind::row) return QString();
        const auto [label, value] = metaDic_->row(e.section, e.row);
        return moduletexts::tagValue(label, value);
    }
    default: return {};
    }
}

QHash<int, QByteArray> TagTableModel::roleNames() const {
    return {{KindRole, "kind"}, {SectionRole, "section"}, {TitleRole, "title"},
            {OpenRole, "open"}, {LabelRole, "label"},     {ValueRole, "value"}};
}

QStringList TagTableModel::sectionTitles() const {
    QStringList titles;
    for (int s = 0; s < metaDic_->numberOfSections(); ++s) titles << metaDic_->sectionTitle(metaDic_->sectionKey(s));
    return titles;
}

void TagTableModel::toggle(int section) {
    if (section < 0 || section >= metaDic_->numberOfSections()) return;
    const int header = indexOfSection(section);
    const bool open = !isOpen(section);
    collapseState()[sectionKeyText(section)] = open;
    if (rowsIn(section) == 0 || header >= entries_.size() || entries_[header].section != section) return;
    // The header's own open mark changes too.
    emit dataChanged(index(header), index(header), {OpenRole});
    if (open) {
        const QList<Entry> rows = sectionEntries(section);
        if (rows.isEmpty()) return;
        beginInsertRows({}, header + 1, header + int(rows.size()));
        for (int i = 0; i < rows.size(); ++i) entries_.insert(header + 1 + i, rows[i]);
        endInsertRows();
    } else {
        int end = header + 1;
        while (end < entries_.size() && entries_[end].section == section) ++end;
        if (end == header + 1) return;
        beginRemoveRows({}, header + 1, end - 1);
        entries_.remove(header + 1, end - header - 1);
        endRemoveRows();
    }
}

int TagTableModel::goTo(int section) const {
    Log::debug("row: " + QString::number(section));
    return indexOfSection(section);
}

int TagTableModel::indexOfSection(int section) const {
    for (int i = 0; i < entries_.size(); ++i)
        if (entries_[i].section >= section) return i;
    return std::max(0, int(entries_.size()) - 1);
}

void TagTableModel::copy(int index) const {
    if (index < 0 || index >= entries_.size() || entries_[index].kind != Kind::row) return;
    // The value as the row shows it.
    QGuiApplication::clipboard()->setText(data(this->index(index), ValueRole).toString());
}
