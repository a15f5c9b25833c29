// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the edit model, the tag modifier and the save pipeline that carry risk, on real
// sample files and on property dictionaries made here.
#include "ExifModifier.h"
#include "ImageDecoder.h"
#include "PhotoSave.h"
#include "PropertyKeys.h"
#include "TSError.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

using namespace testsupport;

namespace {

class Editing : public ::testing::Test {
protected:
    static std::shared_ptr<TSAsset> asset(const QString& relative) {
        return std::make_shared<TSAsset>(corpusDir() + "/" + relative);
    }
    static ModifyingPhotoAsset photo(const std::shared_ptr<TSAsset>& a) {
        return {a, std::make_shared<TagsPhotoModifier>(a->metaData()), a->imageData(), 1};
    }
};

// Mean difference per channel of two images of one size, 0 to 255.
double difference(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) return 255;
    const QImage x = a.convertToFormat(QImage::Format_RGB888), y = b.convertToFormat(QImage::Format_RGB888);
    double sum = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int i = 0; i < x.width() * 3; ++i) sum += std::abs(int(x.constScanLine(row)[i]) - int(y.constScanLine(row)[i]));
    return sum / (double(x.width()) * x.height() * 3);
}

// Caps the size of the files this process writes, root included, until it goes out of scope;
// a write that crosses it fails (its signal is ignored meanwhile).
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &saved_);
        previous_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, saved_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previous_);
    }

private:
    rlimit saved_{};
    void (*previous_)(int) = nullptr;
};

}  // namespace

TEST_F(Editing, KeyListsAndNewSettings) {
    const auto& editable = EditKeys::editableKeys();
    EXPECT_EQ(QSet<TSKey>(editable.begin(), editable.end()).size(), editable.size());
    EXPECT_EQ(EditKeys::editableKey("By-line"), TSKey::AUTHOR);
    EXPECT_EQ(EditKeys::editableKey("LensModel"), TSKey::LENS);
    EXPECT_EQ(EditKeys::editableKey("IPTC_KEYWORDS"), TSKey::IPTC_KEYWORDS);
    EXPECT_FALSE(EditKeys::editableKey("FNumber"));
    EXPECT_EQ(EMRowData(TSKey::IPTC_KEYWORDS).header, "Keywords:");

    auto a = asset("jpeg/Canon_40D.jpg");  // no position
    UserSettings s(a->metaData(), a->ddStore());
    EXPECT_FALSE(s.isDateChanged());
    EXPECT_FALSE(s.isLocationChanged());
    EXPECT_FALSE(s.switchers[Sections::rotation]);
    ASSERT_TRUE(s.initialDate);
    s.setDate(*s.initialDate, TSKey::EXIF_DATE);
    EXPECT_FALSE(s.isDateChanged()) << "the date the photo already has is no change";
    s.setDate(s.initialDate->addDays(1), TSKey::EXIF_DATE);
    EXPECT_TRUE(s.isDateChanged());
    EXPECT_EQ(s.locationText(true), "Unchanged");
    s.setLocation(HRLocation{std::nullopt, std::nullopt, GeoLocation(1, 2), {}});
    EXPECT_TRUE(s.isLocationChanged());

    s.properties.set(QStringLiteral("x"), "Tag");
    s.properties.set(QString(), "Tag");
    EXPECT_FALSE(s.properties.properties.contains("Tag")) << "an empty text takes the wish away";
}

TEST_F(Editing, TextRules) {
    TSMetaData record = TSMetaData::fromProperties(imageio::PropertyDict{
        {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifUserComment, "old"}}},
        {kCGImagePropertyIPTCDictionary, QVariantMap{{kCGImagePropertyIPTCKeywords, QVariantList{"b", "a"}},
                                                     {kCGImagePropertyIPTCDateCreated, "20200101"}}},
    });
    TagsPhotoModifier m(record);
    // Keywords compare as sets, and the file's order stays.
    EXPECT_FALSE(m.setText(kCGImagePropertyIPTCKeywords, SubDictionary::iptc, QStringLiteral(" a ,b")));
    EXPECT_EQ(m.iptcData.value(kCGImagePropertyIPTCKeywords).toList(), (QVariantList{"b", "a"}));
    EXPECT_TRUE(m.setText(kCGImagePropertyIPTCKeywords, SubDictionary::iptc, QStringLiteral("a,,b")));
    EXPECT_EQ(m.iptcData.value(kCGImagePropertyIPTCKeywords).toList(), (QVariantList{"a", "", "b"}));
    // Clearing a field the file lacks does nothing; one it has becomes null.
    EXPECT_FALSE(m.setText(kCGImagePropertyExifLensModel, SubDictionary::exif, QString()));
    EXPECT_FALSE(m.exifData.contains(kCGImagePropertyExifLensModel));
    EXPECT_FALSE(m.setText(kCGImagePropertyExifUserComment, SubDictionary::exif, QStringLiteral("old")));
    EXPECT_FALSE(m.changed);

    const TSDataStore store;
    UserSettings settings(record, store);
    settings.properties.set(kRemovalMark, kCGImagePropertyExifUserComment);
    m.apply(TSKey::USER_COMMENT, settings, record);
    EXPECT_TRUE(m.changed);
    EXPECT_TRUE(m.exifData.value(kCGImagePropertyExifUserComment).isNull());

    // Committing drops the IPTC creation date though nobody asked.
    m.commit(false);
    EXPECT_TRUE(m.iptcData.value(kCGImagePropertyIPTCDateCreated).isNull());
    EXPECT_TRUE(m.metaData->value(kCGImagePropertyIPTCDictionary).toMap().value(kCGImagePropertyIPTCDateCreated).isNull());
}

TEST_F(Editing, LocationAndOrientationRules) {
    auto a = asset("jpeg/Canon_40D.jpg");
    TagsPhotoModifier m(a->metaData());
    m.setLocation(GeoLocation(0, 0));
    int values = 0;
    for (const QVariant& v : m.gpsData) values += !v.isNull();
    EXPECT_EQ(values, 4);
    EXPECT_EQ(m.gpsData.value(kCGImagePropertyGPSLatitudeRef).toString(), "S");
    EXPECT_EQ(m.gpsData.value(kCGImagePropertyGPSLongitudeRef).toString(), "W");

    auto withGps = asset("heif/Stonehenge.heic");
    TagsPhotoModifier g(withGps->metaData());
    const int before = g.gpsData.size();
    g.setLocation(GeoLocation(51.5, -1.8));
    EXPECT_EQ(g.gpsData.value(kCGImagePropertyGPSLongitude).toDouble(), 1.8);
    int nulls = 0;
    for (const QVariant& v : g.gpsData) nulls += v.isNull();
    EXPECT_EQ(nulls, before - 4) << "every other GPS tag goes";

    m.setOrientationTag("6");
    EXPECT_EQ(m.tiffData.value(kCGImagePropertyTIFFOrientation).typeId(), QMetaType::QString);
    ASSERT_TRUE(m.metaData);
    EXPECT_EQ(m.metaData->value(kCGImagePropertyOrientation), QVariant(QStringLiteral("6")));
}

TEST_F(Editing, NoTagsDropsTheDateWishesAndClearsEveryTag) {
    auto a = asset("jpeg/Canon_40D.jpg");
    UserSettings s(a->metaData(), a->ddStore());
    s.setDate(QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5)), TSKey::EXIF_DATE);
    s.switchers.set(Sections::noTags, true);
    ExifModifier modifier({photo(a)});
    modifier.modify(s);
    EXPECT_TRUE(s.properties.properties.isEmpty());
    const auto& tags = modifier.modifing.first().tags;
    EXPECT_TRUE(tags->changed);
    ASSERT_TRUE(tags->metaData);
    for (const QVariant& v : tags->metaData->value(kCGImagePropertyExifDictionary).toMap()) EXPECT_TRUE(v.isNull());
    EXPECT_FALSE(tags->tiffData.value(kCGImagePropertyTIFFSoftware).isValid() &&
                 !tags->tiffData.value(kCGImagePropertyTIFFSoftware).isNull())
        << "no software tag is written when everything goes";
}

// Saving to files: exiftool reads the wish in every file, the image data are untouched.
TEST_F(Editing, FilesRoadWritesTheWishAndKeepsTheImage) {
    QTemporaryDir out;
    auto heic = asset("heif/Stonehenge.heic");
    auto jpeg = asset("jpeg/Canon_40D.jpg");
    UserSettings s(heic->metaData(), heic->ddStore());
    s.properties.set(QStringLiteral("Amesbury"), kCGImagePropertyIPTCCity);

    ExifModifier good({photo(heic), photo(jpeg)});
    good.filesDirectory = out.path();
    good.modify(s);
    QStringList written;
    good.save(SaveMode::files, [&](const QStringList& urls, const std::optional<QString>& message) {
        EXPECT_FALSE(message) << message->toStdString();
        written = urls;
    });
    ASSERT_EQ(written.size(), 2);
    EXPECT_EQ(exiftoolJson(out.filePath("Stonehenge.heic"), {"-n", "-G1"})["XMP-photoshop:City"].toString(), "Amesbury");
    EXPECT_EQ(exiftoolJson(out.filePath("Canon_40D.jpg"), {"-n", "-G1"})["IPTC:City"].toString(), "Amesbury");
    expectSameImage(heic->path(), out.filePath("Stonehenge.heic"));
    expectSameImage(jpeg->path(), out.filePath("Canon_40D.jpg"));
    // A new file gets what any file made here gets under the umask, not a temporary file's 0600.
    QTemporaryDir probeDir;
    QFile probe(probeDir.filePath("probe"));
    ASSERT_TRUE(probe.open(QIODevice::WriteOnly));
    EXPECT_EQ(QFileInfo(out.filePath("Stonehenge.heic")).permissions(), QFileInfo(probe).permissions());

    // The second photo has no bytes as read: the whole save fails and writes nothing.
    QTemporaryDir empty;
    auto broken = photo(jpeg);
    broken.dataSource = imageio::Rewritten();
    ExifModifier bad({photo(heic), broken});
    bad.filesDirectory = empty.path();
    bad.modify(s);
    std::optional<QString> failure;
    bad.save(SaveMode::files, [&](const QStringList&, const std::optional<QString>& message) { failure = message; });
    EXPECT_EQ(failure, "Error managing image data");
    EXPECT_TRUE(QDir(empty.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

// The save's second write fails (a file-size limit holds for root too): the failure is reported,
// the file it would have replaced is untouched, and no part or temporary file is left.
TEST_F(Editing, AWriteFailingMidSaveLeavesTheFileItWouldReplace) {
    QTemporaryDir out;
    auto small = asset("jpeg/Canon_40D.jpg");   // 8 KB
    auto large = asset("jpeg/DSC_3079.jpg");    // 116 KB
    const QString existing = out.filePath("DSC_3079.jpg");
    ASSERT_TRUE(QFile::copy(large->path(), existing));
    const QByteArray before = readFile(existing);
    UserSettings s(small->metaData(), small->ddStore());
    s.properties.set(QStringLiteral("Amesbury"), kCGImagePropertyIPTCCity);
    ExifModifier modifier({photo(small), photo(large)});
    modifier.filesDirectory = out.path();
    modifier.modify(s);

    std::optional<QString> failure;
    QStringList urls;
    {
        FileSizeLimit limit(64 * 1024);
        modifier.save(SaveMode::files, [&](const QStringList& u, const std::optional<QString>& message) {
            urls = u;
            failure = message;
        });
    }
    EXPECT_EQ(failure, "Error writing data to file");
    EXPECT_EQ(readFile(existing), before);
    EXPECT_EQ(QDir(out.path()).entryList(QDir::Files | QDir::Hidden), (QStringList{"Canon_40D.jpg", "DSC_3079.jpg"}));
    // What was written before the failure is whole.
    EXPECT_EQ(exiftoolJson(out.filePath("Canon_40D.jpg"), {"-n", "-G1"})["IPTC:City"].toString(), "Amesbury");
}

// The sidecars of a save are written before its photos: when one can't be written (its folder
// is read-only, which holds for root too), no photo is written either.
TEST_F(Editing, ASidecarThatCantBeWrittenSavesNoPhoto) {
    QTemporaryDir locked, out;
    const QString raw = locked.filePath("Canon_40D.jpg");
    ASSERT_TRUE(QFile::copy(corpusDir() + "/jpeg/Canon_40D.jpg", raw));
    auto inSidecar = std::make_shared<TSAsset>(raw);
    auto inPhoto = asset("jpeg/Nikon_D70.jpg");
    ASSERT_TRUE(QFile::setPermissions(locked.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    UserSettings s(inPhoto->metaData(), inPhoto->ddStore());
    s.properties.set(QStringLiteral("Amesbury"), kCGImagePropertyIPTCCity);

    PhotoSave save;
    save.filesDirectory = out.path();
    const PhotoSave::Result result = save.run(s, {inPhoto}, {inSidecar});
    QFile::setPermissions(locked.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(result.failure,
              "Can't save the changes in Canon_40D.jpg.xmp: the sidecar or its folder is read-only; nothing was saved");
    EXPECT_TRUE(result.written.isEmpty());
    EXPECT_TRUE(QDir(out.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_EQ(QDir(locked.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"Canon_40D.jpg"});
}

TEST_F(Editing, RedrawsFollowTheOrientationTables) {
    const QString dir = corpusDir() + "/jpeg/orientation/";
    const QImage upright = imageio::decodeImage(readFile(dir + "landscape_1.jpg"));
    ASSERT_FALSE(upright.isNull());
    // The samples are separate encodes of one picture: the right drawing differs by about 15 per
    // channel, any wrong one by 50 or more.
    for (int o = 2; o <= 8; ++o) {
        SCOPED_TRACE(o);
        const QByteArray stored = readFile(dir + QStringLiteral("landscape_%1.jpg").arg(o));
        const auto undone = ImageModifier::undoingOrientation(stored, o, false);
        ASSERT_TRUE(undone);
        EXPECT_LT(difference(imageio::decodeImage(*undone), upright), 25);
        // Applying a wish turns the picture as a viewer shows a photo with that orientation tag
        // (undoing 2 and 3 draws twice through a sideways canvas, so it is a little softer).
        const QByteArray one = readFile(dir + "landscape_1.jpg");
        const auto applied = ImageModifier::applyingOrientation(one, o);
        ASSERT_TRUE(applied);
        EXPECT_LT(difference(imageio::decodeImage(*applied), imageio::decodeImage(*ImageModifier::undoingOrientation(one, o, false))), 10);
    }
    const QByteArray one = readFile(dir + "landscape_1.jpg");
    EXPECT_EQ(ImageModifier::undoingOrientation(one, -1, false), one);
    EXPECT_EQ(ImageModifier::applyingOrientation(one, 1), one);

    // Rendered, a HEIF photo comes out as JPEG; otherwise it stays HEIF.
    auto heic = asset("heif/Stonehenge.heic");
    auto p = photo(heic);
    p.tags->destMutable = *heic->metaData().metaDataDic();
    const auto rendered = ImageModifier::modifiedAsset(true, p);
    EXPECT_EQ(imageio::detectFormat(std::get<imageio::Rewritten>(rendered.dataSource).head(64)), imageio::Format::Jpeg);
    const auto copied = ImageModifier::modifiedAsset(false, p);
    EXPECT_EQ(imageio::detectFormat(std::get<imageio::Rewritten>(copied.dataSource).head(64)), imageio::Format::Heif);
}

// A raw file whose own format can't take new metadata is refused in words, never converted.
TEST_F(Editing, AnUnwritableRawIsRefusedNotConverted) {
    auto jpeg = asset("jpeg/Canon_40D.jpg");
    auto p = photo(jpeg);
    p.tags->destMutable = *jpeg->metaData().metaDataDic();
    // A Canon CR3 starts as an ISO media file of the brand "crx ".
    p.dataSource = QByteArray("\0\0\0\x18" "ftypcrx \0\0\0\x01" "crx isom", 24);
    try {
        ImageModifier::modifiedAsset(false, p);
        ADD_FAILURE() << "a CR3 was written";
    } catch (const TSError& e) {
        EXPECT_EQ(e.localizedDescription(), "Tessorin can't write metadata into CR3 files; nothing was saved");
    }
}
