// SPDX-License-Identifier: GPL-3.0-or-later
// The sections and rows of the edit screen's table.
#include "EditViewModel.h"

#include "EditViewModelParts.h"
#include "Formatter.h"
#include "IptcEditorModel.h"
#include "TSAsset.h"

#include <QCoreApplication>
#include <QFileInfo>

using editparts::bare;

QVariantList EditViewModel::sections() const {
    if (!settings_) return {};
    const bool multiple = assets_.size() > 1;
    const UserSettings& s = *settings_;
    const IptcEditorModel editors(*settings_, int(assets_.size()));
    auto row = [](const QString& kind, const QString& title, const QString& detail = {}) {
        return QVariantMap{{"kind", kind}, {"title", title}, {"detail", detail}, {"value", QString()},
                           {"placeholder", QString()}, {"dimmed", false}, {"checked", false}, {"key", QString()}};
    };
    auto switchRow = [&](const QString& title, Sections section, const QString& detail = {}) {
        QVariantMap r = row(QStringLiteral("switch"), title, detail);
        r["checked"] = s.switchers[section];
        return r;
    };
    auto editor = [&](const EMRowData& data) {
        QVariantMap r = row(QStringLiteral("editor"), bare(data.header));
        const auto v = editors.value(*data.key);
        r["key"] = EditKeys::caseName(*data.key);
        r["value"] = v == kRemovalMark ? QCoreApplication::translate("EditViewModel", "%1 [removed]").arg(data.header.value_or(QString())) : v.value_or(QString());
        r["placeholder"] = multiple ? QCoreApplication::translate("EditViewModel", "Unchanged")
                                    : QCoreApplication::translate("EditViewModel", "Add %1 here").arg(bare(data.placeholder));
        return r;
    };

    const int count = s.switchers[Sections::noTags] ? 2 : isVideo_ ? 4 : 8;
    QVariantList out;
    for (int n = 0; n < count; ++n) {
        const auto section = Sections(n);
        QString title;
        QVariantList rows;
        switch (section) {
        case Sections::selected: rows << row(QStringLiteral("images"), {}); break;
        case Sections::noTags:
            title = QCoreApplication::translate("EditViewModel", "No Tags");
            rows << (isVideo_ ? switchRow(QCoreApplication::translate("EditViewModel", "No extra data"), section, QCoreApplication::translate("EditViewModel", "May result in a different rotation"))
                              : switchRow(QCoreApplication::translate("EditViewModel", "Image structure tags only"), section));
            break;
        case Sections::dateTime: {
            title = QCoreApplication::translate("EditViewModel", "Date and time");
            rows << switchRow(QCoreApplication::translate("EditViewModel", "No Date and Time tags"), section);
            if (s.switchers[section]) break;
            const QList<EMRowData> dates = EMSections::rows(section);
            for (int i = 0; i < (isVideo_ ? 1 : dates.size()); ++i) {
                QVariantMap r = row(QStringLiteral("disclosure"), {}, bare(dates[i].header));
                const auto text = s.value(dates[i].key);
                auto date = text ? Formatter::exifDate(*text) : std::nullopt;
                if (text && !date) date = Formatter::parse(*text, Formatter::Style::fullDate);
                if (date) r["title"] = Formatter::format(*date, Formatter::Style::fullDate);
                else if (text && !text->isEmpty()) r["title"] = *text;
                else {
                    r["title"] = multiple ? QCoreApplication::translate("EditViewModel", "Unchanged")
                                          : QCoreApplication::translate("EditViewModel", "Add %1 here").arg(bare(dates[i].placeholder));
                    r["dimmed"] = true;
                }
                rows << r;
            }
            if (!isVideo_) {
                QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "Shift by..."), shiftPreview_);
                r["key"] = QStringLiteral("shift");
                rows << r;
            }
            break;
        }
        case Sections::location:
            title = QCoreApplication::translate("EditViewModel", "Location");
            rows << switchRow(QCoreApplication::translate("EditViewModel", "No location tag"), section);
            if (s.switchers[section]) break;
            rows << row(QStringLiteral("disclosure"), moduletexts::editText(s.locationText(multiple)));
            if (!isVideo_) {
                QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "From a track log..."),
                                    trackPath_.isEmpty() ? QString() : QFileInfo(trackPath_).fileName());
                r["key"] = QStringLiteral("track");
                rows << r;
            }
            break;
        case Sections::rotation:
            title = QCoreApplication::translate("EditViewModel", "Orientation");
            rows << row(QStringLiteral("disclosure"), moduletexts::editText(s.rotationText()));
            break;
        case Sections::userComment:
            title = QCoreApplication::translate("EditViewModel", "User Comment");
            rows << editor(EMSections::rows(section).first());
            break;
        case Sections::iptc: {
            title = QCoreApplication::translate("EditViewModel", "IPTC tags");
            QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "Edit IPTC tags"));
            r["symbol"] = QStringLiteral("text.below.photo.fill");
            rows << r;
            break;
        }
        case Sections::camera:
            title = QCoreApplication::translate("EditViewModel", "Camera");
            for (const EMRowData& data : EMSections::rows(section)) rows << editor(data);
            break;
        }
        out << QVariantMap{{"section", n}, {"title", title}, {"rows", rows}};
    }
    return out;
}

