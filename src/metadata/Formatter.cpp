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
    static const QRegularExpression shape(QStringLiteral("^\\d{4}:\\d{2}:\\d{2} \\d{2}:\\d{2}:\\d{2}$"));
    if (!shape.match(text).hasMatch()) return std::nullopt;
    QDateTime d = QDateTime::fromString(text, QStringLiteral("yyyy:MM:dd HH:mm:ss"));
    if (!d.isValid()) return std::nullopt;
    return d;
}

QString exifDateText(const QDateTime& date) { return date.toString(QStringLiteral("yyyy:MM:dd HH:mm:ss")); }

}  // namespace Formatter
