// SPDX-License-Identifier: GPL-3.0-or-later
// The wishes that start from each photo's own values: "Shift by..." and "From a track log...",
// with their previews.
#include "EditViewModel.h"

#include "DateShift.h"
#include "EditViewModelParts.h"
#include "Formatter.h"
#include "Geotagger.h"
#include "HRLocation.h"
#include "TSAsset.h"
#include "TSMeanings.h"
#include "TagsPhotoModifier.h"

#include <QCoreApplication>
#include <QFileInfo>

bool EditViewModel::setShift(const QString& text) {
    if (text.trimmed().isEmpty()) {
        batch_.shiftSeconds.reset();
    } else {
        const auto seconds = DateShift::parseOffset(text.trimmed());
        if (!seconds) return false;
        batch_.shiftSeconds = *seconds;
    }
    refreshPreviews();
    emit changed();
    return true;
}

bool EditViewModel::setTrackLog(const QString& picked, const QString& offset, const QString& maxGap) {
    const QString path = editparts::localPath(picked);
    if (path.isEmpty()) {
        batch_.trackLog.reset();
        trackPath_.clear();
        refreshPreviews();
        emit changed();
        return true;
    }
    Geotagger::Options options;
    if (!offset.trimmed().isEmpty()) {
        const auto o = DateShift::parseOffset(offset.trimmed());
        if (!o) {
            emit alert(QString(), QCoreApplication::translate("EditViewModel", "Not a clock offset: %1").arg(offset));
            return false;
        }
        options.clockOffsetSeconds = *o;
    }
    if (!maxGap.trimmed().isEmpty()) {
        const auto g = Geotagger::parseDuration(maxGap.trimmed());
        if (!g) {
            emit alert(QString(), QCoreApplication::translate("EditViewModel", "Not a duration: %1").arg(maxGap));
            return false;
        }
        options.maxGapSeconds = *g;
    }
    QString error;
    auto log = TrackLog::readFile(path, &error);
    if (!log) {
        emit alert(QString(), QFileInfo(path).fileName() + QStringLiteral(": ") + error);
        return false;
    }
    batch_.trackLog = std::make_shared<const TrackLog>(std::move(*log));
    batch_.geotag = options;
    trackPath_ = path;
    refreshPreviews();
    emit changed();
    return true;
}

void EditViewModel::refreshPreviews() {
    shiftPreview_.clear();
    trackMatches_.clear();
    if (assets_.isEmpty()) return;
    if (batch_.shiftSeconds) {
        const auto own = string(assets_.first()->metaData(), TSKey::EXIF_DATE, false);
        const auto moved = own ? DateShift::shifted(*own, *batch_.shiftSeconds) : std::nullopt;
        auto shown = [](const QString& exif) {
            const auto d = Formatter::exifDate(exif);
            return d ? Formatter::format(*d, Formatter::Style::fullDate) : exif;
        };
        shiftPreview_ = own && moved ? shown(*own) + QStringLiteral(" → ") + shown(*moved) : QCoreApplication::translate("EditViewModel", "No date to shift");
    }
    if (batch_.trackLog) {
        for (const auto& a : assets_) {
            if (a->isVideo()) continue;
            TagsPhotoModifier tags(a->metaData());
            QString place;
            if (const auto problem = Geotagger::geotag(tags, *batch_.trackLog, batch_.geotag)) {
                place = *problem;
            } else if (const auto instant = Geotagger::captureInstant(tags)) {
                const qint64 at = instant->toMSecsSinceEpoch() + batch_.geotag.clockOffsetSeconds * 1000;
                if (const auto fix = batch_.trackLog->at(at, batch_.geotag.maxGapSeconds * 1000))
                    place = hrl::coordinatesText(GeoLocation(fix->latitude, fix->longitude), true).value_or(QString());
            }
            trackMatches_ << QVariantMap{{"name", QFileInfo(a->path()).fileName()}, {"place", place}};
        }
    }
}

