// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The edit screen: what the user wants changed in one or many photos, or one video, and the save.
// It holds the sections and rows the table shows, the switches, the selected items (loaded one at
// a time), the save-mode question and the save itself, which runs off the GUI thread. The wishes
// live in one UserSettings for the visit; the sub-screens (date, place, orientation, IPTC) write
// into it.
#include "BatchEdit.h"
#include "DateModifierViewModel.h"
#include "IptcViewModel.h"
#include "RotationModifierViewModel.h"
#include "UserSettings.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <memory>
#include <optional>

class TSAsset;
class LocationModifierViewModel;

class EditViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool active READ active NOTIFY activeChanged)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    // [{section, title, rows: [{kind, title, detail, value, placeholder, dimmed, checked, key}]}]; kind
    // is "images", "switch", "disclosure" or "editor".
    Q_PROPERTY(QVariantList sections READ sections NOTIFY changed)
    Q_PROPERTY(QStringList thumbnails READ thumbnails NOTIFY changed)
    Q_PROPERTY(QString maxImagesText READ maxImagesText NOTIFY changed)
    Q_PROPERTY(bool addVisible READ addVisible NOTIFY changed)
    Q_PROPERTY(bool addEnabled READ addEnabled NOTIFY changed)
    // "Loading Photo...", "Saving Photo...", "Saving Video..." while that runs; empty otherwise.
    Q_PROPERTY(QString activity READ activity NOTIFY activityChanged)
    // Items done of the save running, and their count.
    Q_PROPERTY(int progressDone READ progressDone NOTIFY activityChanged)
    Q_PROPERTY(int progressTotal READ progressTotal NOTIFY activityChanged)
    // The first item's dates before and after the shift typed in "Shift by...".
    Q_PROPERTY(QString shiftPreview READ shiftPreview NOTIFY changed)
    // Which photos the track log places where: [{name, place}].
    Q_PROPERTY(QVariantList trackMatches READ trackMatches NOTIFY changed)
    Q_PROPERTY(DateModifierViewModel* dateScreen READ dateScreen CONSTANT)
    Q_PROPERTY(RotationModifierViewModel* rotationScreen READ rotationScreen CONSTANT)
    Q_PROPERTY(IptcViewModel* iptcScreen READ iptcScreen CONSTANT)
public:
    explicit EditViewModel(QObject* parent = nullptr);
    ~EditViewModel() override;

    // The location screen the location row opens (the app's one).
    void setLocationScreen(LocationModifierViewModel* screen) { locationScreen_ = screen; }

    // A visit on the current album's current item; false when there is none.
    Q_INVOKABLE bool openCurrent();
    // A visit on an item that is already read.
    bool open(std::shared_ptr<TSAsset> first);
    // A visit on a file, read at once.
    Q_INVOKABLE bool openFile(const QString& path);
    // The screen is gone: the visit and its wishes end.
    Q_INVOKABLE void close();

    bool active() const { return settings_ != nullptr; }
    QString title() const;
    QVariantList sections() const;
    QStringList thumbnails() const;
    QString maxImagesText() const;
    bool addVisible() const;
    bool addEnabled() const;
    // Room left under the cap of selected items.
    Q_INVOKABLE int room() const;
    QString activity() const { return activity_; }
    int progressDone() const { return progressDone_; }
    int progressTotal() const { return progressTotal_; }
    QString shiftPreview() const { return shiftPreview_; }
    QVariantList trackMatches() const { return trackMatches_; }

    // The add button's picks: files already chosen raise the duplicate alert, the others are read
    // one at a time ("Loading Photo...").
    Q_INVOKABLE void addFiles(const QStringList& paths);
    // The add button's picker over the current album: its photos as {path, image, chosen}, chosen
    // being already among the selected items.
    Q_INVOKABLE QVariantList albumChoices() const;
    // The duplicate alert was dismissed: the loading goes on.
    Q_INVOKABLE void alertDismissed();
    Q_INVOKABLE void setSwitch(int section, bool on);
    // A line editor's text as the user left it.
    Q_INVOKABLE void setText(const QString& key, const QString& text);
    // A disclosure row: prepares its sub-screen and asks for it ("date", "location", "rotation",
    // "iptc", "shift", "track").
    Q_INVOKABLE void select(int section, int row);
    // A sub-screen was left: the rows show what it delivered.
    Q_INVOKABLE void reappear();

    // "Shift by...": "+0:52", "-1 2:00:00"; empty clears it. False for a text that is no offset.
    Q_INVOKABLE bool setShift(const QString& text);
    // "From a track log...": the log and the camera's offset to it ("+0:52") and the longest gap
    // bridged ("5m"); an empty path clears it. False, with an alert, when something can't be read.
    Q_INVOKABLE bool setTrackLog(const QString& path, const QString& offset = {}, const QString& maxGap = {});

    // The save button: {message, actions: [{title, mode}]}; mode -1 is "Cancel".
    Q_INVOKABLE QVariantMap saveAlert() const;
    // Runs the save in that mode (0 new item, 1 in place, 2 to files).
    Q_INVOKABLE void save(int mode);
    // After "Save to Files": the chosen file or folder (empty when cancelled). The written files
    // are copied there when chosen, and deleted in either case.
    Q_INVOKABLE void finishExport(const QUrl& target);
    QStringList exportingUrls() const { return exportingUrls_; }
    // Where the save dialog starts: the Pictures folder (home where there is none), and in it the
    // file under its own name, or that folder for many files.
    Q_INVOKABLE QUrl exportFolder() const;
    Q_INVOKABLE QUrl exportSuggestion() const;

    const QList<std::shared_ptr<TSAsset>>& selectedAssets() const { return assets_; }
    UserSettings* settings() { return settings_.get(); }
    bool isVideo() const { return isVideo_; }
    bool loading() const { return !pending_.isEmpty() || loadingNow_; }
    DateModifierViewModel* dateScreen() const { return date_; }
    RotationModifierViewModel* rotationScreen() const { return rotation_; }
    IptcViewModel* iptcScreen() const { return iptc_; }

signals:
    void changed();
    void activeChanged();
    void activityChanged();
    void alert(const QString& title, const QString& message);
    void pushRequested(const QString& screen);
    // A save in modes 0 or 1 ended well: the screen closes. `identifiers` are the library items.
    void saved(int mode, const QStringList& identifiers);
    // Mode 2: the files to offer through a save dialog (a folder for many).
    void exportRequested(const QStringList& urls);
    // The edit of this visit saved a new item: the album shows it next.
    void newItemSaved(const QString& localIdentifier);

private:
    struct Result {
        QStringList urls;
        std::optional<QString> message;
        bool nothingChanged = false;
        QString notice;  // told after a save that went well: changes kept in sidecars by default
    };
    void requestAsset();
    void setActivity(const QString& text, int total = 0);
    void savePhotos(int mode);
    void saveVideo(int mode);
    void ended(int mode, const Result& result);
    bool uneditable() const;
    void refreshPreviews();

    std::unique_ptr<UserSettings> settings_;
    QList<std::shared_ptr<TSAsset>> assets_;
    QStringList pending_;
    bool loadingNow_ = false;
    bool isVideo_ = false;
    QString activity_;
    int progressDone_ = 0, progressTotal_ = 0;
    QStringList exportingUrls_;
    BatchWishes batch_;
    QString trackPath_;
    QString shiftPreview_;
    QVariantList trackMatches_;
    quint64 visit_ = 0;  // a load answering an earlier visit is dropped
    DateModifierViewModel* date_;
    RotationModifierViewModel* rotation_;
    IptcViewModel* iptc_;
    LocationModifierViewModel* locationScreen_ = nullptr;
};
