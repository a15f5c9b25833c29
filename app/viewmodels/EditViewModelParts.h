// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the parts of the edit screen's view model share.
#include "ModuleTexts.h"

#include <QFutureWatcher>
#include <QObject>
#include <QUrl>
#include <QtConcurrent>
#include <functional>
#include <optional>

namespace editparts {

// A label as a row shows it: "Original Date:" → "Original Date".
inline QString bare(const std::optional<QString>& label) {
    QString text = moduletexts::tagLabel(label.value_or(QString()));
    if (text.endsWith(':')) text.chop(1);
    return text;
}

// A picker's answer may be a file URL.
inline QString localPath(const QString& text) {
    return text.startsWith(QLatin1String("file:")) ? QUrl(text).toLocalFile() : text;
}

// Runs `work` on the thread pool and hands its answer to `done` on `context`'s thread, unless
// `context` is gone by then.
template <typename T>
void runOffThread(QObject* context, std::function<T()> work, std::function<void(const T&)> done) {
    auto* watcher = new QFutureWatcher<T>(context);
    QObject::connect(watcher, &QFutureWatcher<T>::finished, context, [watcher, done] {
        done(watcher->result());
        watcher->deleteLater();
    });
    watcher->setFuture(QtConcurrent::run(std::move(work)));
}

}  // namespace editparts
