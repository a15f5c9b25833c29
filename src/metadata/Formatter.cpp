// SPDX-License-Identifier: GPL-3.0-or-later
#include "Formatter.h"

#include <QLocale>
#include <QRegularExpression>

namespace Formatter {
namespace {

// Qt has long and short formats only; the medium ones are the long ones without the weekday
// and the time zone, and with abbreviated month names.
QString withoutWeekday(QString f) {
    static const QRegularExpression weekday(QStringLiteral("d{4}[,.]?\\s*"));
    return f.remove(weekday).trimmed();
}
QString withoutZone(QString f) {
    static const QRegularExpression zone(QStringLiteral("\\s*t+"));
    return f.remove(zone).trimmed();
}

QString pattern(Style style) {
    const QLocale locale;
    const QString mediumTime = withoutZone(locale.timeFormat(QLocale::LongFormat));
    switch (style) {
    case Style::fullDate: return locale.dateFormat(QLocale::LongFormat) + " " + mediumTime;
    case Style::mediumDate:
        return withoutWeekday(locale.dateFormat(QLocale::LongFormat)).replace("MMMM", "MMM") + " " +
               locale.timeFormat(QLocale::ShortFormat);
    case Style::shortDate: return locale.dateFormat(QLocale::ShortFormat);
    case Style::longDate: return withoutWeekday(locale.dateFormat(QLocale::LongFormat));
    case Style::timeOnly: return mediumTime;
    }
    return {};
}

}  // namespace

QString format(const QDateTime& date, Style style) { return QLocale().toString(date, pattern(style)); }

std::optional<QDateTime> parse(const QString& text, Style style) {
    QDateTime d = QLocale().toDateTime(text, pattern(style));
    if (!d.isValid()) return std::nullopt;
    return d;
}

std::optional<QDateTime> exifDate(const QString& text) {
    // Read digit by digit: QDateTime's format parser was a measurable part of every edit.
    static constexpr char shape[] = "dddd:dd:dd dd:dd:dd";
    if (text.size() != 19) return std::nullopt;
    for (int i = 0; i < 19; ++i) {
        const char16_t c = text[i].unicode();
        if (shape[i] == 'd' ? (c < u'0' || c > u'9') : c != char16_t(shape[i])) return std::nullopt;
    }
    const auto number = [&](int at, int digits) {
        int n = 0;
        for (int i = at; i < at + digits; ++i) n = n * 10 + (text[i].unicode() - u'0');
        return n;
    };
    const QDate day(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    const QDateTime d(day, time);
    if (!day.isValid() || !time.isValid() || !d.isValid()) return std::nullopt;
    return d;
}

QString exifDateText(const QDateTime& date) { return date.toString(QStringLiteral("yyyy:MM:dd HH:mm:ss")); }

}  // namespace Formatter
