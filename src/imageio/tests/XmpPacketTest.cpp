// SPDX-License-Identifier: GPL-3.0-or-later
// The XMP packet reader against exiv2's own decoding: every property of the schemas the reader
// uses reads the same, in the packets of the sample media and in packets written each way RDF
// allows.
#include "Exiv2Convert.h"
#include "XmpPacket.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <exiv2/exiv2.hpp>

#include <QFile>

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

using namespace imageio;

namespace {

// What a field reads as, by exiv2: an alternative text's default (or first) text, an array's
// items, a text.
QStringList exiv2Values(const Exiv2::Xmpdatum& d) {
    const Exiv2::Value& v = d.value();
    if (v.typeId() == Exiv2::langAlt) {
        const auto& alt = dynamic_cast<const Exiv2::LangAltValue&>(v).value_;
        auto it = alt.find("x-default");
        return {QString::fromStdString((it != alt.end() ? it : alt.begin())->second)};
    }
    QStringList out;
    if (v.typeId() == Exiv2::xmpBag || v.typeId() == Exiv2::xmpSeq || v.typeId() == Exiv2::xmpAlt)
        for (long i = 0; i < v.count(); ++i) out << QString::fromStdString(v.toString(i));
    if (out.isEmpty()) out << QString::fromStdString(v.toString());
    return out;
}

bool ourSchema(const QString& key) {
    static const QStringList prefixes{"dc", "photoshop", "xmpRights", "xmp", "iptc", "iptcExt", "tiff", "exif", "exifEX", "aux"};
    return prefixes.contains(key.section('.', 1, 1));
}

// Compares both readings; the number of properties compared.
int expectSameAsExiv2(const std::string& packet, const std::string& where) {
    initExiv2();
    Exiv2::XmpData theirs;
    int decoded;
    {
        std::lock_guard turn(xmpMutex());
        decoded = Exiv2::XmpParser::decode(theirs, packet);
    }
    const auto ours = parseXmpPacket(QByteArrayView(packet.data(), qsizetype(packet.size())));
    EXPECT_EQ(decoded == 0, ours.has_value()) << where;
    if (!ours || decoded != 0) return 0;
    int compared = 0;
    QSet<QString> theirKeys;
    for (const auto& d : theirs) {
        const QString key = QString::fromStdString(d.key());
        theirKeys.insert(key);
        if (!ourSchema(key)) continue;
        // A structure's or an array of structures' own node holds no value; its fields are
        // compared one by one.
        bool container = false;
        for (const auto& [k, v] : ours->properties) container = container || k.startsWith(key + '/') || k.startsWith(key + '[');
        if (container) continue;
        const XmpProperty* p = ours->find(key);
        if (!p) {
            ADD_FAILURE() << where << ": " << key.toStdString() << " not read";
            continue;
        }
        EXPECT_EQ(p->values(), exiv2Values(d)) << where << ": " << key.toStdString();
        EXPECT_EQ(p->toString(), QString::fromStdString(d.toString())) << where << ": " << key.toStdString();
        ++compared;
    }
    for (const auto& [key, value] : ours->properties)
        EXPECT_TRUE(theirKeys.contains(key)) << where << ": " << key.toStdString() << " is not exiv2's";
    return compared;
}

TEST(XmpPacket, ReadsTheSampleMediaAsExiv2Does) {
    initExiv2();
    int packets = 0, compared = 0;
    for (const QString& path : testsupport::corpusFiles()) {
        std::string packet;
        try {
            std::lock_guard turn(xmpMutex());
            auto image = Exiv2::ImageFactory::open(path.toStdString());
            image->readMetadata();
            packet = image->xmpPacket();
        } catch (const std::exception&) {
            continue;  // movies and files exiv2 doesn't open
        }
        if (packet.empty()) continue;
        ++packets;
        compared += expectSameAsExiv2(packet, path.toStdString());
    }
    EXPECT_GE(packets, 12);
    EXPECT_GE(compared, 200);
}

std::string packet(const std::string& descriptions) {
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">" +
           descriptions + "</rdf:RDF></x:xmpmeta>\n   \n<?xpacket end=\"w\"?>";
}

TEST(XmpPacket, ReadsEveryWayOfWritingAProperty) {
    const std::string ns =
        " xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:xmp='http://ns.adobe.com/xap/1.0/'"
        " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
        " xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/'"
        " xmlns:Iptc4xmpCore='http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/'"
        " xmlns:Iptc4xmpExt='http://iptc.org/std/Iptc4xmpExt/2008-02-29/' xmlns:other='http://example.com/other/'";
    const std::string rich = packet(
        // texts as attributes, with an entity
        "<rdf:Description rdf:about=''" + ns + " xmp:CreateDate='2021-06-01T12:00:00' xmp:Rating='4' tiff:Make='A &amp; B'"
        " other:Thing='left out'/>"
        // language alternatives with and without a default, arrays, a resource, CDATA, a character reference
        "<rdf:Description rdf:about=''" + ns + ">"
        "<dc:title><rdf:Alt><rdf:li xml:lang='en-GB'>Colour</rdf:li><rdf:li xml:lang='x-default'>Color</rdf:li></rdf:Alt></dc:title>"
        "<dc:rights><rdf:Alt><rdf:li xml:lang='de'>Rechte</rdf:li></rdf:Alt></dc:rights>"
        "<dc:subject><rdf:Bag><rdf:li>one</rdf:li><rdf:li> two </rdf:li></rdf:Bag></dc:subject>"
        "<dc:creator><rdf:Seq><rdf:li>Ann</rdf:li></rdf:Seq></dc:creator>"
        "<exif:ISOSpeedRatings><rdf:Seq><rdf:li>100</rdf:li><rdf:li>200</rdf:li></rdf:Seq></exif:ISOSpeedRatings>"
        "<dc:source rdf:resource='http://example.com/x'/>"
        "<photoshop:City><![CDATA[Lisbon <old town>]]></photoshop:City>"
        "<photoshop:Headline>Caf\xC3\xA9 \xE2\x98\x95</photoshop:Headline>"
        "<other:Struct rdf:parseType='Resource'><other:Field>left out</other:Field></other:Struct>"
        "</rdf:Description>"
        // a structure by parseType, and an array of structures holding alternatives
        "<rdf:Description rdf:about=''" + ns + ">"
        "<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
        "<Iptc4xmpCore:CiAdrCity>Rome</Iptc4xmpCore:CiAdrCity><Iptc4xmpCore:CiEmailWork>a@b.c</Iptc4xmpCore:CiEmailWork>"
        "</Iptc4xmpCore:CreatorContactInfo>"
        "<Iptc4xmpExt:Genre><rdf:Bag><rdf:li rdf:parseType='Resource'><Iptc4xmpExt:Name><rdf:Alt>"
        "<rdf:li xml:lang='x-default'>Drama</rdf:li><rdf:li xml:lang='fr'>Drame</rdf:li></rdf:Alt></Iptc4xmpExt:Name>"
        "<Iptc4xmpExt:CvId>http://cv.example.com/</Iptc4xmpExt:CvId></rdf:li></rdf:Bag></Iptc4xmpExt:Genre>"
        "</rdf:Description>");
    EXPECT_GE(expectSameAsExiv2(rich, "every form"), 14);

    // A structure as an inner description, with a field as its attribute; and as attributes alone.
    EXPECT_EQ(expectSameAsExiv2(packet("<rdf:Description rdf:about=''" + ns + "><Iptc4xmpCore:CreatorContactInfo>"
                                       "<rdf:Description Iptc4xmpCore:CiAdrCtry='Italy'>"
                                       "<Iptc4xmpCore:CiTelWork>+39 06</Iptc4xmpCore:CiTelWork></rdf:Description>"
                                       "</Iptc4xmpCore:CreatorContactInfo></rdf:Description>"),
                                "inner description"),
              2);
    EXPECT_EQ(expectSameAsExiv2(packet("<rdf:Description rdf:about=''" + ns + ">"
                                       "<Iptc4xmpCore:CreatorContactInfo Iptc4xmpCore:CiAdrCity='Oslo'/></rdf:Description>"),
                                "fields as attributes"),
              1);

    // Broken packets give nothing, as they give exiv2 nothing: unclosed, or a property given twice.
    expectSameAsExiv2(packet("<rdf:Description rdf:about=''" + ns + "><dc:title>unclosed</rdf:Description>"), "unclosed");
    expectSameAsExiv2(packet("<rdf:Description rdf:about=''" + ns + " xmp:Rating='1'/><rdf:Description rdf:about=''" + ns +
                             "><xmp:Rating>2</xmp:Rating></rdf:Description>"),
                      "twice");
    EXPECT_FALSE(parseXmpPacket("not XML at all"));
    EXPECT_FALSE(parseXmpPacket(""));
}

}  // namespace
