// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The logic of the IPTC screen of an edit: five sections of fields over the edit's wishes, for
// one photo or many. It writes nothing to photos; every change lands in the UserSettings that
// the save reads later.
#include "IptcVocabulary.h"
#include "UserSettings.h"

#include <optional>

// How a row is edited.
enum class IptcCellKind { text, list, options, group };

// What a row shows: its title, its value (empty for none), the placeholder of an empty text,
// and whether the value is dimmed (a group with nothing to show).
struct IptcRowText {
    QString title;
    QString value;
    QString placeholder;
    bool dimmed = false;
};

class IptcEditorModel {
public:
    // `selectedCount` photos are edited; the first one seeded `settings`.
    IptcEditorModel(UserSettings& settings, int selectedCount);

    bool isMulti() const { return selectedCount_ > 1; }
    static QList<IptcSections> sections();
    static QList<TSKey> rows(IptcSections section);

    static IptcCellKind cellKind(TSKey key);
    IptcRowText row(TSKey key) const;
    // The options of an options row, led by the empty one; empty for other rows.
    static QList<IptcMultipleOption> options(TSKey key);

    // The text of a row as the user left it: with many photos an empty text leaves the field
    // alone, with one it removes the field.
    void setText(TSKey key, const QString& text);
    // An option chosen by its id; the empty id clears the field.
    void choose(TSKey key, const QString& id);
    // The wished or own value of a field; the removal mark for a field to be removed.
    std::optional<QString> value(TSKey key) const;

    // The creator contact group as its own form.
    static QList<TSKey> contactKeys() { return TSKeys::iptcContactKeys(); }
    QString contactTitle() const;

    // The "IPTC Template" menu's "Apply": the stored template over the wishes.
    void applyTemplate();

    static QString footer();

private:
    UserSettings& settings_;
    int selectedCount_;
    UserProperties& wishesFor(TSKey key) const;
};
