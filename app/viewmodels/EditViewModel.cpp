// SPDX-License-Identifier: GPL-3.0-or-later
// The visit: opening and closing it, the switches, the line editors and the sub-screens.
#include "EditViewModel.h"

#include "EditViewModelParts.h"
#include "IptcEditorModel.h"
#include "LocationModifierViewModel.h"
#include "Log.h"
#include "TSAlbum.h"
#include "TSAsset.h"
#include "TSEnvironment.h"

#include <QCoreApplication>

using editparts::bare;

EditViewModel::EditViewModel(QObject* parent)
    : QObject(parent),
      date_(new DateModifierViewModel(this)),
      rotation_(new RotationModifierViewModel(this)),
      iptc_(new IptcViewModel(this)) {}

EditViewModel::~EditViewModel() = default;

bool EditViewModel::openCurrent() {
    auto current = TSEnvironment::currentAlbum()->currentAsset;
    return current && open(current);
}

bool EditViewModel::openFile(const QString& path) {
    auto asset = std::make_shared<TSAsset>(path);
    return !asset->readError() && open(asset);
}

bool EditViewModel::open(std::shared_ptr<TSAsset> first) {
    if (!first) return false;
    ++visit_;
    settings_ = std::make_unique<UserSettings>(first->metaData(), first->ddStore());
    assets_ = {first};
    pending_.clear();
    loadingNow_ = false;
    isVideo_ = first->isVideo();
    batch_ = {};
    trackPath_.clear();
    shiftPreview_.clear();
    trackMatches_.clear();
    exportingUrls_.clear();
    setActivity({});
    emit activeChanged();
    emit changed();
    return true;
}

void EditViewModel::close() {
    if (!settings_) return;
    ++visit_;
    settings_.reset();
    assets_.clear();
    pending_.clear();
    loadingNow_ = false;
    emit activeChanged();
    emit changed();
}

QString EditViewModel::title() const { return isVideo_ ? QCoreApplication::translate("EditViewModel", "Change Video Tags") : QString(); }

void EditViewModel::setActivity(const QString& text, int total) {
    activity_ = text;
    progressDone_ = 0;
    progressTotal_ = total;
    emit activityChanged();
}

void EditViewModel::setSwitch(int section, bool on) {
    if (!settings_) return;
    const auto key = Sections(section);
    settings_->switchers.set(key, on);
    Log::info(QStringLiteral("Switch #%1: %2 [%3]").arg(section).arg(on).arg(settings_->switchers[key]));
    emit changed();
}

void EditViewModel::setText(const QString& key, const QString& text) {
    if (!settings_) return;
    const auto k = EditKeys::editableKey(key);
    if (!k) return;
    IptcEditorModel(*settings_, int(assets_.size())).setText(*k, text);
    emit changed();
}

void EditViewModel::select(int section, int row) {
    if (!settings_) return;
    const quint64 visit = visit_;
    // The sub-screens deliver into this visit's settings only.
    auto live = [this, visit]() -> UserSettings* { return visit == visit_ ? settings_.get() : nullptr; };
    const auto s = Sections(section);
    if (s == Sections::dateTime && row >= 1) {
        const QList<EMRowData> dates = EMSections::rows(s);
        const int dateRows = isVideo_ ? 1 : int(dates.size());
        if (row > dateRows) {
            emit pushRequested(QStringLiteral("shift"));
            return;
        }
        const EMRowData& data = dates[row - 1];
        date_->start(bare(data.header), *data.key, settings_->date(data.key), assets_.first(),
                     [live](const QDateTime& d, TSKey k) {
                         if (auto* st = live()) st->setDate(d, k);
                     });
        emit pushRequested(QStringLiteral("date"));
    } else if (s == Sections::location && row == 1) {
        if (locationScreen_) {
            locationScreen_->setPhotoLocation(settings_->initialLoc && settings_->initialLoc->location ? settings_->initialLoc
                                                                                                      : std::nullopt);
            locationScreen_->locationDelegate = [live](const HRLocation& l) {
                if (auto* st = live()) st->setLocation(l);
            };
        }
        emit pushRequested(QStringLiteral("location"));
    } else if (s == Sections::location && row == 2) {
        emit pushRequested(QStringLiteral("track"));
    } else if (s == Sections::rotation) {
        rotation_->start(settings_->initialOrientation, [live](int o) {
            if (auto* st = live()) st->setOrientation(o);
        });
        emit pushRequested(QStringLiteral("rotation"));
    } else if (s == Sections::iptc) {
        iptc_->attach(settings_.get(), int(assets_.size()));
        emit pushRequested(QStringLiteral("iptc"));
    }
}

void EditViewModel::reappear() {
    if (!settings_ || !settings_->disclosureChanged) return;
    refreshPreviews();
    emit changed();
}

