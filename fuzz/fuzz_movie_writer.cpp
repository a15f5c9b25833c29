// SPDX-License-Identifier: GPL-3.0-or-later
// Drives the movie writer with arbitrary movies and wishes. Input: one byte of switches, one
// byte for the size of a long item, then the movie. The writer must answer or refuse, never
// crash; and whenever it answers, the new movie's atoms fill it exactly and its items read back
// as the ones written.
#include "MovieWriter.h"

#include <QDateTime>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace media;

namespace {

std::optional<Atom> moovOf(ByteView view) {
    const AtomList top = children(view, 0, view.size());
    for (const Atom& a : top.atoms)
        if (a.type == fourcc("moov")) return a;
    return std::nullopt;
}

// Items in the order that doesn't depend on how the writer grouped them.
QList<QByteArray> canonical(const QList<MetadataItem>& items) {
    QList<QByteArray> out;
    for (const MetadataItem& i : items) {
        QByteArray k = i.keySpace.toUtf8() + '\0' + i.key + '\0' + i.stored + '\0' + QByteArray::number(i.dataType & 0x00FFFFFF) +
                       '\0' + QByteArray::number(i.locale);
        // Namespaces matter in QuickTime metadata and mark free-form iTunes keys.
        if (i.keySpace == QLatin1String(KeySpace::quickTimeMetadata) || i.keySpace == QLatin1String(KeySpace::iTunes))
            k += '\0' + i.keyNamespace;
        out << k;
    }
    std::sort(out.begin(), out.end());
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const uint8_t switches = data[0];
    const int longSize = data[1] * 64;
    const QByteArray movie = QByteArray::fromRawData(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));
    const ByteView view(movie);
    const auto moov = moovOf(view);
    QList<MetadataItem> items = moov ? readMetadataItems(view, *moov) : QList<MetadataItem>();

    if (switches & 0x01) items.clear();
    if (switches & 0x02)
        items.removeIf([](const MetadataItem& i) { return i.commonKey == "creationDate" || i.commonKey == "location"; });
    if ((switches & 0x04) && !items.isEmpty()) items.removeAt(data[1] % items.size());
    if (switches & 0x08) items << MetadataItem::quickTimeText("com.apple.quicktime.creationdate", "2024-01-02T03:04:05Z");
    if (switches & 0x10) items << MetadataItem::quickTimeText("com.apple.quicktime.location.ISO6709", "+45.5000-122.2500+10/");
    if (switches & 0x20) items << MetadataItem::quickTimeText("com.apple.quicktime.description", QString(longSize, u'x'));
    MetadataRewrite rewrite{items, (switches & 0x40) == 0};

    QString error;
    const auto out = rewriteMovie(movie, rewrite, &error);
    if (!out) return 0;
    const ByteView written(*out);
    if (!children(written, 0, written.size()).intact) std::abort();
    const auto newMoov = moovOf(written);
    if (!newMoov) std::abort();
    if (canonical(readMetadataItems(written, *newMoov)) != canonical(items)) std::abort();
    // Writing the new movie again with its own items changes nothing.
    const auto again = rewriteMovie(*out, {readMetadataItems(written, *newMoov), true}, &error);
    if (!again || *again != *out) std::abort();
    return 0;
}
