// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The options of `tessorin-cli edit`: what they wish of the photos, and where the results go.
#include "Arguments.h"
#include "BatchEdit.h"
#include "MovieEdit.h"
#include "TemplateModel.h"
#include "UserSettings.h"

#include <QDateTime>
#include <optional>

struct EditTarget {
    QString outputDir;
    bool inPlace = false;
    bool keepOriginal = false;
    bool render = false;
    bool sidecar = false;  // the changes go to each photo's XMP sidecar
    QString libraryMode;  // "new" or "modify": saved into the photo library
};

// The wishes that set one value on every photo, as the edit screen's table does.
struct EditWishes {
    std::optional<QDateTime> date, digitizedDate;
    std::optional<GeoLocation> location;
    bool noLocation = false, noDate = false, noTags = false;
    std::optional<int> orientation;
    QList<std::pair<TSKey, QString>> tags;  // the removal mark deletes
    std::optional<TemplateModel> iptcTemplate;

    bool any() const {
        return date || digitizedDate || location || noLocation || noDate || noTags || orientation || !tags.isEmpty() ||
               iptcTemplate;
    }
};

struct EditRequest {
    EditWishes wishes;
    BatchWishes batch;  // the track log itself is read later, from `trackPath`
    QString trackPath;
    EditTarget target;
    MovieEdit movieEdit;  // its wishes are filled in once the movies are known
};

// Every option of `edit`, for photos and movies alike.
extern const QList<cli::Option> editOptions;

// Reads the options `parsed` holds; the exit status of a usage error, or nothing.
std::optional<int> readEditOptions(const cli::Arguments& parsed, EditRequest& request);

// Writes the wishes into an edit model seeded from a photo.
void applyWishes(const EditWishes& wishes, UserSettings& settings);
