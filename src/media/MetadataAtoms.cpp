// SPDX-License-Identifier: GPL-3.0-or-later
// How items go back into atoms. Each item carries its stored bytes, data type and locale, so an
// item that was read and not changed is written back as it was.
#include "MetadataAtoms.h"

namespace media::detail {

namespace {

// The atom type of a four-byte key; nothing for any other key.
std::optional<FourCC> keyCode(const QByteArray& key) {
    if (key.size() != 4) return std::nullopt;
    return FourCC(uchar(key[0])) << 24 | FourCC(uchar(key[1])) << 16 | FourCC(uchar(key[2])) << 8 | FourCC(uchar(key[3]));
}

QByteArray dataAtom(const MetadataItem& item) {
    QByteArray payload;
    appendBe32(payload, item.dataType & 0x00FFFFFF);
    appendBe32(payload, item.locale);
    payload.append(item.stored);
    return makeAtom(fourcc("data"), payload);
}

// Runs of items that share one atom: consecutive items with the same key (and namespace).
template <typename Same>
QList<QList<MetadataItem>> runs(const QList<MetadataItem>& items, Same same) {
    QList<QList<MetadataItem>> out;
    for (const MetadataItem& item : items) {
        if (!out.isEmpty() && same(out.last().first(), item)) out.last().append(item);
        else out.append({item});
    }
    return out;
}

QByteArray syncsafeBytes(quint32 v) {
    QByteArray out;
    for (int shift : {21, 14, 7, 0}) out.append(char(v >> shift & 0x7F));
    return out;
}

}  // namespace

QByteArray handlerAtom(FourCC handler) {
    QByteArray payload;
    appendBe32(payload, 0);  // version and flags
    appendBe32(payload, 0);  // component type
    appendBe32(payload, handler);
    appendBe32(payload, handler == fourcc("mdir") ? fourcc("appl") : 0);
    appendBe32(payload, 0);
    appendBe32(payload, 0);
    payload.append('\0');  // empty name
    return makeAtom(fourcc("hdlr"), payload);
}

QByteArray userDataAtoms(const QList<MetadataItem>& items) {
    QByteArray out;
    const auto groups = runs(items, [](const MetadataItem& a, const MetadataItem& b) {
        return a.key == b.key && a.dataType != DataType::reserved && b.dataType != DataType::reserved;
    });
    for (const auto& group : groups) {
        const auto type = keyCode(group.first().key);
        if (!type) continue;
        QByteArray payload;
        for (const MetadataItem& item : group) {
            if (item.dataType == DataType::reserved) {
                payload.append(item.stored);
                continue;
            }
            const QByteArray text = item.stored.left(0xFFFF);
            appendBe16(payload, quint16(text.size()));
            appendBe16(payload, quint16(item.locale));
            payload.append(text);
        }
        out.append(makeAtom(*type, payload));
    }
    return out;
}

QByteArray isoUserDataAtoms(const QList<MetadataItem>& items) {
    QByteArray out;
    for (const MetadataItem& item : items)
        if (auto type = keyCode(item.key)) out.append(makeAtom(*type, item.stored));
    return out;
}

QByteArray id3Atoms(const QList<MetadataItem>& items) {
    QByteArray out;
    // One tag per language and version, as the frames were found.
    const auto groups = runs(items, [](const MetadataItem& a, const MetadataItem& b) {
        return a.locale == b.locale && a.dataType == b.dataType;
    });
    for (const auto& group : groups) {
        QByteArray frames;
        for (const MetadataItem& item : group) frames.append(item.stored);
        if (frames.size() >= (1 << 28)) continue;
        QByteArray payload;
        appendBe32(payload, 0);
        appendBe16(payload, quint16(group.first().locale));
        payload.append("ID3", 3);
        payload.append(char(group.first().dataType));
        payload.append('\0');
        payload.append('\0');
        payload.append(syncsafeBytes(quint32(frames.size())));
        payload.append(frames);
        out.append(makeAtom(fourcc("ID32"), payload));
    }
    return out;
}

QByteArray keysAndItemList(const QList<MetadataItem>& items) {
    QList<std::pair<QByteArray, QByteArray>> keys;  // namespace, key
    QList<QList<MetadataItem>> byKey;
    for (const MetadataItem& item : items) {
        const std::pair<QByteArray, QByteArray> k{item.keyNamespace.left(4).leftJustified(4, ' '), item.key};
        qsizetype index = keys.indexOf(k);
        if (index < 0) {
            keys.append(k);
            byKey.append(QList<MetadataItem>());
            index = keys.size() - 1;
        }
        byKey[index].append(item);
    }
    QByteArray keysPayload;
    appendBe32(keysPayload, 0);
    appendBe32(keysPayload, quint32(keys.size()));
    for (const auto& [ns, key] : keys) {
        appendBe32(keysPayload, quint32(key.size() + 8));
        keysPayload.append(ns);
        keysPayload.append(key);
    }
    QByteArray ilst;
    for (qsizetype i = 0; i < byKey.size(); ++i) {
        QByteArray entry;
        for (const MetadataItem& item : byKey[i]) entry.append(dataAtom(item));
        ilst.append(makeAtom(FourCC(i + 1), entry));
    }
    return makeAtom(fourcc("keys"), keysPayload) + makeAtom(fourcc("ilst"), ilst);
}

QByteArray iTunesItemList(const QList<MetadataItem>& items) {
    QByteArray ilst;
    const auto groups = runs(items, [](const MetadataItem& a, const MetadataItem& b) {
        return a.key == b.key && a.keyNamespace == b.keyNamespace;
    });
    for (const auto& group : groups) {
        const QByteArray& key = group.first().key;
        QByteArray entry;
        std::optional<FourCC> type = keyCode(key);
        if (group.first().keyNamespace == "----") {
            // Free form: "mean:name".
            const qsizetype colon = key.indexOf(':');
            if (colon < 0) continue;
            QByteArray mean(4, '\0'), name(4, '\0');
            mean.append(key.left(colon));
            name.append(key.mid(colon + 1));
            entry.append(makeAtom(fourcc("mean"), mean));
            entry.append(makeAtom(fourcc("name"), name));
            type = fourcc("----");
        }
        if (!type) continue;
        for (const MetadataItem& item : group) entry.append(dataAtom(item));
        ilst.append(makeAtom(*type, entry));
    }
    return makeAtom(fourcc("ilst"), ilst);
}

}  // namespace media::detail
