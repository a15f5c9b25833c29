// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The IPTC screen of an edit: five sections of IPTC fields over the edit's wishes, the creator
// contact form, the template form and the pick lists. The rules live in IptcEditorModel; this
// hands them to QML.
#include "IptcEditorModel.h"
#include "TemplateModel.h"

#include <QAbstractListModel>
#include <QVariantList>
#include <memory>

class IptcViewModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(bool multi READ multi NOTIFY changed)
    Q_PROPERTY(QString contactTitle READ contactTitle NOTIFY changed)
    Q_PROPERTY(QString footer READ footer CONSTANT)
public:
    enum Role { SectionRole = Qt::UserRole + 1, KeyRole, TitleRole, ValueRole, PlaceholderRole, KindRole, DimmedRole };
    Q_ENUM(Role)

    explicit IptcViewModel(QObject* parent = nullptr);
    // Edits the wishes of an edit screen for `count` photos; the settings outlive the screen.
    void attach(UserSettings* settings, int count);
    // Stand-alone: an edit of these photos, seeded from the first.
    Q_INVOKABLE bool openPhotos(const QStringList& paths);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    bool multi() const { return editor_ && editor_->isMulti(); }
    QString contactTitle() const { return editor_ ? editor_->contactTitle() : QString(); }
    static QString footer() { return IptcEditorModel::footer(); }

    Q_INVOKABLE void setText(int row, const QString& text);
    Q_INVOKABLE void choose(int row, const QString& id);
    // The options chooser: {id, title, details, note} per option, led by the empty one.
    Q_INVOKABLE QVariantList options(int row) const;
    Q_INVOKABLE QString currentId(int row) const;
    // The list chooser of the country code: {label, id} per country whose label holds the text.
    Q_INVOKABLE QVariantList countries(const QString& search = {}) const;
    Q_INVOKABLE bool isCountryCode(int row) const;
    // "IPTC Template" → "Apply".
    Q_INVOKABLE void applyTemplate();

    // The creator contact form: {title, value, placeholder} per field.
    Q_INVOKABLE QVariantList contactRows() const;
    Q_INVOKABLE void setContactText(int index, const QString& text);

    // The template form ("Template"): {section, header, key, title, value, placeholder} per field, the
    // contact group's fields after the five sections; "Cancel" drops, "Done" saves.
    Q_INVOKABLE void editTemplate();
    Q_INVOKABLE QVariantList templateRows() const;
    Q_INVOKABLE void setTemplateValue(const QString& key, const QString& text);
    Q_INVOKABLE bool finishTemplate(bool save);

signals:
    void changed();

private:
    QList<std::pair<IptcSections, TSKey>> rows_;
    std::unique_ptr<UserSettings> ownSettings_;
    std::unique_ptr<IptcEditorModel> editor_;
    std::unique_ptr<TemplateModel> template_;
    std::optional<TSKey> keyAt(int row) const;
};
