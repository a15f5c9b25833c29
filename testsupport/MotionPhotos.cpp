// SPDX-License-Identifier: GPL-3.0-or-later
#include "MotionPhotos.h"

#include "TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <tuple>

namespace testsupport {
namespace {

void put32(QByteArray& out, quint32 v, bool little) {
    for (int i = 0; i < 4; ++i) out += char(v >> (little ? 8 * i : 8 * (3 - i)) & 0xff);
}

void write(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// The photo with exiftool's XMP wishes applied, as bytes.
QByteArray tagged(const QString& photo, const QStringList& wishes) {
    QTemporaryDir dir;
    const QString copy = dir.filePath("photo." + QFileInfo(photo).suffix());
    write(copy, readFile(photo));
    const ProcessResult r = run("exiftool", QStringList{"-q", "-overwrite_original"} + wishes + QStringList{copy});
    EXPECT_EQ(r.exitCode, 0) << r.err.constData();
    return readFile(copy);
}

// A Samsung trailer block: type, the name's length and the name, then the data.
QByteArray samsungBlock(quint16 type, const QByteArray& name, const QByteArray& data) {
    QByteArray b("\0\0", 2);
    b += char(type & 0xff);
    b += char(type >> 8);
    put32(b, quint32(name.size()), true);
    return b + name + data;
}

}  // namespace

QByteArray googleMotionXmp(const QString& movieLength, qint64 timestampUs) {
    return QStringLiteral(
               "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
               "<rdf:Description rdf:about=\"\" xmlns:GCamera=\"http://ns.google.com/photos/1.0/camera/\""
               " xmlns:Container=\"http://ns.google.com/photos/1.0/container/\""
               " xmlns:Item=\"http://ns.google.com/photos/1.0/container/item/\""
               " GCamera:MotionPhoto=\"1\" GCamera:MotionPhotoVersion=\"1\""
               " GCamera:MotionPhotoPresentationTimestampUs=\"%2\">"
               "<Container:Directory><rdf:Seq>"
               "<rdf:li rdf:parseType=\"Resource\"><Container:Item Item:Mime=\"image/jpeg\" Item:Semantic=\"Primary\""
               " Item:Length=\"0\" Item:Padding=\"0\"/></rdf:li>"
               "<rdf:li rdf:parseType=\"Resource\"><Container:Item Item:Mime=\"video/mp4\" Item:Semantic=\"MotionPhoto\""
               " Item:Length=\"%1\" Item:Padding=\"0\"/></rdf:li>"
               "</rdf:Seq></Container:Directory></rdf:Description></rdf:RDF></x:xmpmeta>")
        .arg(movieLength)
        .arg(timestampUs)
        .toUtf8();
}

void googleMotionPhoto(const QString& photo, const QString& movie, const QString& out, qint64 movieLength) {
    const QByteArray video = readFile(movie);
    QTemporaryDir dir;
    const QString packet = dir.filePath("motion.xmp");
    write(packet, googleMotionXmp(QString::number(movieLength < 0 ? video.size() : movieLength)));
    const QByteArray still = tagged(photo, {"-xmp<=" + packet});
    const bool heif = !still.startsWith("\xFF\xD8");
    QByteArray box;
    if (heif) {
        put32(box, quint32(8 + video.size()), false);
        box += "mpvd";
    }
    write(out, still + box + video);
}

void microVideo(const QString& jpeg, const QString& movie, const QString& out) {
    const QByteArray video = readFile(movie);
    const QByteArray still = tagged(jpeg, {"-XMP-GCamera:MicroVideo=1", "-XMP-GCamera:MicroVideoVersion=1",
                                           "-XMP-GCamera:MicroVideoOffset=" + QString::number(video.size()),
                                           "-XMP-GCamera:MicroVideoPresentationTimestampUs=250000"});
    write(out, still + video);
}

void samsungMotionPhoto(const QString& jpeg, const QString& movie, const QString& out) {
    const QByteArray still = readFile(jpeg);
    const QByteArray stamp = samsungBlock(0x0a01, "Image_UTC_Data", "1700000000000");
    const QByteArray video = samsungBlock(0x0a30, "MotionPhoto_Data", readFile(movie));
    QByteArray dir("SEFH");
    put32(dir, 101, true);
    put32(dir, 2, true);
    // Each entry: its type, then how far back from the directory its block starts, and its size.
    for (const auto& [type, back, size] : {std::tuple{quint16(0x0a01), stamp.size() + video.size(), stamp.size()},
                                           std::tuple{quint16(0x0a30), video.size(), video.size()}}) {
        dir += QByteArray("\0\0", 2);
        dir += char(type & 0xff);
        dir += char(type >> 8);
        put32(dir, quint32(back), true);
        put32(dir, quint32(size), true);
    }
    QByteArray tail;
    put32(tail, quint32(dir.size()), true);
    write(out, still + stamp + video + dir + tail + "SEFT");
}

QByteArray withXmp(const QByteArray& jpeg, const QByteArray& packet) {
    const QByteArray payload = QByteArray("http://ns.adobe.com/xap/1.0/", 29) + packet;
    QByteArray segment("\xFF\xE1", 2);
    segment += char((payload.size() + 2) >> 8);
    segment += char((payload.size() + 2) & 0xff);
    return jpeg.left(2) + segment + payload + jpeg.mid(2);
}

}  // namespace testsupport
