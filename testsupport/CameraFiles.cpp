// SPDX-License-Identifier: GPL-3.0-or-later
#include "CameraFiles.h"

#include <QtEndian>

namespace testsupport {

namespace {

QByteArray bigEndian32(quint32 v) {
    QByteArray out(4, '\0');
    qToBigEndian(v, out.data());
    return out;
}

QByteArray box(const QByteArray& type, const QByteArray& body) { return bigEndian32(quint32(8 + body.size())) + type + body; }

}  // namespace

QByteArray canonCr3(const QByteArray& tiff) {
    const QByteArray canonUuid = QByteArray::fromHex("85c0b687820f11e08111f4ce462b6a48");
    return box("ftyp", QByteArray("crx ") + bigEndian32(1) + "crx isom") + box("moov", box("uuid", canonUuid + box("CMT1", tiff)));
}

QByteArray fujifilmRaf(const QByteArray& jpeg) {
    // The header: magic, format version, camera id and name, directory version, then the places
    // of the JPEG, of the raw data's header (one record: its size) and of the raw data.
    constexpr quint32 jpegAt = 160;
    QByteArray header = QByteArray("FUJIFILMCCD-RAW 0201FF383501") + QByteArray("X-T3").leftJustified(32, '\0') + "0100" +
                        QByteArray(20, '\0');
    const QByteArray rawHeader = bigEndian32(1) + QByteArray::fromHex("010000040bd00fc0");
    const QByteArray rawData = QByteArray::fromHex("49492a00080000000000000000");  // a TIFF of no entries
    const quint32 rawHeaderAt = jpegAt + quint32(jpeg.size()), rawAt = rawHeaderAt + quint32(rawHeader.size());
    header += bigEndian32(jpegAt) + bigEndian32(quint32(jpeg.size())) + bigEndian32(rawHeaderAt) +
              bigEndian32(quint32(rawHeader.size())) + bigEndian32(rawAt) + bigEndian32(quint32(rawData.size()));
    return header.leftJustified(jpegAt, '\0') + jpeg + rawHeader + rawData;
}

}  // namespace testsupport
