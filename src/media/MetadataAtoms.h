// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Inside the media module: which atoms hold metadata items and how items go back into atoms.
// The reader and the writer use the same decisions, so an atom that the reader can't turn into
// items completely is one that the writer keeps as it stands.
#include "Atoms.h"
#include "MetadataItem.h"

namespace media::detail {

// The items of a 'meta' atom with handler mdta or mdir; nothing for other handlers.
QList<MetadataItem> metaItems(ByteView bytes, const Atom& meta);
// True when `meta` holds QuickTime metadata or iTunes items, which the writer rebuilds.
bool isItemMeta(ByteView bytes, const Atom& meta);

// The items of one child of moov/udta other than 'meta'. True when they stand for the whole
// atom, so that the writer may drop the atom and write the items instead.
bool udtaChildItems(ByteView bytes, const Atom& child, QList<MetadataItem>* out);

// Atoms of the items of one key space, in the order of the list (items of one key share an atom).
QByteArray userDataAtoms(const QList<MetadataItem>& udtaItems);
QByteArray isoUserDataAtoms(const QList<MetadataItem>& uisoItems);
QByteArray id3Atoms(const QList<MetadataItem>& id3Items);
// The 'keys' and 'ilst' atoms of QuickTime metadata items.
QByteArray keysAndItemList(const QList<MetadataItem>& mdtaItems);
// The 'ilst' atom of iTunes items.
QByteArray iTunesItemList(const QList<MetadataItem>& itskItems);
// A handler atom as QuickTime metadata and iTunes metadata write it.
QByteArray handlerAtom(FourCC handler);

}  // namespace media::detail
