// SPDX-License-Identifier: GPL-3.0-or-later
#include "ShareViewModel.h"

#include "DurableFile.h"
#include "Folders.h"
#include "Log.h"
#include "TSAlbum.h"

#include <QCoreApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QStandardPaths>

#include <functional>

namespace {

using sharing::ShareAction;

struct Row {
    const char* kind;
    const char* title;
    const char* name;  // of the action, as QML names it
    ShareAction action;
};

// The menu as the toolbar's share button opens it.
constexpr Row kRows[] = {
    {"title", QT_TRANSLATE_NOOP("ShareViewModel", "Share Photo"), "", {}},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "With Metadata"), "shareMeta", ShareAction::shareMeta},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "Without Metadata"), "shareWithoutMeta", ShareAction::shareWithoutMeta},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "Without Location"), "shareWithoutLocation", ShareAction::shareWithoutLocation},
    {"separator", "", "", {}},
    {"title", QT_TRANSLATE_NOOP("ShareViewModel", "Share Details Only"), "", {}},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "Details"), "shareDetails", ShareAction::shareDetails},
    {"separator", "", "", {}},
    {"title", QT_TRANSLATE_NOOP("ShareViewModel", "Share All Tags as"), "", {}},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "Human Readable"), "hrShare", ShareAction::hrShare},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "JSON"), "jsonShare", ShareAction::jsonShare},
    {"button", QT_TRANSLATE_NOOP("ShareViewModel", "Raw"), "rawShare", ShareAction::rawShare},
};

const Row* buttonOf(const std::function<bool(const Row&)>& match) {
    for (const Row& r : kRows)
        if (QLatin1String(r.kind) == QLatin1String("button") && match(r)) return &r;
    return nullptr;
}

}  // namespace

ShareViewModel::ShareViewModel(QObject* parent) : QObject(parent) {}

void ShareViewModel::setMenuOpen(bool open) {
    if (open == menuOpen_) return;
    menuOpen_ = open;
    emit menuOpenChanged();
}

QVariantList ShareViewModel::rows() const {
    QVariantList list;
    for (const Row& r : kRows)
        list << QVariantMap{{"kind", QString::fromLatin1(r.kind)},
                            {"title", QCoreApplication::translate("ShareViewModel", r.title)},
                            {"action", QString::fromLatin1(r.name)}};
    return list;
}

QUrl ShareViewModel::saveFolder() const {
    return firstExistingFolder({QStandardPaths::DocumentsLocation, QStandardPaths::PicturesLocation});
}

void ShareViewModel::shareMeta() { run(ShareAction::shareMeta); }
void ShareViewModel::shareWithoutMeta() { run(ShareAction::shareWithoutMeta); }
void ShareViewModel::shareWithoutLocation() { run(ShareAction::shareWithoutLocation); }
void ShareViewModel::shareDetails() { run(ShareAction::shareDetails); }
void ShareViewModel::hrShare() { run(ShareAction::hrShare); }
void ShareViewModel::jsonShare() { run(ShareAction::jsonShare); }
void ShareViewModel::rawShare() { run(ShareAction::rawShare); }

void ShareViewModel::trigger(const QString& action) {
    if (const Row* row = buttonOf([&](const Row& r) { return action == QLatin1String(r.name); }))
        run(row->action);
    else
        Log::error(QStringLiteral("📤 no share action %1").arg(action));
}

void ShareViewModel::run(ShareAction action) {
    setMenuOpen(false);
    const auto album = TSEnvironment::currentAlbum();
    QString error;
    auto items = sharing::shareItems(action, album->currentAsset.get(), album->needDownload(), &error);
    if (!items) {
        if (!error.isEmpty()) showError(error);
        return;
    }
    // The summary that goes with the file, or the text itself, is ready to paste.
    if (!items->text.isEmpty()) {
        if (QClipboard* clipboard = QGuiApplication::clipboard()) clipboard->setText(items->text);
        if (items->data.isEmpty()) items->data = items->text.toUtf8();
    }
    pending_ = *items;
    saveTitle_ = QCoreApplication::translate("ShareViewModel", "Save %1")
                     .arg(QCoreApplication::translate("ShareViewModel", buttonOf([&](const Row& r) { return r.action == action; })->title));
    emit saveChanged();
    emit saveRequested();
}

bool ShareViewModel::saveTo(const QUrl& file) {
    if (pending_.data.isEmpty()) return false;
    const QString path = file.isLocalFile() ? file.toLocalFile() : file.toString();
    QString error;
    if (!fileio::writeDurably(path, pending_.data, &error)) {
        Log::error(QStringLiteral("📤 saving failed: %1").arg(error));
        showError(error);
        return false;
    }
    Log::info(QStringLiteral("📤 saved %1").arg(path));
    cancelSave();
    return true;
}

void ShareViewModel::cancelSave() {
    pending_ = {};
    saveTitle_.clear();
    emit saveChanged();
}

void ShareViewModel::showError(const QString& message) {
    errorMessage_ = message;
    emit errorChanged();
}

void ShareViewModel::dismissError() {
    if (errorMessage_.isEmpty()) return;
    errorMessage_.clear();
    emit errorChanged();
}
