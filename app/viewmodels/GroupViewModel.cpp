// SPDX-License-Identifier: GPL-3.0-or-later
#include "GroupViewModel.h"

#include "AppState.h"
#include "ModuleTexts.h"
#include "Formatter.h"
#include "Settings.h"
#include "Log.h"
#include "TSFilesAlbum.h"
#include "TSPhotoAlbum.h"
#include "TSMetaDataObservable.h"

#include <QFileInfo>
#include <QUrl>

GroupViewModel::GroupViewModel(QObject* parent) : QAbstractListModel(parent) {
    TSEnvironment::observable().addObserver(this);
}

QString GroupViewModel::title() const { return album_ ? moduletexts::album(album_->title()) : QString(); }

bool GroupViewModel::gridView() const { return Settings::flag(SettingsFlag::gridView); }

QString GroupViewModel::toggleSymbol() const {
    return gridView() ? QStringLiteral("list.bullet") : QStringLiteral("square.grid.2x2");
}

int GroupViewModel::count() const { return album_ ? album_->count() : 0; }

int GroupViewModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    if (shownRows_ >= 0) return shownRows_;
    return gridView() ? (count() + columns - 1) / columns : count();
}

int GroupViewModel::rowOf(int index) const { return gridView() ? index / columns : index; }

int GroupViewModel::columnOf(int index) const { return gridView() ? index % columns : 0; }

double GroupViewModel::gridRowHeight(double viewWidth) {
    return (viewWidth - (columns - 1) * spacing) / columns + spacing;
}

QString GroupViewModel::thumbnailSource(const QString& path, bool libraryItem) {
    return QStringLiteral("image://thumb/") + (libraryItem ? QStringLiteral("lib/") : QString()) +
           QString::fromLatin1(QUrl::toPercentEncoding(path));
}

QVariantMap GroupViewModel::item(int index) const {
    QVariantMap map{{"index", index}, {"video", album_->isVideo(index)}};
    if (auto* files = dynamic_cast<TSFilesAlbum*>(album_.get()))
        if (auto path = files->imageUrl(index)) {
            map["thumbnail"] = thumbnailSource(*path);
            map["name"] = QFileInfo(*path).fileName();
        }
    if (auto* photos = dynamic_cast<TSPhotoAlbum*>(album_.get()))
        if (const library::Asset* asset = photos->assetAt(index)) {
            map["thumbnail"] = thumbnailSource(asset->mainPath(), true);
            map["name"] = QFileInfo(asset->mainPath()).fileName();
            map["favorite"] = asset->favorite;
            map["live"] = (asset->mediaSubtypes & library::Subtype::photoLive) != 0;
        }
    if (auto date = album_->date(index)) {
        map["date"] = Formatter::format(*date, Formatter::Style::longDate);
        map["time"] = Formatter::format(*date, Formatter::Style::timeOnly);
    }
    return map;
}

QVariant GroupViewModel::data(const QModelIndex& index, int role) const {
    if (!album_ || !index.isValid() || index.row() >= rowCount()) return {};
    const int first = gridView() ? index.row() * columns : index.row();
    if (role == IndexRole) return first;
    if (role == ItemsRole) {
        QVariantList items;
        const int last = gridView() ? std::min(first + columns, count()) : first + 1;
        for (int i = first; i < last; ++i) items << item(i);
        return items;
    }
    const QVariantMap map = item(first);
    switch (role) {
    case Qt::DisplayRole:
    case NameRole: return map.value("name");
    case DateRole: return map.value("date");
    case TimeRole: return map.value("time");
    case ThumbnailRole: return map.value("thumbnail");
    case VideoRole: return map.value("video");
    default: return {};
    }
}

QHash<int, QByteArray> GroupViewModel::roleNames() const {
    return {{IndexRole, "firstIndex"}, {ItemsRole, "items"},         {NameRole, "name"}, {DateRole, "date"},
            {TimeRole, "time"},        {ThumbnailRole, "thumbnail"}, {VideoRole, "video"}};
}

void GroupViewModel::attach() {
    beginResetModel();
    album_ = TSEnvironment::currentAlbum();
    album_->addGroupObserver(this);
    selectedRow_ = selectedColumn_ = selectedIndex_ = -1;
    endResetModel();
    emit albumChanged();
    emit selectionChanged();
    appear();
}

void GroupViewModel::appear() {
    if (!album_) return;
    if (appState().isPad) show(album_->actualIndex());
    else if (album_->hasValidIndex()) select(album_->actualIndex());
}

void GroupViewModel::toggleView() {
    beginResetModel();
    Settings::setFlag(SettingsFlag::gridView, !gridView());
    endResetModel();
    emit gridViewChanged();
    if (selectedIndex_ >= 0) select(selectedIndex_);
}

void GroupViewModel::show(int index) {
    if (!album_ || album_->isEmpty()) return;
    album_->setActualIndex(index);
    if (appState().isPad) select(album_->actualIndex());
    else emit detailRequested();
}

void GroupViewModel::select(int index) {
    if (!album_ || index < 0 || index >= album_->count()) return;
    selectedIndex_ = index;
    selectedRow_ = rowOf(index);
    selectedColumn_ = columnOf(index);
    emit selectionChanged();
}

void GroupViewModel::leave() {
    beginResetModel();
    album_.reset();
    selectedRow_ = selectedColumn_ = selectedIndex_ = -1;
    endResetModel();
    TSEnvironment::observable().albumChangedReset();
    emit albumChanged();
    emit selectionChanged();
}

void GroupViewModel::processedMetaData(const std::shared_ptr<TSAlbum>& album) {
    if (appState().isPad && album && album == album_ && album->actualIndex() != selectedIndex_)
        select(album->actualIndex());
}

void GroupViewModel::reload(bool) {
    if (shownRows_ >= 0) return;  // a batch update tells the view itself
    beginResetModel();
    endResetModel();
    emit albumChanged();
}

void GroupViewModel::refresh(const library::ChangeDetails& details) {
    beginResetModel();
    shownRows_ = 0;  // the album's own reload is this reset
    TSLibraryObserver::updateAlbum(details);
    shownRows_ = -1;
    endResetModel();
    emit albumChanged();
    Log::debug(QStringLiteral("-- refreshTableView: %1").arg(count()));
    if (selectedIndex_ >= 0 && album_) select(album_->actualIndex());
}

void GroupViewModel::libraryDidChange(const library::ChangeDetails& d) {
    // Only the album on view animates; another one just takes the new fetch.
    if (!album_ || album_ != TSEnvironment::currentAlbum()) {
        TSLibraryObserver::updateAlbum(d);
        return;
    }
    if (!d.hasIncrementalChanges || d.hasMoves()) return refresh(d);
    if (gridView()) {
        if (!d.removedIndexes.isEmpty() || !d.insertedIndexes.isEmpty()) return refresh(d);
        shownRows_ = rowCount();
        TSLibraryObserver::updateAlbum(d);
        shownRows_ = -1;
        // Four items of one row reload as one.
        QList<int> rows;
        for (qsizetype i : d.changedIndexes)
            if (!rows.contains(int(i / columns))) rows << int(i / columns);
        for (int row : rows) emit dataChanged(index(row), index(row));
        return;
    }
    // The album moves on first; the view is then told step by step: removals from the last
    // (old indexes), insertions from the first (new indexes), then the changed rows.
    shownRows_ = int(d.fetchResultBeforeChanges.count());
    TSLibraryObserver::updateAlbum(d);
    QList<qsizetype> removed = d.removedIndexes;
    std::sort(removed.rbegin(), removed.rend());
    for (qsizetype i : removed) {
        beginRemoveRows({}, int(i), int(i));
        --shownRows_;
        endRemoveRows();
    }
    QList<qsizetype> inserted = d.insertedIndexes;
    std::sort(inserted.begin(), inserted.end());
    for (qsizetype i : inserted) {
        beginInsertRows({}, int(i), int(i));
        ++shownRows_;
        endInsertRows();
    }
    shownRows_ = -1;
    for (qsizetype i : d.changedIndexes) emit dataChanged(index(int(i)), index(int(i)));
    emit albumChanged();
    if (selectedIndex_ >= 0) select(album_->actualIndex());
}
