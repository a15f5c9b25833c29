// SPDX-License-Identifier: GPL-3.0-or-later
// The edit screen driven like a user over a real library in the test's folder: its sections and
// switches, the selected items, the date and orientation screens, the save question, and saves
// in every mode read back by exiftool, exiv2 and ffprobe.
#include "Albums.h"
#include "CameraFiles.h"
#include "AppModels.h"
#include "DateModifierViewModel.h"
#include "DetailViewModel.h"
#include "TSPhotoAlbum.h"
#include "ToolBarModel.h"
#include "EditViewModel.h"
#include "Isolation.h"
#include "Library.h"
#include "LocationModifierViewModel.h"
#include "Recent.h"
#include "RotationModifierViewModel.h"
#include "Settings.h"
#include "TSAsset.h"
#include "TSFilesAlbum.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QStandardPaths>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGeoPositionInfoSource>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

using namespace testsupport;

namespace {

struct Alert {
    QString title, message;
};

class EditScreen : public IsolatedTest {
protected:
    void SetUp() override {
        recents::dates().arrayList.clear();
        recents::locations().arrayList.clear();
        QObject::connect(&screen, &EditViewModel::alert, [this](const QString& t, const QString& m) { alerts.push_back({t, m}); });
        QObject::connect(&screen, &EditViewModel::pushRequested, [this](const QString& s) { pushed << s; });
        QObject::connect(&screen, &EditViewModel::saved, [this](int, const QStringList& ids) { savedIds = ids; });
        libraryFolder = library::Library::defaultFolders().first();
        QDir().mkpath(libraryFolder);
    }
    void TearDown() override {
        recents::dates().arrayList.clear();
        recents::locations().arrayList.clear();
    }

    // A corpus file copied into the test's folder (`inLibrary`: into the library, then scanned).
    QString copy(const QString& corpusRelative, bool inLibrary = false) {
        const QString source = corpusDir() + '/' + corpusRelative;
        const QString target = (inLibrary ? libraryFolder : isolation().root()) + '/' + QFileInfo(source).fileName();
        EXPECT_TRUE(QFile::copy(source, target)) << source.toStdString();
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        if (inLibrary) library::Library().scan();
        return target;
    }
    bool idle() { return QTest::qWaitFor([this] { return screen.activity().isEmpty() && !screen.loading(); }, 60000); }
    // The screen on these files, the first opened, the rest picked with the add button.
    void openOn(const QStringList& paths) {
        ASSERT_TRUE(screen.openFile(paths.first()));
        if (paths.size() > 1) screen.addFiles(paths.mid(1));
        ASSERT_TRUE(idle());
        ASSERT_EQ(screen.selectedAssets().size(), paths.size());
    }
    QVariantMap section(int n) {
        for (const QVariant& s : screen.sections())
            if (s.toMap()["section"].toInt() == n) return s.toMap();
        return {};
    }
    QVariantList rows(int n) { return section(n)["rows"].toList(); }
    QString rowTitle(int s, int r) { return rows(s).value(r).toMap()["title"].toString(); }
    QStringList sectionTitles() {
        QStringList out;
        for (const QVariant& s : screen.sections()) out << s.toMap()["title"].toString();
        return out;
    }
    // The date screen of a date row, the picker moved to `date`, then left.
    void pickDate(int row, const QDateTime& date) {
        screen.select(2, row);
        ASSERT_EQ(pushed.last(), "date");
        screen.dateScreen()->tap(0, 0);
        screen.dateScreen()->setPickerDate(date);
        screen.dateScreen()->leave();
        screen.reappear();
    }
    // The location screen: a place from the map picker, then left.
    void pickPlace(double latitude, double longitude) {
        LocationModifierViewModel places([](QObject* parent) { return QGeoPositionInfoSource::createSource("none", parent); });
        screen.setLocationScreen(&places);
        screen.select(3, 1);
        ASSERT_EQ(pushed.last(), "location");
        HRLocation chosen;
        chosen.title = QStringLiteral("Chosen on the map");
        chosen.location = GeoLocation(latitude, longitude);
        places.didChooseMapLocation(chosen);
        places.leave();
        screen.reappear();
        screen.setLocationScreen(nullptr);
    }
    void save(int mode) {
        alerts.clear();
        screen.save(mode);
        ASSERT_EQ(screen.activity(), screen.selectedAssets().first()->isVideo() ? "Saving Video..." : "Saving Photo...");
        ASSERT_TRUE(idle());
        for (const Alert& a : alerts) ADD_FAILURE() << a.title.toStdString() << ": " << a.message.toStdString();
    }

    EditViewModel screen;
    std::vector<Alert> alerts;
    QStringList pushed;
    QStringList savedIds;
    QString libraryFolder;
};

const QDateTime kWished(QDate(2021, 6, 1), QTime(12, 34, 56));

}  // namespace

TEST_F(EditScreen, SectionsOfAPhotoAndOfAVideoAndTheNoTagsSwitchKeepsTheWishes) {
    openOn({copy("jpeg/Canon_40D.jpg")});
    EXPECT_EQ(screen.title(), "");
    EXPECT_EQ(sectionTitles(), QStringList({"", "No Tags", "Date and time", "Location", "Orientation", "User Comment",
                                            "IPTC tags", "Camera"}));
    EXPECT_EQ(rowTitle(1, 0), "Image structure tags only");
    EXPECT_EQ(rowTitle(2, 0), "No Date and Time tags");
    // The item's own dates, as the details write them.
    EXPECT_EQ(rowTitle(2, 1), fullDateText(QDateTime(QDate(2008, 5, 30), QTime(15, 56, 1))));
    EXPECT_EQ(rowTitle(3, 0), "No location tag");
    EXPECT_EQ(rowTitle(3, 1), "No location data in image");
    EXPECT_EQ(rowTitle(4, 0), "Unchanged");
    EXPECT_EQ(rowTitle(6, 0), "Edit IPTC tags");
    EXPECT_EQ(rows(7).size(), 6);
    EXPECT_EQ(rows(7)[0].toMap()["title"].toString(), "Camera Model");
    EXPECT_EQ(rows(7)[0].toMap()["value"].toString(), "Canon EOS 40D");
    EXPECT_EQ(rows(5)[0].toMap()["placeholder"].toString(), "Add a comment here");
    EXPECT_EQ(screen.maxImagesText(), "max 24");
    EXPECT_TRUE(screen.addVisible());

    // The IPTC row opens the IPTC screen on this edit's wishes.
    screen.select(6, 0);
    EXPECT_EQ(pushed.last(), "iptc");
    EXPECT_GT(screen.iptcScreen()->rowCount(), 0);
    EXPECT_FALSE(screen.iptcScreen()->multi());

    // Wishes, then the switches: all rows but the switch go and come back with the wishes.
    pickDate(1, kWished);
    screen.setText("USER_COMMENT", "kept");
    screen.setSwitch(1, true);
    EXPECT_EQ(screen.sections().size(), 2);
    screen.setSwitch(1, false);
    EXPECT_EQ(screen.sections().size(), 8);
    EXPECT_EQ(rowTitle(2, 1), fullDateText(kWished));
    EXPECT_EQ(rows(5)[0].toMap()["value"].toString(), "kept");
    screen.setSwitch(2, true);
    EXPECT_EQ(rows(2).size(), 1);
    screen.setSwitch(3, true);
    EXPECT_EQ(rows(3).size(), 1);
    screen.setSwitch(2, false);
    EXPECT_EQ(rowTitle(2, 1), fullDateText(kWished));

    // A video: four sections, its own texts, no adding.
    openOn({copy("video/apple_meta.mov")});
    EXPECT_EQ(screen.title(), "Change Video Tags");
    EXPECT_EQ(sectionTitles(), QStringList({"", "No Tags", "Date and time", "Location"}));
    EXPECT_EQ(rowTitle(1, 0), "No extra data");
    EXPECT_EQ(rows(1)[0].toMap()["detail"].toString(), "May result in a different rotation");
    EXPECT_EQ(rows(2).size(), 2);
    EXPECT_FALSE(screen.addVisible());
    screen.setSwitch(1, true);
    EXPECT_EQ(screen.sections().size(), 2);
}

TEST_F(EditScreen, PickingAddsOneAtATimeAndADuplicateIsToldWhileTheOthersAreAdded) {
    const QString a = copy("jpeg/Canon_40D.jpg"), b = copy("jpeg/Nikon_D70.jpg"), c = copy("heif/Stonehenge.heic");
    ASSERT_TRUE(screen.openFile(a));
    screen.addFiles({b});
    EXPECT_EQ(screen.activity(), "Loading Photo...");
    ASSERT_TRUE(idle());
    EXPECT_EQ(screen.thumbnails().size(), 2);

    // The picker over the current album offers its photos, the chosen ones marked.
    auto album = std::make_shared<TSFilesAlbum>();
    album->loadBookmarks({a, b, c, copy("video/small_video.mp4")});
    TSEnvironment::setCurrentAlbum(album);
    const QVariantList offered = screen.albumChoices();
    TSEnvironment::setCurrentAlbum(nullptr);
    ASSERT_EQ(offered.size(), 3);
    EXPECT_TRUE(offered[1].toMap()["chosen"].toBool());
    EXPECT_FALSE(offered[2].toMap()["chosen"].toBool());

    screen.addFiles({a, c});
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Alert");
    EXPECT_EQ(alerts[0].message, "One or more selected photos are already among the chosen set");
    screen.alertDismissed();
    ASSERT_TRUE(idle());
    ASSERT_EQ(screen.selectedAssets().size(), 3);
    EXPECT_EQ(screen.selectedAssets()[2]->path(), c);
    // The first item still seeds the wishes, and rows of many items say so.
    EXPECT_EQ(screen.room(), 21);
    EXPECT_EQ(rowTitle(3, 1), "Unchanged");
    EXPECT_EQ(rows(5)[0].toMap()["placeholder"].toString(), "Unchanged");
}

TEST_F(EditScreen, NothingChangedAndAnUnreadableItemStopTheSave) {
    const QString a = copy("jpeg/Canon_40D.jpg");
    openOn({a});
    screen.save(0);
    ASSERT_TRUE(idle());
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Nothing changed");
    EXPECT_EQ(alerts[0].message, "No changes to save.");
    EXPECT_TRUE(screen.activity().isEmpty());

    // An empty file among the picks: nothing is saved.
    const QString empty = isolation().root() + "/empty.jpg";
    QFile(empty).open(QIODevice::WriteOnly);
    screen.addFiles({empty});
    ASSERT_TRUE(idle());
    pickDate(1, kWished);
    alerts.clear();
    screen.save(2);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].message, "Error getting image data");
    EXPECT_TRUE(screen.exportingUrls().isEmpty());
}

TEST_F(EditScreen, TheSaveQuestionFollowsWhatIsSelected) {
    const QString own = copy("jpeg/Canon_40D.jpg", true), own2 = copy("jpeg/Nikon_D70.jpg", true);
    const QString outside = copy("heif/Stonehenge.heic");
    auto ask = [&](const QStringList& paths) {
        openOn(paths);
        const QVariantMap alert = screen.saveAlert();
        QStringList actions;
        for (const QVariant& a : alert["actions"].toList()) actions << a.toMap()["title"].toString();
        return std::make_pair(alert["message"].toString(), actions);
    };
    const QStringList all{"New Picture", "Modify", "Save to Files", "Cancel"};
    const QStringList noModify{"New Picture", "Save to Files", "Cancel"};
    EXPECT_EQ(ask({own}), std::make_pair(QString("Save a new picture or modify the current one?"), all));
    EXPECT_EQ(ask({outside}), std::make_pair(QString("Save a new picture"), noModify));
    EXPECT_EQ(ask({own, own2}), std::make_pair(QString("Save new pictures or modify the current ones?"), all));
    EXPECT_EQ(ask({own, outside}), std::make_pair(QString("Save new pictures"), noModify));
    EXPECT_EQ(ask({copy("video/small_video.mp4", true)}),
              std::make_pair(QString("Save a new video"), QStringList({"New Video", "Save to Files", "Cancel"})));
}

TEST_F(EditScreen, DateScreenDeliversTheChosenRowAndUntouchedTheItemsOwnDate) {
    // The first item has no dates: with two items its rows read "Unchanged", with one "Add ... here".
    const QString bare = isolation().root() + "/bare.jpg";
    QImage pixels(16, 16, QImage::Format_RGB32);
    pixels.fill(Qt::red);
    ASSERT_TRUE(pixels.save(bare, "JPG"));
    openOn({bare});
    EXPECT_TRUE(rowTitle(2, 2).startsWith("Add ")) << rowTitle(2, 2).toStdString();
    EXPECT_TRUE(rowTitle(2, 2).endsWith(" here"));
    const QString canon = copy("jpeg/Canon_40D.jpg");
    openOn({bare, canon});
    EXPECT_EQ(rowTitle(2, 2), "Unchanged");
    EXPECT_TRUE(rows(2)[2].toMap()["dimmed"].toBool());
    screen.select(2, 2);
    DateModifierViewModel& dates = *screen.dateScreen();
    const QVariantList s = dates.sections();
    EXPECT_EQ(s[2].toMap()["header"].toString(), "From current photo ");
    EXPECT_EQ(s[3].toMap()["header"].toString(), "");  // no recent dates yet
    // Left untouched with no date of the item's own: the present moment.
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    dates.leave();
    screen.reappear();
    const auto delivered = screen.settings()->date(TSKey::EXIF_DIGITIZED_DATE);
    ASSERT_TRUE(delivered);
    EXPECT_GE(*delivered, before);
    EXPECT_EQ(rowTitle(2, 2), fullDateText(*delivered));

    // Left untouched: the current item's own date.
    const QDateTime own(QDate(2008, 5, 30), QTime(15, 56, 1));
    openOn({canon, bare});
    screen.select(2, 2);
    dates.leave();
    EXPECT_EQ(screen.settings()->date(TSKey::EXIF_DIGITIZED_DATE), own);

    // The picker: the date row opens it; the date moved is the one delivered. Without the time
    // only the day changes.
    screen.select(2, 1);
    dates.tap(0, 0);
    EXPECT_EQ(dates.sections()[0].toMap()["rows"].toList().size(), 2);
    dates.setWithTime(false);
    dates.setPickerDate(QDateTime(QDate(2020, 2, 29), QTime(1, 2, 3)));
    EXPECT_EQ(dates.chosenDate(), QDateTime(QDate(2020, 2, 29), own.time()));
    // A row from another photo, then a recent date.
    dates.choosePhoto(copy("heif/Stonehenge.heic"));
    EXPECT_EQ(dates.selectedPath(), (DateModifierViewModel::IndexPath{1, 1}));
    EXPECT_EQ(dates.chosenDate(), QDateTime(QDate(2015, 7, 16), QTime(15, 38, 54)));
    dates.leave();
    screen.reappear();
    EXPECT_EQ(rowTitle(2, 1), fullDateText(QDateTime(QDate(2015, 7, 16), QTime(15, 38, 54))));

    recents::dates().add(kWished);
    screen.select(2, 1);
    EXPECT_EQ(dates.sections()[3].toMap()["header"].toString(), "Most recent");
    dates.tap(3, 0);
    dates.leave();
    EXPECT_EQ(screen.settings()->date(TSKey::EXIF_DATE), kWished);
}

TEST_F(EditScreen, OrientationScreenKeepsAnEarlierWishWhenThePresentOneIsChosen) {
    openOn({copy("jpeg/Canon_40D.jpg")});
    screen.select(4, 0);
    ASSERT_EQ(pushed.last(), "rotation");
    RotationModifierViewModel& rotation = *screen.rotationScreen();
    const QVariantList rows = rotation.rows();
    ASSERT_EQ(rows.size(), 8);
    EXPECT_EQ(rows[0].toMap()["title"].toString(), "Horizontal");
    EXPECT_EQ(rows[5].toMap()["title"].toString(), "Rotate 90° CW");
    EXPECT_EQ(rows[7].toMap()["image"].toString(), "qrc:/icons/o8.svg");
    EXPECT_TRUE(rows[0].toMap()["checked"].toBool());
    rotation.tap(5);
    rotation.leave();
    screen.reappear();
    EXPECT_EQ(rowTitle(4, 0), "Rotate 90° CW");

    screen.select(4, 0);
    rotation.tap(0);  // the photo's own orientation
    rotation.leave();
    EXPECT_EQ(screen.settings()->finalOrientation, 6);
    EXPECT_EQ(RotationModifierViewModel::meaning(9), "Unknown");
}

// Date and place of a JPEG, a HEIC and a raw photo: each mode read back by the independent readers.
class EditSaves : public EditScreen {
protected:
    QStringList photos(bool inLibrary) {
        return {copy("jpeg/Canon_40D.jpg", inLibrary), copy("heif/Stonehenge.heic", inLibrary),
                copy("tiff/BSG1.tiff", inLibrary)};
    }
    void wish() {
        pickDate(1, kWished);
        pickPlace(45.5, 9.2);
        EXPECT_EQ(rowTitle(2, 1), fullDateText(kWished));
        EXPECT_NE(rowTitle(3, 1), "Unchanged");
    }
    // The written file says what was wished, keeps the camera and its coded image.
    static void expectWishes(const QString& source, const QString& written) {
        SCOPED_TRACE(written.toStdString());
        const QJsonObject after = exiftoolJson(written, {"-n", "-G1"}).toObject();
        const QJsonObject before = exiftoolJson(source, {"-n", "-G1"}).toObject();
        EXPECT_EQ(after["ExifIFD:DateTimeOriginal"].toString(), "2021:06:01 12:34:56");
        EXPECT_NEAR(after["GPS:GPSLatitude"].toDouble(), 45.5, 1e-6);
        EXPECT_NEAR(after["GPS:GPSLongitude"].toDouble(), 9.2, 1e-6);
        // Every other tag reads as before. Exempt: the file system's and exiftool's own, the
        // place, the date and what follows it (DateTime, XMP's modify and creation dates), the
        // software and what follows it (XMP's creator tool, the XMP writer), a blank comment
        // dropped, and where the container keeps the unchanged image data (checked below).
        static const QStringList exempt{"ExifIFD:DateTimeOriginal", "IFD0:ModifyDate", "IFD0:Software",
                                        "ExifIFD:UserComment", "XMP-photoshop:DateCreated", "XMP-xmp:ModifyDate",
                                        "XMP-xmp:CreatorTool", "XMP-x:XMPToolkit", "ExifTool:Warning",
                                        "IFD1:ThumbnailOffset", "QuickTime:MediaDataOffset", "QuickTime:MediaDataSize",
                                        "IFD0:StripOffsets"};
        expectOtherTagsKept(before, after, [](const QString& k, auto&&...) {
            return k.startsWith("Composite:") || k.startsWith("GPS:") || exempt.contains(k);
        });
        const ProcessResult exiv2 = run("exiv2", {"-q", "-K", "Exif.Photo.DateTimeOriginal", "-Pv", written});
        EXPECT_EQ(exiv2.out.trimmed(), "2021:06:01 12:34:56");
    }
};

TEST_F(EditSaves, NewItemsLandInTheApplicationsAlbum) {
    const QStringList sources = photos(false);
    openOn(sources);
    wish();
    save(0);
    ASSERT_EQ(savedIds.size(), 3);
    EXPECT_FALSE(screen.active());
    library::Library lib;
    const auto album = lib.album(library::Library::applicationAlbumTitle());
    ASSERT_TRUE(album);
    EXPECT_EQ(lib.fetchAssets(album->identifier).count(), 3);
    for (int i = 0; i < 3; ++i) {
        const auto item = lib.asset(savedIds[i]);
        ASSERT_TRUE(item);
        expectWishes(sources[i], item->mainPath());
        expectSameImage(sources[i], item->mainPath());
    }
    // The wished date and place are the recent ones now.
    ASSERT_FALSE(recents::dates().arrayList.isEmpty());
    EXPECT_EQ(recents::dates().arrayList.first(), kWished);
}

TEST_F(EditSaves, ModifyEditsTheLibraryItemsInPlaceAndKeepsTheirOriginals) {
    const QStringList sources = photos(true);
    QList<QByteArray> originals;
    QList<QJsonValue> orientations;
    for (const QString& s : sources) {
        originals << readFile(s);
        orientations << exiftoolJson(s, {"-n", "-G1"})["IFD0:Orientation"];
    }
    openOn(sources);
    wish();
    save(1);
    ASSERT_EQ(savedIds.size(), 3);
    library::Library lib;
    for (int i = 0; i < 3; ++i) {
        const auto item = lib.asset(savedIds[i]);
        ASSERT_TRUE(item && item->isEdited());
        const QJsonObject after = exiftoolJson(item->mainPath(), {"-n", "-G1"}).toObject();
        EXPECT_EQ(after["ExifIFD:DateTimeOriginal"].toString(), "2021:06:01 12:34:56") << sources[i].toStdString();
        EXPECT_NEAR(after["GPS:GPSLatitude"].toDouble(), 45.5, 1e-6);
        // Edited where it is, as what it is: not drawn anew.
        EXPECT_EQ(item->mainPath(), sources[i]);
        EXPECT_EQ(after["IFD0:Orientation"], orientations[i]);
        // The original is kept for a revert, which the library's and the command's tests check.
        EXPECT_EQ(readFile(item->resources[0].path), originals[i]);
    }
}

// "Modify" keeps a raw file's changes in its sidecar and says so; with "Save changes in: an XMP
// sidecar", a JPEG's too. The photos' bytes stay as they were.
TEST_F(EditSaves, ModifyKeepsChangesInSidecarsForRawFilesAndWhenTheSettingSaysSo) {
    const QString raw = libraryFolder + "/RAW_1.CR3";
    const QByteArray rawBytes = canonCr3(readFile(corpusDir() + "/tiff/IMG_1361.dng"));
    {
        QFile f(raw);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(rawBytes);
    }
    const QString jpeg = copy("jpeg/Canon_40D.jpg", true);
    const QByteArray jpegBytes = readFile(jpeg);
    const auto expectSidecar = [](const QString& sidecar) {
        const QJsonObject tags = exiftoolJson(sidecar, {"-n", "-G1"}).toObject();
        EXPECT_EQ(tags["XMP-exif:DateTimeOriginal"].toString(), "2021:06:01 12:34:56") << sidecar.toStdString();
        EXPECT_NEAR(tags["XMP-exif:GPSLatitude"].toDouble(), 45.5, 1e-6);
        EXPECT_NEAR(tags["XMP-exif:GPSLongitude"].toDouble(), 9.2, 1e-6);
    };

    openOn({raw});
    QStringList actions;
    for (const QVariant& a : screen.saveAlert()["actions"].toList()) actions << a.toMap()["title"].toString();
    EXPECT_TRUE(actions.contains("Modify"));
    wish();
    alerts.clear();
    screen.save(1);
    ASSERT_TRUE(idle());
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Saved in XMP Sidecars");
    EXPECT_TRUE(alerts[0].message.contains("RAW_1.CR3: Tessorin can't write metadata into CR3 files")) << alerts[0].message.toStdString();
    EXPECT_EQ(readFile(raw), rawBytes);
    expectSidecar(raw + ".xmp");

    Settings::setValue(SettingsKey::saveChangesIn, "sidecar");
    openOn({jpeg});
    wish();
    save(1);
    EXPECT_EQ(readFile(jpeg), jpegBytes);
    expectSidecar(jpeg + ".xmp");
    EXPECT_FALSE(library::Library().asset(savedIds.value(0)).value_or(library::Asset{}).isEdited());
}

TEST_F(EditSaves, SaveToFilesOffersTheFilesAndDeletesThemAfterwards) {
    const QStringList sources = photos(false);
    openOn(sources);
    wish();
    save(2);
    const QStringList urls = screen.exportingUrls();
    ASSERT_EQ(urls.size(), 3);
    EXPECT_TRUE(screen.active());
    // The dialog starts in the Pictures folder, or at home while there is none (the dialog would
    // list the working folder under the missing one's name).
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    EXPECT_FALSE(QFileInfo::exists(pictures));
    EXPECT_EQ(screen.exportFolder(), QUrl::fromLocalFile(QDir::homePath()));
    EXPECT_EQ(screen.exportSuggestion(), QUrl::fromLocalFile(QDir::homePath()));
    QDir().mkpath(pictures);
    EXPECT_EQ(screen.exportFolder(), QUrl::fromLocalFile(pictures));
    const QString target = isolation().root() + "/chosen";
    QDir().mkpath(target);
    screen.finishExport(QUrl::fromLocalFile(target));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(QFileInfo::exists(QUrl(urls[i]).toLocalFile()));
        const QString written = target + '/' + QFileInfo(sources[i]).fileName();
        expectWishes(sources[i], written);
        expectSameImage(sources[i], written);
    }
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(QUrl(urls[0]).toLocalFile()).absolutePath()));

    // Cancelled: the files go all the same.
    save(2);
    const QStringList again = screen.exportingUrls();
    ASSERT_EQ(again.size(), 3);
    screen.finishExport(QUrl());
    for (const QString& u : again) EXPECT_FALSE(QFileInfo::exists(QUrl(u).toLocalFile()));
}

TEST_F(EditSaves, AVideoIsSavedAsANewItemOrToAFileWithItsStreamsKept) {
    const QString movie = copy("video/apple_meta.mov");
    for (int mode : {0, 2}) {
        SCOPED_TRACE(mode);
        openOn({movie});
        wish();
        save(mode);
        QString written;
        if (mode == 0) {
            ASSERT_EQ(savedIds.size(), 1);
            const auto item = library::Library().asset(savedIds[0]);
            ASSERT_TRUE(item);
            written = item->mainPath();
            EXPECT_EQ(item->mediaType, library::MediaType::video);
        } else {
            ASSERT_EQ(screen.exportingUrls().size(), 1);
            written = isolation().root() + "/movie.mp4";
            screen.finishExport(QUrl::fromLocalFile(written));
        }
        const QJsonObject probe = ffprobe(written);
        const QJsonObject tags = probe["format"].toObject()["tags"].toObject();
        EXPECT_EQ(QDateTime::fromString(tags["com.apple.quicktime.creationdate"].toString(), Qt::ISODate), kWished);
        EXPECT_TRUE(tags["com.apple.quicktime.location.ISO6709"].toString().startsWith("+45.5000+009.2000")) << tags["com.apple.quicktime.location.ISO6709"].toString().toStdString();
        EXPECT_EQ(probe["streams"].toArray().size(), ffprobe(movie)["streams"].toArray().size());
        const QJsonObject et = exiftoolJson(written, {"-n", "-G1", "-Keys:Model", "-Keys:Make"}).toObject();
        const QJsonObject own = exiftoolJson(movie, {"-n", "-G1", "-Keys:Model", "-Keys:Make"}).toObject();
        EXPECT_EQ(et["Keys:Model"], own["Keys:Model"]);
    }
}

TEST_F(EditSaves, ShiftAndTrackLogRowsActOnEachPhotoFromItsOwnValues) {
    const QStringList sources{copy("jpeg/Canon_40D.jpg"), copy("jpeg/Nikon_D70.jpg")};
    openOn(sources);
    EXPECT_FALSE(screen.setShift("soon"));
    ASSERT_TRUE(screen.setShift("+0:52"));
    EXPECT_EQ(screen.shiftPreview(), fullDateText(QDateTime(QDate(2008, 5, 30), QTime(15, 56, 1))) + " → " +
                                         fullDateText(QDateTime(QDate(2008, 5, 30), QTime(16, 48, 1))));
    // A log around the first photo's corrected instant (UTC here), none near the second.
    const QString gpx = isolation().root() + "/day.gpx";
    QFile f(gpx);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(R"(<?xml version="1.0"?><gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>
<trkpt lat="45.0" lon="9.0"><time>2008-05-30T16:40:00Z</time></trkpt>
<trkpt lat="46.0" lon="10.0"><time>2008-05-30T16:56:00Z</time></trkpt>
</trkseg></trk></gpx>)");
    f.close();
    ASSERT_TRUE(screen.setTrackLog(gpx, "", "30m"));
    const QVariantList matches = screen.trackMatches();
    ASSERT_EQ(matches.size(), 2);
    EXPECT_EQ(matches[0].toMap()["name"].toString(), "Canon_40D.jpg");
    EXPECT_FALSE(matches[0].toMap()["place"].toString().isEmpty());
    save(2);
    ASSERT_EQ(screen.exportingUrls().size(), 2);
    const QJsonObject first = exiftoolJson(QUrl(screen.exportingUrls()[0]).toLocalFile(), {"-n", "-G1"}).toObject();
    const QJsonObject second = exiftoolJson(QUrl(screen.exportingUrls()[1]).toLocalFile(), {"-n", "-G1"}).toObject();
    EXPECT_EQ(first["ExifIFD:DateTimeOriginal"].toString(), "2008:05:30 16:48:01");
    EXPECT_EQ(second["ExifIFD:DateTimeOriginal"].toString(), "2008:03:15 10:44:01");
    // Halfway through the minutes between the points.
    EXPECT_NEAR(first["GPS:GPSLatitude"].toDouble(), 45.5 + 1.0 / 16 / 60, 1e-4);
    EXPECT_TRUE(second["GPS:GPSLatitude"].isUndefined());
    screen.finishExport(QUrl());
}

// The edit tool of a library item in the whole app: a new picture is shown when the album on
// view holds it, otherwise the detail offers the albums where it landed.
class EditInTheApp : public IsolatedTest {
protected:
    void SetUp() override {
        root = isolation().root() + "/Pictures";
        for (const auto& [source, target] : {std::pair{"jpeg/Canon_40D.jpg", "Trip/c.jpg"}, std::pair{"jpeg/Nikon_D70.jpg", "n.jpg"}}) {
            QDir().mkpath(QFileInfo(root + '/' + target).absolutePath());
            ASSERT_TRUE(QFile::copy(corpusDir() + '/' + source, root + '/' + target));
            QFile::setPermissions(root + '/' + target, QFile::ReadOwner | QFile::WriteOwner);
        }
        TSEnvironment::setCurrentAlbum(nullptr);
        models = std::make_unique<AppModels>();
        models->openLibrary({root}, false);
        QObject::connect(models->edit, &EditViewModel::alert,
                         [](const QString& t, const QString& m) { ADD_FAILURE() << t.toStdString() << ": " << m.toStdString(); });
    }
    void TearDown() override {
        models.reset();
        TSEnvironment::setCurrentAlbum(nullptr);
    }
    // An album of the library on view at its first item, with the edit tool ready.
    std::shared_ptr<TSPhotoAlbum> show(const library::FetchResult& fetch, const QString& title) {
        auto album = std::make_shared<TSPhotoAlbum>();
        TSEnvironment::setCurrentAlbum(album);
        album->setAlbum(fetch, 0, title);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            models->toolBar->refresh();
            return album->currentAsset && models->toolBar->tools().contains("edit");
        }, 60000));
        return album;
    }
    void editAndSaveNew(const QDateTime& date) {
        models->toolBar->edit();
        EditViewModel& edit = *models->edit;
        ASSERT_TRUE(edit.active());
        edit.settings()->setDate(date, TSKey::EXIF_DATE);
        edit.save(0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return edit.activity().isEmpty(); }, 60000));
        EXPECT_FALSE(edit.active());
    }
    QString currentPath() {
        auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
        return album && album->currentAsset ? album->currentAsset->path() : QString();
    }

    QString root;
    std::unique_ptr<AppModels> models;
};

TEST_F(EditInTheApp, ANewPictureIsShownOrTheAlbumsWhereItLandedAreOffered) {
    library::Library& lib = *models->library;
    const auto trip = lib.album("Trip");
    ASSERT_TRUE(trip);
    show(lib.fetchAssets(trip->identifier, Albums::fetchOptions()), "Trip");
    editAndSaveNew(kWished);
    ASSERT_TRUE(models->detail->addedDialog());
    EXPECT_EQ(models->detail->addedDialog()->message, "The Photo was added in a different album. Go to see it?");
    EXPECT_EQ(models->detail->addedDialog()->actions.first(), "In the \u201CAll Photos\u201D Album");
    models->detail->chooseAdded(0);
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "All Photos");
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFileInfo(currentPath()).dir().dirName() == "Tessorin"; }, 60000)) << currentPath().toStdString();

    // With "All Photos" on view the new picture is simply shown.
    show(lib.fetchAssets(Albums::fetchOptions()), "All Photos");
    const QString before = currentPath();
    editAndSaveNew(kWished.addDays(1));
    EXPECT_TRUE(QTest::qWaitFor([&] { return currentPath() != before && !currentPath().isEmpty(); }, 60000));
    EXPECT_EQ(QFileInfo(currentPath()).dir().dirName(), "Tessorin");
}

// Modify edits the item in place through the save's own library; the album on view must still
// show the item as edited, not as it was, and the strip the items in their new order.
TEST_F(EditInTheApp, AModifiedPictureIsShownWithItsNewDate) {
    // Newest first: the Canon (May 2008) before the Nikon (March 2008). The Canon, on view, is
    // set back to 2001 and so moves behind the Nikon.
    Settings::setFlag(SettingsFlag::mostRecentFirst, true);
    const QDateTime wished(QDate(2001, 6, 1), QTime(12, 34, 56));
    library::Library& lib = *models->library;
    auto album = show(lib.fetchAssets(Albums::fetchOptions()), "All Photos");
    ASSERT_TRUE(album->currentAsset && album->currentAsset->libraryAsset());
    const QString id = album->currentAsset->libraryAsset()->localIdentifier;
    ASSERT_NE(album->currentAsset->libraryAsset()->creationDate.date(), wished.date());

    const ImageStripModel& strip = *models->detail->strip();
    const auto stripSource = [&](int row) { return strip.data(strip.index(row), ImageStripModel::SourceRole).toString(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.rowCount() == 2; }, 60000));
    const QString canon = stripSource(0), nikon = stripSource(1);
    ASSERT_TRUE(canon.endsWith("c.jpg")) << canon.toStdString();
    ASSERT_TRUE(nikon.endsWith("n.jpg")) << nikon.toStdString();
    QSignalSpy stripReset(&strip, &QAbstractItemModel::modelReset);

    models->toolBar->edit();
    EditViewModel& edit = *models->edit;
    ASSERT_TRUE(edit.active());
    edit.settings()->setDate(wished, TSKey::EXIF_DATE);
    edit.save(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return edit.activity().isEmpty(); }, 60000));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        auto onView = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
        if (!onView || !onView->currentAsset || !onView->currentAsset->libraryAsset()) return false;
        const library::Asset& shown = *onView->currentAsset->libraryAsset();
        return shown.localIdentifier == id && shown.isEdited() && shown.creationDate.date() == wished.date();
    }, 10000)) << currentPath().toStdString();
    EXPECT_GE(stripReset.count(), 1);
    ASSERT_EQ(strip.rowCount(), 2);
    EXPECT_EQ(stripSource(0), nikon);
    EXPECT_NE(stripSource(1), nikon);
}
