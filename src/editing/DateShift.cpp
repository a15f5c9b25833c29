// SPDX-License-Identifier: GPL-3.0-or-later
#include "DateShift.h"

#include "PropertyKeys.h"
#include "TagsPhotoModifier.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTimeZone>

namespace DateShift {

std::optional<qint64> parseOffset(const QString& text) {
    static const QRegularExpression form(QStringLiteral(R"(^\s*([+-]?)\s*(?:(\d+)\s+)?(\d+)(?::(\d+))?(?::(\d+))?\s*$)"));
    const auto m = form.match(text);
    if (!m.hasMatch()) return std::nullopt;
    const qint64 days = m.captured(2).toLongLong(), hours = m.captured(3).toLongLong();
    const qint64 minutes = m.captured(4).toLongLong(), seconds = m.captured(5).toLongLong();
    if (!m.captured(4).isEmpty() && minutes > 59) return std::nullopt;
    if (!m.captured(5).isEmpty() && seconds > 59) return std::nullopt;
    if (days > 100000 || hours > 100000) return std::nullopt;
    const qint64 total = ((days * 24 + hours) * 60 + minutes) * 60 + seconds;
    return m.captured(1) == QLatin1String("-") ? -total : total;
}

std::optional<QString> shifted(const QString& exifDate, qint64 seconds) {
    static const QString format = QStringLiteral("yyyy:MM:dd HH:mm:ss");
    // UTC stands for "no zone": the wall clock moves by exactly the offset.
    QDateTime date = QDateTime::fromString(exifDate.trimmed().left(19), format);
    if (!date.isValid()) return std::nullopt;
    date.setTimeSpec(Qt::UTC);
    // An EXIF date has four digits for its year.
    date = date.addSecs(seconds);
    if (date.date().year() < 1 || date.date().year() > 9999) return std::nullopt;
    return date.toString(format);
}

bool shiftDates(TagsPhotoModifier& tags, qint64 seconds) {
    bool changed = false;
    auto shift = [&](TagsPhotoModifier::PropertyDict& dict, const QString& key) {
        const QVariant value = dict.value(key);
        if (value.typeId() != QMetaType::QString) return;
        if (const auto moved = shifted(value.toString(), seconds); moved && *moved != value.toString()) {
            dict.insert(key, *moved);
            changed = true;
        }
    };
    shift(tags.exifData, kCGImagePropertyExifDateTimeOriginal);
    shift(tags.exifData, kCGImagePropertyExifDateTimeDigitized);
    shift(tags.tiffData, kCGImagePropertyTIFFDateTime);
    if (changed) tags.changed = true;
    return changed;
}

}  // namespace DateShift
