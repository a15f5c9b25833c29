// SPDX-License-Identifier: GPL-3.0-or-later
#include "XmpPacket.h"

#include <QSet>
#include <QXmlStreamReader>

namespace imageio {
namespace {

constexpr QStringView kRdf = u"http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr QStringView kXml = u"http://www.w3.org/XML/1998/namespace";

// The schemas whose properties the reader looks up, by exiv2's prefix for each; a structure's
// fields are named by the prefix the XMP toolkit registers for their schema.
struct Schema {
    QStringView uri, exiv2Prefix, fieldPrefix;
};
constexpr Schema kSchemas[] = {
    {u"http://purl.org/dc/elements/1.1/", u"dc", u"dc"},
    {u"http://ns.adobe.com/photoshop/1.0/", u"photoshop", u"photoshop"},
    {u"http://ns.adobe.com/xap/1.0/rights/", u"xmpRights", u"xmpRights"},
    {u"http://ns.adobe.com/xap/1.0/", u"xmp", u"xmp"},
    {u"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/", u"iptc", u"Iptc4xmpCore"},
    {u"http://iptc.org/std/Iptc4xmpExt/2008-02-29/", u"iptcExt", u"Iptc4xmpExt"},
    {u"http://ns.adobe.com/tiff/1.0/", u"tiff", u"tiff"},
    {u"http://ns.adobe.com/exif/1.0/", u"exif", u"exif"},
    {u"http://cipa.jp/exif/1.0/", u"exifEX", u"exifEX"},
    {u"http://ns.adobe.com/exif/1.0/aux/", u"aux", u"aux"},
    {u"http://ns.adobe.com/lightroom/1.0/", u"lr", u"lr"},
    // Google's camera schema and container directory: motion photos, depth and gain maps.
    {u"http://ns.google.com/photos/1.0/camera/", u"GCamera", u"GCamera"},
    {u"http://ns.google.com/photos/1.0/container/", u"Container", u"Container"},
    {u"http://ns.google.com/photos/1.0/container/item/", u"Item", u"Item"},
};

// Deeper than any packet a camera or a catalogue writes; the walk recurses once per level, so an
// unbounded depth would be a stack overflow waiting for a crafted file.
constexpr int kMaxDepth = 64;

const Schema* schemaOf(QStringView uri) {
    for (const Schema& s : kSchemas)
        if (s.uri == uri) return &s;
    return nullptr;
}

bool isRdf(QStringView uri, QStringView name, QStringView what) { return uri == kRdf && name == what; }

// RDF/XML as XMP writes it: descriptions whose attributes and child elements are properties; a
// property is a text, an rdf:resource, an rdf:Bag/Seq/Alt of rdf:li items, or a structure (an
// inner rdf:Description, rdf:parseType="Resource", or fields given as attributes).
class Walker {
public:
    explicit Walker(QByteArrayView packet) : xml_(QByteArray::fromRawData(packet.data(), packet.size())) {}

    std::optional<XmpPacket> run(QString* error) {
        while (!xml_.atEnd()) {
            const auto token = xml_.readNext();
            // XMP has no document type; one here is there to declare entities, perhaps a
            // billion laughs, and is refused before any of them expands.
            if (token == QXmlStreamReader::DTD) xml_.raiseError(QStringLiteral("declares a document type, which XMP never does"));
            if (token != QXmlStreamReader::StartElement) continue;
            if (!isRdf(xml_.namespaceUri(), xml_.name(), u"RDF")) continue;
            // What follows the RDF element (padding, the packet's end) is not read.
            while (xml_.readNextStartElement())
                if (isRdf(xml_.namespaceUri(), xml_.name(), u"Description")) description({});
                else xml_.skipCurrentElement();
            if (xml_.hasError()) return fail(error);
            if (duplicate_) {
                if (error) *error = QStringLiteral("names a property twice");
                return std::nullopt;
            }
            return std::move(out_);
        }
        if (xml_.hasError()) return fail(error);
        if (error) *error = QStringLiteral("holds no XMP (no rdf:RDF element)");
        return std::nullopt;
    }

private:
    std::optional<XmpPacket> fail(QString* error) const {
        if (error)
            *error = QStringLiteral("is not well-formed XML (line %1: %2)").arg(xml_.lineNumber()).arg(xml_.errorString());
        return std::nullopt;
    }

    // The key of property `name` in schema `uri` under `parent` (empty at the top).
    std::optional<QString> key(const QString& parent, QStringView uri, QStringView name) const {
        const Schema* s = schemaOf(uri);
        if (parent.isEmpty()) {
            if (!s) return std::nullopt;
            return QStringLiteral("Xmp.") + s->exiv2Prefix.toString() + u'.' + name.toString();
        }
        return parent + u'/' + (s ? s->fieldPrefix.toString() : QString()) + u':' + name.toString();
    }

    // A property given twice makes the packet invalid, as it does for the XMP toolkit.
    void add(const QString& key, XmpProperty value) {
        if (keys_.contains(key)) duplicate_ = true;
        keys_.insert(key);
        out_.properties.append({key, std::move(value)});
    }

    // At a description's start: its attributes and children are properties under `parent`.
    void description(const QString& parent) {
        if (depth_ == kMaxDepth) return xml_.raiseError(QStringLiteral("nests deeper than %1 levels").arg(kMaxDepth));
        ++depth_;
        fields(parent);
        while (xml_.readNextStartElement()) property(parent);
        --depth_;
    }

    // Attributes that are properties (not RDF's or XML's own) hold texts.
    void fields(const QString& parent) {
        for (const QXmlStreamAttribute& a : xml_.attributes()) {
            if (a.namespaceUri() == kRdf || a.namespaceUri() == kXml || a.namespaceUri().isEmpty()) continue;
            if (auto k = key(parent, a.namespaceUri(), a.name())) add(*k, {XmpProperty::Kind::Text, {a.value().toString()}, {}});
        }
    }

    // At a property element's start.
    void property(const QString& parent) {
        const auto k = key(parent, xml_.namespaceUri(), xml_.name());
        if (!k) return xml_.skipCurrentElement();
        const QXmlStreamAttributes attributes = xml_.attributes();
        if (attributes.hasAttribute(kRdf.toString(), QStringLiteral("resource"))) {
            add(*k, {XmpProperty::Kind::Text, {attributes.value(kRdf.toString(), QStringLiteral("resource")).toString()}, {}});
            return xml_.skipCurrentElement();
        }
        if (attributes.value(kRdf.toString(), QStringLiteral("parseType")) == u"Resource") return description(*k);
        // A structure's fields may be given as attributes, or as an inner description; a text
        // is all that's left when there is neither.
        const qsizetype before = out_.properties.size();
        fields(*k);
        bool nested = out_.properties.size() > before;
        QString text;
        while (!xml_.atEnd()) {
            switch (xml_.readNext()) {
            case QXmlStreamReader::Characters: text += xml_.text(); break;
            case QXmlStreamReader::EndElement:
                if (!nested) add(*k, {XmpProperty::Kind::Text, {text}, {}});
                return;
            case QXmlStreamReader::StartElement:
                nested = true;
                if (xml_.namespaceUri() == kRdf && (xml_.name() == u"Bag" || xml_.name() == u"Seq" || xml_.name() == u"Alt"))
                    array(*k);
                else if (isRdf(xml_.namespaceUri(), xml_.name(), u"Description")) description(*k);
                else xml_.skipCurrentElement();
                break;
            default: break;
            }
        }
    }

    // At an rdf:Bag, rdf:Seq or rdf:Alt: its rdf:li items, texts or structures.
    void array(const QString& k) {
        XmpProperty value{XmpProperty::Kind::Array, {}, {}};
        bool langAlt = xml_.name() == u"Alt";
        int index = 0;
        while (xml_.readNextStartElement()) {
            if (!isRdf(xml_.namespaceUri(), xml_.name(), u"li")) {
                xml_.skipCurrentElement();
                continue;
            }
            ++index;
            const QXmlStreamAttributes attributes = xml_.attributes();
            const QString lang = attributes.value(kXml.toString(), QStringLiteral("lang")).toString();
            langAlt = langAlt && !lang.isEmpty();
            const QString item = k + u'[' + QString::number(index) + u']';
            if (attributes.value(kRdf.toString(), QStringLiteral("parseType")) == u"Resource") {
                description(item);
                continue;
            }
            fields(item);
            QString text;
            while (xml_.readNext() != QXmlStreamReader::EndElement && !xml_.atEnd()) {
                if (xml_.isCharacters()) text += xml_.text();
                else if (xml_.isStartElement() && isRdf(xml_.namespaceUri(), xml_.name(), u"Description")) description(item);
                else if (xml_.isStartElement()) xml_.skipCurrentElement();
            }
            value.items << text;
            value.langs << lang;
        }
        if (langAlt && !value.items.isEmpty()) value.kind = XmpProperty::Kind::LangAlt;
        add(k, std::move(value));
    }

    QXmlStreamReader xml_;
    XmpPacket out_;
    QSet<QString> keys_;
    bool duplicate_ = false;
    int depth_ = 0;
};

}  // namespace

QStringList XmpProperty::values() const {
    if (kind == Kind::LangAlt) {
        const qsizetype i = langs.indexOf(QStringLiteral("x-default"));
        return {items.value(i < 0 ? 0 : i)};
    }
    return kind == Kind::Array && items.isEmpty() ? QStringList{QString()} : items;
}

QString XmpProperty::toString() const {
    if (kind != Kind::LangAlt) return items.join(QStringLiteral(", "));
    // The default text first, then the others.
    QStringList parts;
    for (int pass = 0; pass < 2; ++pass)
        for (qsizetype i = 0; i < items.size(); ++i)
            if ((langs[i] == u"x-default") == (pass == 0)) parts << QStringLiteral("lang=\"%1\" %2").arg(langs[i], items[i]);
    return parts.join(QStringLiteral(", "));
}

const XmpProperty* XmpPacket::find(const QString& key) const {
    for (const auto& [k, v] : properties)
        if (k == key) return &v;
    return nullptr;
}

std::optional<XmpPacket> parseXmpPacket(QByteArrayView packet, QString* error) { return Walker(packet).run(error); }

std::vector<ContainerItem> containerDirectory(const XmpPacket& xmp) {
    std::vector<ContainerItem> items;
    for (int i = 1;; ++i) {
        const QString item = QStringLiteral("Xmp.Container.Directory[%1]/Container:Item/Item:").arg(i);
        const auto field = [&](const char* name) -> std::optional<QString> {
            const XmpProperty* p = xmp.find(item + QLatin1String(name));
            return p ? std::optional(p->toString()) : std::nullopt;
        };
        const auto mime = field("Mime"), semantic = field("Semantic");
        if (!mime && !semantic) break;
        items.push_back({mime.value_or(QString()), semantic.value_or(QString()), field("Length"), field("Padding")});
    }
    return items;
}

}  // namespace imageio
