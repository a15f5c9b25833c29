// SPDX-License-Identifier: GPL-3.0-or-later
#include "IptcEditorModel.h"

#include "IptcKeys.h"
#include "TSMeanings.h"
#include "TemplateModel.h"

#include <QCoreApplication>

namespace {

// Shown on the IPTC screen, so in the user's language (English when no translation is loaded).
QString shownText(const char* text) { return QCoreApplication::translate("IptcEditorModel", text); }
QString removedText() { return shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "[removed]")); }
QString unchangedText() { return shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "Unchanged")); }
// A field's name as the rows show it: the tag label less its ":".
QString shownName(TSKey key) {
    QString label = QCoreApplication::translate("TSKey", rawValue(key).toUtf8().constData());
    if (label.endsWith(':')) label.chop(1);
    return label;
}

bool isContact(TSKey key) { return TSKeys::iptcContactKeys().contains(key); }

}  // namespace

IptcEditorModel::IptcEditorModel(UserSettings& settings, int selectedCount)
    : settings_(settings), selectedCount_(selectedCount) {}

QList<IptcSections> IptcEditorModel::sections() { return IptcSectionRows::allSections(); }

QList<TSKey> IptcEditorModel::rows(IptcSections section) { return IptcSectionRows::rows(section); }

IptcCellKind IptcEditorModel::cellKind(TSKey key) {
    const auto kind = iptc::iptcMultiData(key);
    if (!kind) return IptcCellKind::text;
    if (std::holds_alternative<IptcOptions>(*kind)) return IptcCellKind::options;
    if (std::holds_alternative<IptcDictionary>(*kind)) return IptcCellKind::group;
    return IptcCellKind::list;
}

QList<IptcMultipleOption> IptcEditorModel::options(TSKey key) {
    const auto kind = iptc::iptcMultiData(key);
    if (kind && std::holds_alternative<IptcOptions>(*kind)) return std::get<IptcOptions>(*kind).options;
    return {};
}

UserProperties& IptcEditorModel::wishesFor(TSKey key) const {
    return isContact(key) ? settings_.creatorContactInfo.properties : settings_.properties;
}

std::optional<QString> IptcEditorModel::value(TSKey key) const {
    const auto c = coord(key);
    if (!c) return std::nullopt;
    const UserProperties& wishes = wishesFor(key);
    if (wishes.properties.contains(c->key)) return wishes.properties.value(c->key);
    if (isMulti()) return std::nullopt;
    // A contact field's own value is in the contact record's copy of the photo's group.
    auto own = isContact(key) ? std::optional<QString>(wishes.dic.value_or(QVariantMap{}).value(c->key).toString())
                              : string(settings_.firstImageData, key);
    if (own && own->isEmpty()) return std::nullopt;
    return own;
}

IptcRowText IptcEditorModel::row(TSKey key) const {
    const QString name = shownName(key);
    IptcRowText t;
    t.title = name;
    const auto v = value(key);
    switch (cellKind(key)) {
    case IptcCellKind::list:
        t.title = shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "%1 (comma-separated list)")).arg(name);
        [[fallthrough]];
    case IptcCellKind::text:
        t.placeholder = isMulti() ? unchangedText() : shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "Add %1 here")).arg(name);
        t.value = v == kRemovalMark ? removedText() : v.value_or(QString());
        break;
    case IptcCellKind::options:
        if (v == kRemovalMark) t.value = isMulti() ? shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "Unselected")) : iptc::optionLabel(std::nullopt, options(key));
        else if (!v) t.value = unchangedText();
        else t.value = iptc::optionLabel(*v, options(key));
        break;
    case IptcCellKind::group: {
        t.title = contactTitle();
        // As the contact record describes itself: "label text" a line, the photo's own values
        // filling in for fields without a wish when one photo is edited.
        QStringList lines;
        for (TSKey k : contactKeys())
            if (const auto o = value(k)) lines << QCoreApplication::translate("TSKey", rawValue(k).toUtf8().constData()) + ' ' + (*o == kRemovalMark ? removedText() : *o);
        const QString text = lines.join('\n');
        t.dimmed = text.isEmpty();
        t.value = !text.isEmpty() ? text : isMulti() ? unchangedText() : shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "No %1")).arg(name);
        break;
    }
    }
    return t;
}

QString IptcEditorModel::contactTitle() const {
    const QString title = shownName(TSKey::IPTC_CREATOR_CONTACT_INFO);
    return isMulti() ? shownText(QT_TRANSLATE_NOOP("IptcEditorModel", "%1 (edited)")).arg(title) : title;
}

void IptcEditorModel::setText(TSKey key, const QString& text) {
    const auto c = coord(key);
    if (!c) return;
    UserProperties& wishes = wishesFor(key);
    if (!text.isEmpty()) wishes.set(text, c->key);
    else if (isMulti()) wishes.set(std::nullopt, c->key);
    else wishes.set(kRemovalMark, c->key);
    settings_.disclosureChanged = true;
}

void IptcEditorModel::choose(TSKey key, const QString& id) {
    const auto c = coord(key);
    if (!c) return;
    wishesFor(key).set(id.isEmpty() ? kRemovalMark : id, c->key);
    settings_.disclosureChanged = true;
}

void IptcEditorModel::applyTemplate() {
    TemplateModel(0).apply(settings_);
    settings_.disclosureChanged = true;
}

QString IptcEditorModel::footer() {
    return QStringLiteral("        \nIPTC Photo Metadata and IPTC NewsCodes are developed by the IPTC, the International "
                          "Press Telecommunications Council. See also [standards](https://iptc.org/standards/)");
}
