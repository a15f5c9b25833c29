// SPDX-License-Identifier: GPL-3.0-or-later
#include "IptcVocabulary.h"

#include "TagsPhotoModifier.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>

// The vocabulary is compiled into this static library; its resources register only when asked.
static void initIptcResources() { Q_INIT_RESOURCE(iptc); }

namespace {

// A JSON decoder in the manner of a typed one: a missing required field or a value of the wrong
// type fails the whole file.
struct Reader {
    bool ok = true;

    QString text(const QJsonObject& o, const char* key) {
        const QJsonValue v = o.value(QLatin1String(key));
        if (!v.isString()) ok = false;
        return v.toString();
    }
    std::optional<QString> optionalText(const QJsonObject& o, const char* key) {
        if (!o.contains(QLatin1String(key)) || o.value(QLatin1String(key)).isNull()) return std::nullopt;
        return text(o, key);
    }
    IptcLangMap langMap(const QJsonObject& o, const char* key) {
        const QJsonValue v = o.value(QLatin1String(key));
        if (!v.isObject()) {
            ok = false;
            return {};
        }
        IptcLangMap out;
        const QJsonObject m = v.toObject();
        for (auto it = m.begin(); it != m.end(); ++it) {
            if (!it.value().isString()) ok = false;
            out.insert(it.key(), it.value().toString());
        }
        return out;
    }
    std::optional<IptcLangMap> optionalLangMap(const QJsonObject& o, const char* key) {
        if (!o.contains(QLatin1String(key)) || o.value(QLatin1String(key)).isNull()) return std::nullopt;
        return langMap(o, key);
    }
};

QJsonObject toJson(const IptcLangMap& m) {
    QJsonObject o;
    for (auto it = m.begin(); it != m.end(); ++it) o.insert(it.key(), it.value());
    return o;
}

}  // namespace

QString IptcMultipleOption::title() const {
    return (retired ? QStringLiteral("RETIRED - ") : QString()) + prefLabel.value(QStringLiteral("en-GB"));
}

std::optional<IptcScheme> IptcScheme::decode(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) return std::nullopt;
    const QJsonObject o = doc.object();
    Reader r;
    IptcScheme s;
    s.uri = r.text(o, "uri");
    s.prefSchemeAlias = r.text(o, "prefSchemeAlias");
    s.copyrightHolder = r.text(o, "copyrightHolder");
    s.licenceLink = r.text(o, "licenceLink");
    s.dateReleased = r.text(o, "dateReleased");
    s.prefLabel = r.langMap(o, "prefLabel");
    s.definition = r.langMap(o, "definition");
    s.note = r.optionalLangMap(o, "note");
    const QJsonValue set = o.value(QLatin1String("conceptSet"));
    if (!set.isArray()) return std::nullopt;
    for (const QJsonValue v : set.toArray()) {
        if (!v.isObject()) return std::nullopt;
        const QJsonObject c = v.toObject();
        IptcMultipleOption opt;
        opt.uri = r.optionalText(c, "uri");
        opt.created = r.text(c, "created");
        opt.modified = r.text(c, "modified");
        opt.retired = r.optionalText(c, "retired");
        opt.prefLabel = r.langMap(c, "prefLabel");
        opt.definition = r.langMap(c, "definition");
        opt.note = r.optionalLangMap(c, "note");
        s.conceptSet << opt;
    }
    if (!r.ok) return std::nullopt;
    return s;
}

QByteArray IptcScheme::encode() const {
    QJsonObject o{{"uri", uri},
                  {"prefSchemeAlias", prefSchemeAlias},
                  {"copyrightHolder", copyrightHolder},
                  {"licenceLink", licenceLink},
                  {"dateReleased", dateReleased},
                  {"prefLabel", toJson(prefLabel)},
                  {"definition", toJson(definition)}};
    if (note) o.insert("note", toJson(*note));
    QJsonArray set;
    for (const IptcMultipleOption& c : conceptSet) {
        QJsonObject j{{"created", c.created}, {"modified", c.modified},
                      {"prefLabel", toJson(c.prefLabel)}, {"definition", toJson(c.definition)}};
        if (c.uri) j.insert("uri", *c.uri);
        if (c.retired) j.insert("retired", *c.retired);
        if (c.note) j.insert("note", toJson(*c.note));
        set.append(j);
    }
    o.insert("conceptSet", set);
    return QJsonDocument(o).toJson();
}

namespace iptc {

QString sourceTypeVocabularyFile() {
    static const bool registered = (initIptcResources(), true);
    Q_UNUSED(registered);
    return QStringLiteral(":/iptc/IPTCdigitalsourcetype.json");
}

std::optional<IptcOptions> iptcOptions(TSKey key, const QString& vocabularyFile) {
    if (rawValue(key) != QLatin1String("Source Type")) return std::nullopt;
    QFile file(vocabularyFile);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const auto scheme = IptcScheme::decode(file.readAll());
    if (!scheme) return std::nullopt;
    IptcOptions result{key, {IptcMultipleOption{}}};
    result.options << scheme->conceptSet;
    return result;
}

std::optional<IptcMultiData> iptcMultiData(TSKey key, const QString& vocabularyFile) {
    if (auto options = iptcOptions(key, vocabularyFile)) return *options;
    if (key == TSKey::IPTC_CREATOR_CONTACT_INFO) return IptcDictionary{key};
    if (const auto c = coord(key); c && TagsPhotoModifier::isMultiValued(c->key)) return IptcList{key};
    return std::nullopt;
}

std::optional<IptcMultiData> iptcMultiData(TSKey key) {
    static QMutex mutex;
    static QHash<TSKey, IptcMultiData> known;
    {
        QMutexLocker lock(&mutex);
        if (auto it = known.constFind(key); it != known.cend()) return *it;
    }
    auto result = iptcMultiData(key, sourceTypeVocabularyFile());
    if (result) {
        QMutexLocker lock(&mutex);
        known.insert(key, *result);
    }
    return result;
}

QString optionLabel(const std::optional<QString>& uri, const QList<IptcMultipleOption>& options) {
    for (const IptcMultipleOption& o : options)
        if (o.uri == uri) return o.title();
    return uri.value_or(QString());
}

}  // namespace iptc
