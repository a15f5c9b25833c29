// SPDX-License-Identifier: GPL-3.0-or-later
#include "IptcViewModel.h"
#include "ModuleTexts.h"
#include <QCoreApplication>

#include "IptcKeys.h"
#include "Choosers.h"
#include "TSAsset.h"

namespace {

QString kindName(IptcCellKind kind) {
    switch (kind) {
    case IptcCellKind::text: return QStringLiteral("text");
    case IptcCellKind::list: return QStringLiteral("list");
    case IptcCellKind::options: return QStringLiteral("options");
    case IptcCellKind::group: return QStringLiteral("group");
    }
    return {};
}

}  // namespace

IptcViewModel::IptcViewModel(QObject* parent) : QAbstractListModel(parent) {
    for (IptcSections s : IptcEditorModel::sections())
        for (TSKey k : IptcEditorModel::rows(s)) rows_ << std::pair{s, k};
}

void IptcViewModel::attach(UserSettings* settings, int count) {
    beginResetModel();
    editor_ = settings ? std::make_unique<IptcEditorModel>(*settings, count) : nullptr;
    endResetModel();
    emit changed();
}

bool IptcViewModel::openPhotos(const QStringList& paths) {
    if (paths.isEmpty()) return false;
    const TSAsset first(paths.first());
    if (first.readError()) return false;
    ownSettings_ = std::make_unique<UserSettings>(first.metaData(), first.ddStore());
    attach(ownSettings_.get(), int(paths.size()));
    return true;
}

std::optional<TSKey> IptcViewModel::keyAt(int row) const {
    if (!editor_ || row < 0 || row >= rows_.size()) return std::nullopt;
    return rows_[row].second;
}

int IptcViewModel::rowCount(const QModelIndex& parent) const { return parent.isValid() || !editor_ ? 0 : int(rows_.size()); }

QVariant IptcViewModel::data(const QModelIndex& index, int role) const {
    const auto key = keyAt(index.row());
    if (!key) return {};
    const IptcRowText t = editor_->row(*key);
    switch (role) {
    case SectionRole: return moduletexts::tagLabel(iptc::sectionTitle(rows_[index.row()].first));
    case KeyRole: return EditKeys::caseName(*key);
    case TitleRole: return t.title;
    case ValueRole: return t.value;
    case PlaceholderRole: return t.placeholder;
    case KindRole: return kindName(IptcEditorModel::cellKind(*key));
    case DimmedRole: return t.dimmed;
    }
    return {};
}

QHash<int, QByteArray> IptcViewModel::roleNames() const {
    return {{SectionRole, "section"}, {KeyRole, "key"}, {TitleRole, "title"}, {ValueRole, "value"},
            {PlaceholderRole, "placeholder"}, {KindRole, "kind"}, {DimmedRole, "dimmed"}};
}

void IptcViewModel::setText(int row, const QString& text) {
    const auto key = keyAt(row);
    if (!key) return;
    editor_->setText(*key, text);
    emit dataChanged(index(row), index(row));
}

void IptcViewModel::choose(int row, const QString& id) {
    const auto key = keyAt(row);
    if (!key) return;
    editor_->choose(*key, id);
    emit dataChanged(index(row), index(row));
}

QVariantList IptcViewModel::options(int row) const {
    QVariantList out;
    if (const auto key = keyAt(row))
        for (const IptcMultipleOption& o : IptcEditorModel::options(*key))
            out << QVariantMap{{"id", o.id()}, {"title", o.title()}, {"details", o.details()}, {"note", o.noteText()}};
    return out;
}

QString IptcViewModel::currentId(int row) const {
    const auto key = keyAt(row);
    const auto v = key ? editor_->value(*key) : std::nullopt;
    return v && *v != kRemovalMark ? *v : QString();
}

QVariantList IptcViewModel::countries(const QString& search) const {
    ChooserInputModel chooser;
    chooser.list = IsoCountryCodes::countryElements();
    QVariantList out;
    for (const ChoosingElement& e : chooser.results(search)) out << QVariantMap{{"label", e.label}, {"id", e.id}};
    return out;
}

bool IptcViewModel::isCountryCode(int row) const { return keyAt(row) == TSKey::IPTC_COUNTRYCODE; }

void IptcViewModel::applyTemplate() {
    if (!editor_) return;
    editor_->applyTemplate();
    emit dataChanged(index(0), index(int(rows_.size()) - 1));
    emit changed();
}

QVariantList IptcViewModel::contactRows() const {
    QVariantList out;
    if (!editor_) return out;
    for (TSKey k : IptcEditorModel::contactKeys()) {
        const IptcRowText t = editor_->row(k);
        out << QVariantMap{{"title", t.title}, {"value", t.value}, {"placeholder", t.placeholder}};
    }
    return out;
}

void IptcViewModel::setContactText(int index, const QString& text) {
    const auto& keys = IptcEditorModel::contactKeys();
    if (!editor_ || index < 0 || index >= keys.size()) return;
    editor_->setText(keys[index], text);
    const int group = int(std::find_if(rows_.begin(), rows_.end(), [](const auto& r) {
                              return r.second == TSKey::IPTC_CREATOR_CONTACT_INFO;
                          }) - rows_.begin());
    emit dataChanged(this->index(group), this->index(group));
}

void IptcViewModel::editTemplate() { template_ = std::make_unique<TemplateModel>(0); }

QVariantList IptcViewModel::templateRows() const {
    QVariantList out;
    if (!template_) return out;
    QString lastSection;
    auto add = [&](const QString& section, TSKey k) {
        const QString name = moduletexts::tagLabel(iptc::fieldName(k));
        // The first field of a section carries the section's title as its header.
        const QString header = section != lastSection ? section : QString();
        lastSection = section;
        out << QVariantMap{{"section", section}, {"header", header}, {"key", rawValue(k)}, {"title", name},
                           {"value", template_->iptcProperties.value(k)},
                           {"placeholder", QCoreApplication::translate("IptcViewModel", "Add %1 here").arg(name)}};
    };
    for (const auto& [section, key] : rows_)
        if (key != TSKey::IPTC_CREATOR_CONTACT_INFO) add(moduletexts::tagLabel(iptc::sectionTitle(section)), key);
    for (TSKey k : IptcEditorModel::contactKeys()) add(QCoreApplication::translate("IptcViewModel", "Creator Contact Info"), k);
    return out;
}

void IptcViewModel::setTemplateValue(const QString& key, const QString& text) {
    const auto k = tsKeyFromRawValue(key);
    if (!template_ || !k) return;
    if (text.isEmpty()) template_->iptcProperties.remove(*k);
    else template_->iptcProperties.insert(*k, text);
}

bool IptcViewModel::finishTemplate(bool save) {
    const bool ok = !save || (template_ && template_->save());
    template_.reset();
    return ok;
}
