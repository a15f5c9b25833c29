// SPDX-License-Identifier: GPL-3.0-or-later
// The detail screen's rules, driven through its view models over real files in a files album:
// the detail table's rows and badges, the tag table's sections and their collapse state, the
// toolbar's tools and toggles, the strip's heights, paging and zoom limits.
#include "AppState.h"
#include "DetailTableModel.h"
#include "DetailViewModel.h"
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "MovieReader.h"
#include "MovieWriter.h"
#include "Settings.h"
#include "TSFilesAlbum.h"
#include "TagTableModel.h"
#include "TestSupport.h"
#include "ToolBarModel.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

using testsupport::corpusDir;

class Counter : public QObject, public TSMetaDataObserver {
public:
    int begins = 0;
    int processed = 0;
    void beginLoading(const std::shared_ptr<TSAlbum>&) override { ++begins; }
    void processedMetaData(const std::shared_ptr<TSAlbum>&) override { ++processed; }
};

QString corpus(const QString& name) { return corpusDir() + "/" + name; }

class DetailScreenTest : public ::testing::Test {
protected:
    void SetUp() override {
        TagTableModel::collapseState().clear();
        appState().isPad = false;
        TSEnvironment::setCurrentAlbum(nullptr);
    }
    void TearDown() override { TSEnvironment::setCurrentAlbum(nullptr); }

    // A files album of these paths made current, with the item at `index` loaded.
    std::shared_ptr<TSFilesAlbum> open(const QStringList& paths, int index = 0) {
        auto album = std::make_shared<TSFilesAlbum>();
        TSEnvironment::setCurrentAlbum(album);
        album->loadBookmarks(paths);
        if (index >= 0) select(*album, index);
        return album;
    }
    static void select(TSAlbum& album, int index) {
        Counter counter;
        TSEnvironment::observable().addObserver(&counter);
        album.setActualIndex(index);
        ASSERT_TRUE(QTest::qWaitFor([&] { return counter.processed > 0; }, 10000));
    }

    static QStringList column(const QAbstractItemModel& model, int role) {
        QStringList out;
        for (int r = 0; r < model.rowCount(); ++r) out << model.data(model.index(r, 0), role).toString();
        return out;
    }

    // A copy of a corpus photo with the given changes written by our writer.
    QString tagged(const QString& source, const imageio::PropertyDict& changes, const QString& name) {
        QFile in(corpus(source));
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        QString error;
        const auto bytes = imageio::writeProperties(in.readAll(), changes, &error);
        EXPECT_TRUE(bytes) << error.toStdString();
        const QString path = filesDir_.filePath(name);
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes.value_or(QByteArray()));
        return path;
    }

    // A picture without any metadata, as a drawing program saves it.
    QString untagged() {
        const QString path = filesDir_.filePath("untagged.png");
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        EXPECT_TRUE(image.save(path));
        return path;
    }

    QTemporaryDir filesDir_;
};

// -- detail table --

TEST_F(DetailScreenTest, RowsFollowTheItemKindAndItsLocation) {
    DetailTableModel table;
    EXPECT_EQ(table.rowCount(), 0) << "no item, no rows";
    // Each kind with and without a position: the position adds the map and its separator.
    int withPosition = 0;
    for (const QString& file :
         QStringList{"jpeg/gps/DSCN0010.jpg", "jpeg/Canon_40D.jpg", "video/apple_meta.mov", "video/small_video.mp4"}) {
        SCOPED_TRACE(file.toStdString());
        open({corpus(file)});
        const QStringList kinds = column(table, DetailTableModel::KindRole);
        EXPECT_EQ(kinds.mid(0, 4), (QStringList{"date", "location", "separator", "badges"}));
        EXPECT_EQ(kinds.last(), "separator");
        EXPECT_EQ(kinds.contains("stack"), !file.startsWith("video"));
        const bool hasPosition = file.contains("gps") || file.contains("apple_meta");
        EXPECT_EQ(kinds.contains("map"), hasPosition);
        if (hasPosition) withPosition = table.rowCount();
        else EXPECT_EQ(table.rowCount(), withPosition - 2);
    }
}

TEST_F(DetailScreenTest, RowTextsShowWhatExiftoolReads) {
    DetailTableModel table;
    auto album = open({corpus("jpeg/gps/DSCN0010.jpg"), untagged()});
    // exiftool: DateTimeOriginal 2008:10:22 16:28:39, Model COOLPIX P6000, 640x480.
    const QModelIndex date = table.index(0);
    EXPECT_EQ(date.data(DetailTableModel::ValueRole).toString(), "Wednesday, 22 October 2008 16:28:39");
    EXPECT_FALSE(date.data(DetailTableModel::InfoMarkRole).toBool()) << "one date source only";
    ASSERT_EQ(table.sources(0).size(), 1);
    EXPECT_TRUE(table.sources(0).first().startsWith("From Exif Original:\n"));
    ASSERT_EQ(table.sources(1).size(), 1);
    EXPECT_TRUE(table.sources(1).first().startsWith("From GPS:\n"));

    const int map = int(column(table, DetailTableModel::KindRole).indexOf("map"));
    ASSERT_GT(map, 0);
    EXPECT_FALSE(table.index(map).data(DetailTableModel::CoordinateRole).toString().isEmpty());

    const int sizes = int(column(table, DetailTableModel::KindRole).indexOf("sizes"));
    EXPECT_EQ(table.index(sizes).data(DetailTableModel::FileNameRole).toString(), "DSCN0010.jpg");
    EXPECT_EQ(table.index(sizes).data(DetailTableModel::FileTypeRole).toString(), "JPEG");
    EXPECT_TRUE(table.index(sizes).data(DetailTableModel::SizesRole).toString().contains("640 x 480")) << 
        table.index(sizes).data(DetailTableModel::SizesRole).toString().toStdString();

    // The whole details text goes to the clipboard, whichever row asked.
    table.copy();
    const QString copied = QGuiApplication::clipboard()->text();
    for (const char* part : {"DSCN0010.jpg", "COOLPIX P6000", "Wednesday, 22 October 2008 16:28:39"})
        EXPECT_TRUE(copied.contains(part)) << part << " in " << copied.toStdString();

    select(*album, 1);
    EXPECT_EQ(table.index(1).data(DetailTableModel::ValueRole).toString(), "\nThis image has no exif tags");
    EXPECT_DOUBLE_EQ(table.index(1).data(DetailTableModel::AlphaRole).toDouble(), 0.5);
    EXPECT_TRUE(table.sources(0).isEmpty());
}

// A German reader sees German figures: the date, the decimal comma of the stack and the sizes.
// The values are exiftool's (FNumber 5.9, FocalLengthIn35mmFormat 112 mm, 640x480).
TEST_F(DetailScreenTest, FiguresFollowTheLocale) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    DetailTableModel table;
    open({corpus("jpeg/gps/DSCN0010.jpg")});
    EXPECT_EQ(table.index(0).data(DetailTableModel::ValueRole).toString(), "Mittwoch, 22. Oktober 2008 16:28:39");
    const int row = int(column(table, DetailTableModel::KindRole).indexOf("stack"));
    const QStringList stack = table.index(row).data(DetailTableModel::StackRole).toStringList();
    ASSERT_EQ(stack.size(), 5);
    EXPECT_EQ(stack[1], "112 mm");
    EXPECT_EQ(stack[3], "ƒ/5,9");
    const int sizes = int(column(table, DetailTableModel::KindRole).indexOf("sizes"));
    EXPECT_TRUE(table.index(sizes).data(DetailTableModel::SizesRole).toString().contains("640 x 480 (0,3MP)"))
        << table.index(sizes).data(DetailTableModel::SizesRole).toString().toStdString();
}

TEST_F(DetailScreenTest, StackShowsBothFocalLengthsOnlyWhenTheyDiffer) {
    DetailTableModel table;
    open({corpus("jpeg/Canon_40D.jpg")});
    const int row = int(column(table, DetailTableModel::KindRole).indexOf("stack"));
    const QStringList stack = table.index(row).data(DetailTableModel::StackRole).toStringList();
    ASSERT_EQ(stack.size(), 5);
    EXPECT_TRUE(stack[0].startsWith(" ISO "));
    EXPECT_TRUE(stack[3].startsWith("ƒ/"));
    EXPECT_TRUE(stack[4].endsWith("s"));
    const bool accent = table.index(row).data(DetailTableModel::FocalAccentRole).toBool();
    const QString both = table.focalLengthText();
    EXPECT_TRUE(both.startsWith("Focal Length: "));
    EXPECT_TRUE(both.contains("\n35 mm equiv.: "));
    const QStringList lines = both.split('\n');
    EXPECT_EQ(accent, lines[0].mid(14) != lines[1].mid(15)) << both.toStdString();
}

TEST_F(DetailScreenTest, HideEmptyTagsCollapsesEmptyDetailRowsOnly) {
    DetailTableModel table;
    open({corpus("jpeg/no_exif.jpg")});
    auto collapsedKeys = [&] {
        QStringList keys;
        for (int r = 0; r < table.rowCount(); ++r)
            if (table.index(r).data(DetailTableModel::CollapsedRole).toBool())
        keys << table.index(r).data(DetailTableModel::KeyRole).toString();
        return keys;
    };
    ASSERT_TRUE(Settings::flag(SettingsFlag::hideEmptyTags));
    const QStringList hidden = collapsedKeys();
    EXPECT_TRUE(hidden.contains(rawValue(TSKey::LENS)));
    EXPECT_FALSE(hidden.contains(rawValue(TSKey::DETAILS_STACK)));
    EXPECT_FALSE(hidden.contains(rawValue(TSKey::SEPARATOR)));
    const int stack = int(column(table, DetailTableModel::KindRole).indexOf("stack"));
    EXPECT_EQ(table.index(stack).data(DetailTableModel::StackRole).toStringList()[0], " ISO --");

    Settings::setFlag(SettingsFlag::hideEmptyTags, false);
    EXPECT_TRUE(collapsedKeys().isEmpty());
}

// The badges against exiftool's reading of the flash, metering and white balance tags.
TEST_F(DetailScreenTest, BadgesFollowTheTags) {
    static const QStringList metering{
        "camera.metering.unknown", "camera.metering.center.weighted.average", "camera.metering.center.weighted",
        "camera.metering.spot",    "camera.metering.multispot",               "camera.metering.matrix",
        "camera.metering.partial",
    };
    const QString made = tagged("jpeg/Canon_40D.jpg",
                                {{"{Exif}", QVariantMap{{"Flash", 16}, {"MeteringMode", 3}, {"WhiteBalance", 0}}}},
                                "flash_off_spot.jpg");
    const QStringList files{corpus("jpeg/Canon_40D.jpg"), corpus("jpeg/Nikon_D70.jpg"), corpus("jpeg/gps/DSCN0010.jpg"),
                            corpus("jpeg/Fujifilm_FinePix_E500.jpg"), corpus("jpeg/no_exif.jpg"), made};
    auto album = open(files);
    for (int i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(files[i].toStdString());
        select(*album, i);
        const QJsonObject tags = testsupport::exiftoolJson(files[i], {"-n", "-EXIF:Flash", "-EXIF:MeteringMode", "-EXIF:WhiteBalance"}).toObject();
        QList<DetailTableModel::Badge> expected;
        if (tags.contains("Flash")) expected << DetailTableModel::Badge{tags["Flash"].toInt() & 1 ? "bolt" : "bolt.slash", {}};
        if (tags.contains("MeteringMode") && tags["MeteringMode"].toInt() <= 6)
            expected << DetailTableModel::Badge{metering[tags["MeteringMode"].toInt()], {}};
        if (tags.contains("WhiteBalance") && tags["WhiteBalance"].toInt() == 0) expected << DetailTableModel::Badge{{}, "AWB"};
        EXPECT_EQ(DetailTableModel::badges(album->currentAsset->ddStore(), *album), expected);
    }
    select(*album, files.size() - 1);
    EXPECT_EQ(DetailTableModel::badges(album->currentAsset->ddStore(), *album).first().symbol, "bolt.slash");

    open({corpus("video/apple_meta.mov")});
    const auto videoBadges = DetailTableModel::badges(TSEnvironment::currentAlbum()->currentAsset->ddStore(),
                                                      *TSEnvironment::currentAlbum());
    ASSERT_FALSE(videoBadges.isEmpty());
    EXPECT_EQ(videoBadges.last().symbol, "forward.frame");
}

// -- tag table --

TEST_F(DetailScreenTest, TagTableShowsSectionsWithRowsAndNamesThemAll) {
    TagTableModel tags;
    open({untagged()});
    const TSMetaDictProtocol& dic = tags.metaDic();
    QStringList headers;
    for (int i = 0; i < tags.rowCount(); ++i) {
        const QModelIndex index = tags.index(i);
        if (index.data(TagTableModel::KindRole) != "header") continue;
        headers << index.data(TagTableModel::TitleRole).toString();
        EXPECT_EQ(tags.index(i + 1).data(TagTableModel::KindRole), "row") << "a header with no rows: " << headers.last().toStdString();
    }
    ASSERT_FALSE(headers.isEmpty());
    EXPECT_GT(tags.sectionTitles().size(), headers.size()) << "empty sections have no header but are in the list";
    // A section without a header is reached where it would stand.
    for (int s = 0; s < dic.numberOfSections(); ++s) {
        const int at = tags.goTo(s);
        ASSERT_GE(at, 0);
        ASSERT_LT(at, tags.rowCount());
        EXPECT_GE(tags.index(at).data(TagTableModel::SectionRole).toInt(), s);
    }
}

TEST_F(DetailScreenTest, ClosedSectionsStayClosedAcrossItemsAndTheHumanSetting) {
    TagTableModel tags;
    ToolBarModel toolBar;
    QObject::connect(&toolBar, &ToolBarModel::reloadTables, &tags, &TagTableModel::reload);
    auto album = open({corpus("jpeg/Canon_40D.jpg"), corpus("jpeg/Nikon_D70.jpg")});
    const int before = tags.rowCount();
    const int header = tags.goTo(0);
    ASSERT_EQ(tags.index(header).data(TagTableModel::KindRole), "header");
    const int section = tags.index(header).data(TagTableModel::SectionRole).toInt();
    const int sectionRows = tags.metaDic().numberOfRows(section);
    ASSERT_GT(sectionRows, 0);
    QSignalSpy removed(&tags, &QAbstractItemModel::rowsRemoved);
    tags.toggle(section);
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(tags.rowCount(), before - sectionRows);
    EXPECT_FALSE(tags.index(header).data(TagTableModel::OpenRole).toBool());
    const QString key = tags.metaDic().sectionKey(section).value_or(QString());

    select(*album, 1);
    auto sectionOf = [&](const QString& k) {
        for (int s = 0; s < tags.metaDic().numberOfSections(); ++s)
            if (tags.metaDic().sectionKey(s).value_or(QString()) == k) return s;
        return -1;
    };
    auto rowsShown = [&](int s) {
        int n = 0;
        for (int i = 0; i < tags.rowCount(); ++i)
            n += tags.index(i).data(TagTableModel::KindRole) == "row" && tags.index(i).data(TagTableModel::SectionRole) == s;
        return n;
    };
    ASSERT_GE(sectionOf(key), 0);
    EXPECT_FALSE(tags.isOpen(sectionOf(key)));
    EXPECT_EQ(rowsShown(sectionOf(key)), 0);

    const QString humanTitle = tags.sectionTitles().join("|");
    toolBar.toggleMore(1);  // "Human Readable Tags"
    EXPECT_FALSE(Settings::flag(SettingsFlag::human));
    EXPECT_EQ(rowsShown(sectionOf(key)), 0);
    EXPECT_FALSE(tags.isOpen(sectionOf(key)));
    EXPECT_NE(tags.sectionTitles().join("|"), humanTitle) << "titles follow the setting";

    tags.toggle(sectionOf(key));
    EXPECT_EQ(rowsShown(sectionOf(key)), tags.metaDic().numberOfRows(sectionOf(key)));
}

TEST_F(DetailScreenTest, VideoKeySpacesAreSortedAndRowsCopy) {
    // The sample's QuickTime keys, and a user-data title in front of them.
    QString error;
    const QByteArray source = testsupport::readFile(corpus("video/apple_meta.mov"));
    const auto movie = media::readMovie(source, &error);
    ASSERT_TRUE(movie) << error.toStdString();
    media::MetadataItem title;
    title.keySpace = "udta";
    title.key = "\xA9nam";
    title.identifier = media::makeIdentifier(title.keySpace, title.key);
    title.value = QStringLiteral("Lisbon");
    title.dataType = media::DataType::utf8;
    title.stored = "Lisbon";
    media::MetadataRewrite rewrite;
    rewrite.items << title << movie->metadata;
    const auto written = media::rewriteMovie(source, rewrite, &error);
    ASSERT_TRUE(written) << error.toStdString();
    const QString path = filesDir_.filePath("two_spaces.mov");
    QFile out(path);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(*written);
    out.close();

    TagTableModel tags;
    open({path});
    QStringList keys;
    for (int s = 0; s < tags.metaDic().numberOfSections(); ++s) keys << tags.metaDic().sectionKey(s).value_or(QString());
    EXPECT_EQ(keys, (QStringList{"mdta", "udta"}));

    const int row = tags.goTo(0) + 1;
    ASSERT_EQ(tags.index(row).data(TagTableModel::KindRole), "row");
    tags.copy(row);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), tags.index(row).data(TagTableModel::ValueRole).toString());
}

// -- toolbar --

TEST_F(DetailScreenTest, ToolsOfTheCurrentState) {
    ToolBarModel toolBar;
    EXPECT_TRUE(toolBar.tools().isEmpty()) << "an empty album has no tools, not even tags";
    open({corpus("jpeg/Canon_40D.jpg")});
    EXPECT_EQ(toolBar.tools(), (QStringList{"share", "tags"}));
    open({}, -1);
    toolBar.refresh();
    EXPECT_TRUE(toolBar.tools().isEmpty());

    ToolBarModel::State library;
    library.albumEmpty = false;
    library.libraryItem = ToolBarModel::LibraryItem{true, true, false};
    library.subtypesReady = true;
    EXPECT_EQ(ToolBarModel::toolsFor(library), (QStringList{"share", "prefer", "delete", "more", "edit", "tags"}));
    ToolBarModel::State burst = library;
    burst.burstAlbum = true;
    EXPECT_EQ(ToolBarModel::toolsFor(burst), (QStringList{"share", "edit", "tags"}));
    ToolBarModel::State timeLapse = library;
    timeLapse.timeLapse = true;
    EXPECT_FALSE(ToolBarModel::toolsFor(timeLapse).contains("edit"));
    ToolBarModel::State shared = library;
    shared.collectionSubtype = 1001;
    EXPECT_EQ(ToolBarModel::toolsFor(shared), (QStringList{"more", "edit", "tags"}));
    shared.collectionSubtype = 1000;
    EXPECT_TRUE(ToolBarModel::toolsFor(shared).contains("share"));
}

TEST_F(DetailScreenTest, MoreMenuTogglesWriteTheirSettings) {
    ToolBarModel toolBar;
    QSignalSpy reload(&toolBar, &ToolBarModel::reloadTables);
    const QVariantList menu = toolBar.moreMenu();
    ASSERT_EQ(menu.size(), 3);
    QStringList titles;
    for (const QVariant& v : menu) titles << v.toMap()["title"].toString();
    EXPECT_EQ(titles, (QStringList{"Live Photo Preview", "Human Readable Tags", "Hide Empty Details"}));
    const QList<SettingsFlag> flags{SettingsFlag::showLivePhotos, SettingsFlag::human, SettingsFlag::hideEmptyTags};
    for (int i = 0; i < 3; ++i) {
        const bool before = Settings::flag(flags[i]);
        EXPECT_EQ(toolBar.moreMenu()[i].toMap()["checked"].toBool(), before);
        toolBar.toggleMore(i);
        EXPECT_EQ(Settings::flag(flags[i]), !before);
        EXPECT_EQ(toolBar.moreMenu()[i].toMap()["checked"].toBool(), !before);
    }
    EXPECT_EQ(reload.size(), 3);

    // Turning "Hide Empty Details" off shows the empty rows again once the table reloads.
    DetailTableModel table;
    QObject::connect(&toolBar, &ToolBarModel::reloadTables, &table, &DetailTableModel::reload);
    open({corpus("jpeg/no_exif.jpg")});
    QSignalSpy reset(&table, &QAbstractItemModel::modelReset);
    toolBar.toggleMore(2);
    EXPECT_EQ(reset.size(), 1);
}

// -- the container --

TEST_F(DetailScreenTest, StripSnapsToTwoHeightsAndOpensFullScreenPastTheMaximum) {
    DetailViewModel detail;
    detail.setScreenSize({390, 844});
    // Half the height less a phone's 15 % and the bar: 422 - 126.6 - 44.
    EXPECT_NEAR(detail.defaultHeight(), 251.4, 1e-9);
    appState().isPad = true;
    detail.setScreenSize({1180, 820});
    // A tablet's 12 %: 410 - 98.4 - 44.
    EXPECT_NEAR(detail.defaultHeight(), 267.6, 1e-9);
    const qreal standard = detail.defaultHeight();
    EXPECT_EQ(detail.stripHeight(), standard);

    // Pushed up: shrinks by the move, never below the minimum.
    detail.offsetChanged(30);
    EXPECT_NEAR(detail.stripHeight(), standard - 30, 1e-9);
    detail.offsetChanged(1000);
    EXPECT_EQ(detail.stripHeight(), detail.minimumHeight());
    // Released below the default: back to the minimum.
    detail.dragEnded();
    EXPECT_EQ(detail.stripHeight(), detail.minimumHeight());

    // Pulled past the top: grows; released above the default it returns to the default.
    detail.offsetChanged(-(standard + 20 - detail.minimumHeight()));
    EXPECT_NEAR(detail.stripHeight(), standard + 20, 1e-9);
    detail.dragEnded();
    EXPECT_TRUE(detail.bouncing());
    EXPECT_EQ(detail.stripHeight(), standard);
    detail.offsetChanged(-500);  // ignored while bouncing
    EXPECT_EQ(detail.stripHeight(), standard);
    detail.bounceFinished();
    EXPECT_FALSE(detail.bouncing());

    // A pan on the strip: downward moves count as none.
    detail.panChanged(80);
    EXPECT_EQ(detail.stripHeight(), standard);

    // The maximum leaves room for the strip's bar.
    detail.setAvailableHeight(619);
    EXPECT_FALSE(detail.fullScreen());
    detail.offsetChanged(-(600 - standard));
    EXPECT_FALSE(detail.fullScreen()) << "at the maximum, not past it";
    detail.offsetChanged(-1);
    EXPECT_TRUE(detail.fullScreen());
    // Behind the full-screen view the strip goes back to the default.
    EXPECT_TRUE(QTest::qWaitFor([&] { return detail.stripHeight() == standard; }, 10000));

    // Another window size brings the strip to that size's default.
    detail.setStripHeight(150);
    appState().isPad = false;
    detail.setScreenSize({390, 844});
    EXPECT_NEAR(detail.stripHeight(), 251.4, 1e-9);
}

TEST_F(DetailScreenTest, StripReleasedOnTheSameIndexLoadsNothing) {
    DetailViewModel detail;
    auto album = open({corpus("jpeg/Canon_40D.jpg"), corpus("jpeg/Nikon_D70.jpg"), corpus("jpeg/no_exif.jpg")}, 1);
    Counter counter;
    TSEnvironment::observable().addObserver(&counter);
    const qreal side = 300, inset = 45;
    EXPECT_EQ(DetailViewModel::indexAt((side + 10) * 1 - inset, inset, side), 1);
    EXPECT_EQ(DetailViewModel::indexAt((side + 10) * 2 - inset - 140, inset, side), 2);
    EXPECT_EQ(DetailViewModel::indexAt((side + 10) * 2 - inset - 170, inset, side), 1);

    detail.dragBegan();
    EXPECT_FALSE(detail.barEnabled());
    EXPECT_TRUE(detail.overlayShown());
    detail.decelerationEnded((side + 10) * 1 - inset + 20, inset, side);
    QCoreApplication::processEvents();
    EXPECT_EQ(counter.begins, 0);
    EXPECT_TRUE(detail.barEnabled());
    EXPECT_FALSE(detail.overlayShown());

    detail.decelerationEnded((side + 10) * 2 - inset, inset, side);
    EXPECT_EQ(counter.begins, 1);
    EXPECT_FALSE(detail.barEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.processed == 1; }, 10000));
    EXPECT_EQ(album->actualIndex(), 2);
    EXPECT_TRUE(detail.barEnabled());
    EXPECT_FALSE(detail.overlayShown());

    // The keys page within the album, and no further.
    detail.next();
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.processed == 2; }, 10000));
    EXPECT_EQ(detail.currentIndex(), 2);
    detail.previous();
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.processed == 3; }, 10000));
    EXPECT_EQ(detail.currentIndex(), 1);
    EXPECT_FALSE(detail.currentIsVideo());
    EXPECT_EQ(detail.currentSource().toLocalFile(), corpus("jpeg/Nikon_D70.jpg"));
}

TEST_F(DetailScreenTest, ContainerTitleAndZoomLimits) {
    DetailViewModel detail;
    EXPECT_EQ(detail.title(), "Details");
    detail.toggleTables();
    EXPECT_TRUE(detail.showTags());
    EXPECT_EQ(detail.title(), "All Tags");

    // A large image fits at the minimum and may grow seven times that.
    EXPECT_DOUBLE_EQ(DetailViewModel::minimumZoom(400, 300, 4000, 2000), 0.1);
    EXPECT_DOUBLE_EQ(DetailViewModel::maximumZoom(400, 300, 4000, 2000), 0.7);
    // A small one is never shown past 1.5 times its size.
    EXPECT_DOUBLE_EQ(DetailViewModel::minimumZoom(1000, 800, 100, 100), 8.0);
    EXPECT_DOUBLE_EQ(DetailViewModel::maximumZoom(1000, 800, 100, 100), 1.5);
}

TEST_F(DetailScreenTest, CloudFailureAlertsOnlyWithText) {
    DetailViewModel detail;
    QSignalSpy alerts(&detail, &DetailViewModel::alert);
    detail.failure(QString());
    EXPECT_EQ(alerts.size(), 0);
    EXPECT_LT(detail.cloudProgress(), 0);
    detail.failure("The download failed");
    ASSERT_EQ(alerts.size(), 1);
    EXPECT_EQ(alerts[0][0].toString(), "Alert");
}

}  // namespace
