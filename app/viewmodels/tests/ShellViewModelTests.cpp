// SPDX-License-Identifier: GPL-3.0-or-later
// The browsing screens' rules, driven through their view models over real files: the album
// list's entries and collapsed sections, tessorin:// links, the group's rows and grid places,
// the settings switches, and the navigation that ties them together.
#include "AlbumListViewModel.h"
#include "AppController.h"
#include "AppModels.h"
#include "AppState.h"
#include "ColorScheme.h"
#include "GroupViewModel.h"
#include "TagTableModel.h"
#include "ImageStripModel.h"
#include "DetailViewModel.h"
#include "DetailTableModel.h"
#include "Log.h"
#include "RecordingLogProvider.h"
#include "Settings.h"
#include "SettingsViewModel.h"
#include "TSFilesAlbum.h"
#include "TSMetaDataObservable.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QMimeDatabase>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTemporaryDir>

// Readable failure messages.
void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }
void PrintTo(const QStringList& list, std::ostream* os) { *os << '[' << list.join(", ").toStdString() << ']'; }

namespace {

// Counts the begin notifications: each one is an album moving to an index.
class BeginCounter : public QObject, public TSMetaDataObserver {
public:
    int begins = 0;
    void beginLoading(const std::shared_ptr<TSAlbum>&) override { ++begins; }
};

class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        TSEnvironment::setCurrentAlbum(nullptr);
        appState().pendingUrlAlbumName.reset();
        appState().isPad = false;
        Log::addProvider(log_);
    }
    void TearDown() override {
        Log::removeProvider(log_);
        TSEnvironment::setCurrentAlbum(nullptr);
        appState().isPad = false;
    }
    // Whether a line ending in this text was logged.
    bool logged(const QString& text) {
        Log::flush();
        for (const auto& entry : log_->entries())
            if (entry.text.endsWith(text)) return true;
        return false;
    }
    static QStringList samples(int n) { return testsupport::corpusFiles().mid(0, n); }
    static QVariant cell(const QAbstractItemModel& model, int row, int role) { return model.data(model.index(row, 0), role); }

    std::shared_ptr<RecordingLogProvider> log_ = std::make_shared<RecordingLogProvider>();
};

// --- album list

TEST_F(ShellTest, AlbumListOffersFilesAndThenTheFilesAlbumWithItsCount) {
    AlbumListViewModel list;
    ASSERT_EQ(list.rowCount(), 1);
    EXPECT_EQ(cell(list, 0, AlbumListViewModel::TitleRole), "Files");
    EXPECT_EQ(cell(list, 0, AlbumListViewModel::SymbolRole), "folder");
    EXPECT_EQ(cell(list, 0, AlbumListViewModel::CountRole), -1);

    QSignalSpy picker(&list, &AlbumListViewModel::documentPickerRequested);
    list.select(0);
    EXPECT_EQ(picker.count(), 1);

    const QStringList files = samples(3);
    ASSERT_EQ(files.size(), 3);
    QSignalSpy opened(&list, &AlbumListViewModel::albumOpened);
    QList<QUrl> urls;
    for (const QString& f : files) urls << QUrl::fromLocalFile(f);
    urls << QUrl(QStringLiteral("https://example.org/not-a-file.jpg"));
    list.documentPicked(urls);
    EXPECT_TRUE(logged("documentPicker urls: 4"));
    EXPECT_EQ(opened.count(), 1);
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(cell(list, 1, AlbumListViewModel::TitleRole), "From files");
    EXPECT_EQ(cell(list, 1, AlbumListViewModel::CountRole), 3);
    auto album = TSEnvironment::currentAlbum();
    EXPECT_EQ(album->title(), "From files");
    EXPECT_EQ(album->count(), 3);
    EXPECT_FALSE(album->hasValidIndex()) << "on a phone nothing loads before the user picks an item";

    // Coming back to the entry makes a new album over the same files.
    list.select(1);
    EXPECT_EQ(opened.count(), 2);
    EXPECT_NE(TSEnvironment::currentAlbum(), album);
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 3);

    // The pick's filters follow "video".
    EXPECT_TRUE(list.nameFilters().join(' ').contains("*.mov"));
    EXPECT_TRUE(list.nameFilters().first().contains("*.JPG"));
    Settings::setFlag(SettingsFlag::video, false);
    EXPECT_EQ(list.nameFilters().size(), 1);
    EXPECT_FALSE(list.nameFilters().first().contains("*.mov"));
}

TEST_F(ShellTest, CollapsedSectionsAreRestoredAndKept) {
    // Section 0 has no header; 9 is past the end: neither has any effect.
    Settings::setHiddenSections({0, 2, 9});
    AlbumListViewModel list;
    const AlbumListViewModel::Section shared{"Shared", {{"Family", "rectangle.stack", 4, {}, {}}, {"Trip", "rectangle.stack", 7, {}, {}}}};
    const AlbumListViewModel::Section mine{"My Albums", {{"Favourites", "heart", 2, {}, {}}}};
    list.setLibrarySections({mine, shared});

    // files entry; header 1 with its entry; header 2 collapsed.
    ASSERT_EQ(list.rowCount(), 4);
    EXPECT_EQ(cell(list, 0, AlbumListViewModel::KindRole), "entry");
    EXPECT_EQ(cell(list, 1, AlbumListViewModel::TitleRole), "MY ALBUMS");
    EXPECT_EQ(cell(list, 1, AlbumListViewModel::CountRole), 1);
    EXPECT_EQ(cell(list, 2, AlbumListViewModel::TitleRole), "Favourites");
    EXPECT_EQ(cell(list, 3, AlbumListViewModel::TitleRole), "SHARED");
    EXPECT_EQ(cell(list, 3, AlbumListViewModel::CollapsedRole), true);
    EXPECT_EQ(cell(list, 3, AlbumListViewModel::CountRole), 2);

    list.toggle(0);
    EXPECT_EQ(list.rowCount(), 4) << "section 0 can't collapse";
    list.select(3);  // the header of section 2
    EXPECT_EQ(list.rowCount(), 6);
    list.toggle(1);
    EXPECT_EQ(list.rowCount(), 5);
    EXPECT_EQ(Settings::hiddenSections(), (QList<int>{0, 1, 9}));

    // A list made later starts with the same sections closed.
    AlbumListViewModel again;
    again.setLibrarySections({mine, shared});
    EXPECT_TRUE(again.isHidden(1));
    EXPECT_FALSE(again.isHidden(2));
    EXPECT_FALSE(again.isHidden(0));
}

TEST_F(ShellTest, LauncherEntryOffersEveryTypeThePickerOpens) {
    QHash<QString, QString> entry;
    // The main group only: the actions after it have their own Exec.
    const QString text = QString::fromUtf8(testsupport::readFile(TESSORIN_DESKTOP_FILE));
    for (const QString& line : text.left(text.indexOf("\n[", 1)).split('\n'))
        if (const qsizetype eq = line.indexOf('='); eq > 0) entry.insert(line.left(eq), line.mid(eq + 1));
    const QStringList types = entry.value("MimeType").split(';', Qt::SkipEmptyParts);
    EXPECT_TRUE(types.contains("x-scheme-handler/tessorin"));
    EXPECT_EQ(entry.value("Exec"), "tessorin %U");
    const QString all = AlbumListViewModel::nameFilters().first();
    const QRegularExpression pattern(QStringLiteral("\\*\\.([a-z0-9]+)"));
    int checked = 0;
    for (auto it = pattern.globalMatch(all); it.hasNext(); ++checked) {
        const QString extension = it.next().captured(1);
        const QMimeType type = QMimeDatabase().mimeTypeForFile("x." + extension, QMimeDatabase::MatchExtension);
        EXPECT_TRUE(types.contains(type.name())) << extension.toStdString() << " is " << type.name().toStdString();
    }
    EXPECT_GT(checked, 15);
}

// --- links and navigation

TEST_F(ShellTest, LinkHostOpensTheAlbumOfThatNameWhateverTheCase) {
    AppModels models;
    models.albumList->openPaths(samples(2));
    models.app->back();
    ASSERT_EQ(models.app->screens(), QStringList{"albums"});
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 0) << "leaving the group by back resets the album";

    QSignalSpy opened(models.albumList, &AlbumListViewModel::albumOpened);
    models.app->openUrl(QStringLiteral("tessorin://FROM%20Files/ignored/path?x#y"));
    EXPECT_EQ(opened.count(), 1);
    EXPECT_EQ(models.app->screens(), (QStringList{"albums", "group"}));
    EXPECT_EQ(models.group->count(), 2);
    EXPECT_FALSE(appState().pendingUrlAlbumName.has_value()) << "acted on once";

    // A name that matches nothing leaves the list on screen.
    models.app->openUrl(QStringLiteral("tessorin://Holidays"));
    EXPECT_EQ(opened.count(), 1);
    EXPECT_EQ(models.app->screens(), QStringList{"albums"});
    EXPECT_FALSE(appState().pendingUrlAlbumName.has_value());

    // No host: logged, and the root is still rebuilt.
    models.app->openGroup();
    QSignalSpy rebuilt(models.app, &AppController::rootRebuilt);
    models.app->openUrl(QStringLiteral("tessorin:"));
    EXPECT_TRUE(logged("Invalid URL or album path missing"));
    EXPECT_EQ(rebuilt.count(), 1);
    EXPECT_EQ(models.app->screens(), QStringList{"albums"});
    EXPECT_EQ(opened.count(), 1);
}

TEST_F(ShellTest, CommandLineOpensFilesAndLinks) {
    AppModels models;
    QTemporaryDir dir;
    const QStringList files = samples(2);
    models.app->openArguments({files[0], QUrl::fromLocalFile(files[1]).toString(), dir.filePath("gone.jpg")});
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 2);
    EXPECT_EQ(models.app->screens(), (QStringList{"albums", "group"}));
    EXPECT_TRUE(logged("not a file: " + dir.filePath("gone.jpg")));

    models.app->openArguments({"tessorin://from files"});
    EXPECT_EQ(models.app->screens(), (QStringList{"albums", "group"}));
    // Starting and browsing read the defaults and write nothing.
    EXPECT_TRUE(QSettings(Settings::organisation, Settings::application).allKeys().isEmpty());
}

TEST_F(ShellTest, NavigationStacksOnAPhoneAndSplitsOnATablet) {
    AppModels models;
    AppController& app = *models.app;
    app.setWindowWidth(390);
    models.albumList->openPaths(samples(3));
    models.group->show(1);
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group", "detail"}));
    EXPECT_EQ(models.group->selectedIndex(), -1);
    // Back from the detail: the group marks the item it comes back from.
    app.back();
    EXPECT_EQ(models.group->selectedIndex(), 1);
    models.group->show(1);

    // Widening the window hands the detail to the right-hand side.
    QSignalSpy popped(&app, &AppController::popped);
    app.setWindowWidth(1180);
    EXPECT_TRUE(app.pad());
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group"}));
    EXPECT_EQ(popped.count(), 1);
    models.group->show(2);
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group"}));
    EXPECT_EQ(models.group->selectedIndex(), 2);

    // Settings over the list; leaving them reloads the list.
    app.rebuildRoot();
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 3) << "rebuilding is no back: the album stays";
    QSignalSpy closed(models.settings, &SettingsViewModel::closed);
    app.openSettings();
    app.openAbout();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "settings", "about"}));
    app.back();
    app.back();
    app.back();
    EXPECT_EQ(app.screens(), QStringList{"albums"});
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(ShellTest, BackToTheAlbumListLeavesTheSplitViewsDetailEmpty) {
    AppModels models;
    models.app->setWindowWidth(1180);
    models.albumList->openPaths(samples(3));
    models.group->show(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return models.detailTable->rowCount() > 0 && models.tagTable->rowCount() > 0; }, 20'000));
    EXPECT_EQ(models.detail->strip()->rowCount(), 3);

    models.app->back();
    EXPECT_EQ(models.app->screens(), QStringList{"albums"});
    QTest::qWait(50);
    EXPECT_EQ(models.detail->strip()->rowCount(), 0);
    EXPECT_EQ(models.detailTable->rowCount(), 0);
    EXPECT_EQ(models.tagTable->rowCount(), 0);
}

TEST_F(ShellTest, WideningTheWindowOverTheGroupShowsItsItemBeside) {
    AppModels models;
    models.app->setWindowWidth(390);
    models.albumList->openPaths(samples(3));
    EXPECT_EQ(models.app->screens(), (QStringList{"albums", "group"}));
    EXPECT_FALSE(TSEnvironment::currentAlbum()->hasValidIndex());
    models.app->setWindowWidth(1180);
    EXPECT_TRUE(TSEnvironment::currentAlbum()->hasValidIndex());
    EXPECT_EQ(models.group->selectedIndex(), 0);
}

// --- group

TEST_F(ShellTest, GroupRowsAndGridPlaces) {
    const QStringList files = samples(9);
    ASSERT_EQ(files.size(), 9);
    GroupViewModel group;
    for (int n : {0, 1, 4, 5, 8, 9}) {
        auto album = std::make_shared<TSFilesAlbum>();
        TSEnvironment::setCurrentAlbum(album);
        album->loadBookmarks(files.mid(0, n));
        group.attach();
        Settings::setFlag(SettingsFlag::gridView, false);
        EXPECT_EQ(group.rowCount(), n);
        Settings::setFlag(SettingsFlag::gridView, true);
        EXPECT_EQ(group.rowCount(), (n + 3) / 4) << n;
        if (n == 0) continue;
        // The last grid row holds 1 to 4 thumbnails.
        const QVariantList last = cell(group, group.rowCount() - 1, GroupViewModel::ItemsRole).toList();
        EXPECT_EQ(last.size(), n % 4 == 0 ? 4 : n % 4) << n;
        EXPECT_EQ(last.constLast().toMap().value("index"), n - 1);
    }

    group.select(7);
    EXPECT_EQ(group.selectedRow(), 1);
    EXPECT_EQ(group.selectedColumn(), 3);
    EXPECT_DOUBLE_EQ(GroupViewModel::gridRowHeight(398), 100.0);

    // The list cell: the file's name, its date and time, a thumbnail source that names the file.
    group.toggleView();
    EXPECT_FALSE(Settings::flag(SettingsFlag::gridView));
    EXPECT_EQ(group.toggleSymbol(), "square.grid.2x2");
    EXPECT_EQ(group.rowOf(7), 7);
    EXPECT_EQ(group.title(), "From files");
    EXPECT_EQ(cell(group, 2, GroupViewModel::NameRole), QFileInfo(files[2]).fileName());
    EXPECT_FALSE(cell(group, 2, GroupViewModel::DateRole).toString().isEmpty());
    EXPECT_FALSE(cell(group, 2, GroupViewModel::TimeRole).toString().isEmpty());
    const QString source = cell(group, 2, GroupViewModel::ThumbnailRole).toString();
    EXPECT_TRUE(source.startsWith("image://thumb/"));
    EXPECT_EQ(QUrl::fromPercentEncoding(source.mid(14).toUtf8()), files[2]);
    group.toggleView();
    EXPECT_EQ(group.toggleSymbol(), "list.bullet");
}

TEST_F(ShellTest, ShowingAnItem) {
    BeginCounter counter;
    TSEnvironment::observable().addObserver(&counter);
    GroupViewModel group;
    QSignalSpy detail(&group, &GroupViewModel::detailRequested);

    // An empty album shows nothing and moves nowhere.
    auto empty = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(empty);
    group.attach();
    group.show(0);
    EXPECT_EQ(counter.begins, 0);
    EXPECT_EQ(detail.count(), 0);
    EXPECT_FALSE(empty->hasValidIndex());

    // A phone opens the detail; the index is clamped by the album.
    auto album = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    album->loadBookmarks(samples(3));
    group.attach();
    group.show(7);
    EXPECT_EQ(counter.begins, 1);
    EXPECT_EQ(album->displayedIndex, 2);
    EXPECT_EQ(detail.count(), 1);

    // A tablet shows the current item at once when the group appears, and marks what is shown.
    appState().isPad = true;
    group.attach();
    EXPECT_EQ(group.selectedIndex(), 2);
    EXPECT_EQ(detail.count(), 1);
    // Paged from the detail beside, the mark follows once the item is in.
    album->setActualIndex(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return group.selectedIndex() == 0; }));

    // Back resets the album: the screens are told, the environment has none.
    group.leave();
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 0);
    EXPECT_EQ(group.rowCount(), 0);
    group.show(0);
    EXPECT_EQ(detail.count(), 1);
}

// --- settings

TEST_F(ShellTest, SettingsSwitchesByTag) {
    SettingsViewModel settings;
    QList<int> tags;
    QStringList keys;
    for (const auto& row : SettingsViewModel::rows()) {
        tags << row.tag();
        keys << row.key;
    }
    EXPECT_EQ(tags, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 107, 207}));
    EXPECT_EQ(keys, (QStringList{"", "mostRecentFirst", "human", "showLivePhotos", "video", "", "saveInTessorin",
                                 "saveChangesIn", "saveChangesIn", "sidecarBaseName"}));
    EXPECT_EQ(cell(settings, 2, SettingsViewModel::OnRole), true);
    EXPECT_EQ(cell(settings, 0, SettingsViewModel::KindRole), "disclosure");

    QSignalSpy human(&settings, &SettingsViewModel::humanChanged);
    QSignalSpy changed(&settings, &QAbstractItemModel::dataChanged);
    settings.setSwitch(2, false);
    EXPECT_FALSE(Settings::flag(SettingsFlag::human));
    EXPECT_EQ(cell(settings, 2, SettingsViewModel::OnRole), false);
    EXPECT_EQ(human.count(), 1);
    EXPECT_EQ(changed.count(), 1);
    settings.setSwitch(4, false);
    EXPECT_FALSE(Settings::flag(SettingsFlag::video));
    EXPECT_TRUE(Settings::flag(SettingsFlag::showLivePhotos));
    EXPECT_EQ(human.count(), 1);
    EXPECT_TRUE(logged("Switch: 2 is false"));
    EXPECT_TRUE(logged("Switch: 4 is false"));

    // Tags of no switch change nothing.
    for (int tag : {0, 5, 102, -1}) settings.setSwitch(tag, false);
    EXPECT_EQ(QSettings(Settings::organisation, Settings::application).allKeys(), (QStringList{"human", "video"}));

    // "Save changes in": the photo until an XMP sidecar is chosen; one choice holds at a time.
    EXPECT_EQ(cell(settings, 7, SettingsViewModel::KindRole), "choice");
    EXPECT_EQ(cell(settings, 7, SettingsViewModel::OnRole), true);
    EXPECT_EQ(cell(settings, 8, SettingsViewModel::OnRole), false);
    settings.setSwitch(107, true);
    EXPECT_EQ(Settings::value("saveChangesIn"), "sidecar");
    EXPECT_EQ(cell(settings, 7, SettingsViewModel::OnRole), false);
    EXPECT_EQ(cell(settings, 8, SettingsViewModel::OnRole), true);
    settings.setSwitch(107, false);  // left only by choosing the other
    EXPECT_EQ(Settings::value("saveChangesIn"), "sidecar");
    settings.setSwitch(7, true);
    EXPECT_EQ(Settings::value("saveChangesIn"), "photo");
    EXPECT_EQ(cell(settings, 9, SettingsViewModel::KindRole), "switch");

    QSignalSpy about(&settings, &SettingsViewModel::aboutRequested);
    settings.select(0);
    settings.select(2);
    EXPECT_EQ(about.count(), 1);
}

// --- colour scheme

TEST_F(ShellTest, ColourSchemeFollowsTheDesktopUnlessTheUserChose) {
    ColorScheme scheme;
    QSignalSpy changed(&scheme, &ColorScheme::changed);
    EXPECT_EQ(scheme.preference(), "system");
    EXPECT_FALSE(scheme.dark()) << "no word from the desktop: light";
    scheme.setDesktopPreference(ColorScheme::prefersDark);
    EXPECT_TRUE(scheme.dark());
    EXPECT_EQ(changed.count(), 1);
    scheme.setDesktopPreference(ColorScheme::prefersLight);
    EXPECT_FALSE(scheme.dark());
    scheme.setDesktopPreference(ColorScheme::noPreference);
    EXPECT_FALSE(scheme.dark());

    // The user's choice wins over the desktop's and is kept.
    scheme.setDesktopPreference(ColorScheme::prefersLight);
    scheme.setPreference("dark");
    EXPECT_TRUE(scheme.dark());
    EXPECT_TRUE(ColorScheme().dark()) << "read back from the settings";
    scheme.setPreference("light");
    scheme.setDesktopPreference(ColorScheme::prefersDark);
    EXPECT_FALSE(scheme.dark());
    scheme.setPreference("system");
    EXPECT_TRUE(scheme.dark());
}

// The desktop's portal as far as the colour scheme goes, on a bus of the test's own: Read answers
// as the portal does (a variant in a variant), SettingChanged is sent by the test.
class PortalStandIn : public QDBusVirtualObject {
public:
    uint scheme = ColorScheme::prefersDark;
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.interface() != QLatin1String("org.freedesktop.portal.Settings") || message.member() != QLatin1String("Read"))
            return false;
        bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(scheme))))));
        return true;
    }
};

TEST_F(ShellTest, ColourSchemeFollowsThePortalAsItChanges) {
    QTemporaryDir busFolder;
    QProcess daemon;
    daemon.start(QStringLiteral("dbus-daemon"),
                 {"--session", "--nofork", "--print-address", "--address=unix:dir=" + busFolder.path()});
    ASSERT_TRUE(daemon.waitForReadyRead(30'000)) << "dbus-daemon did not start";
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    {
        QDBusConnection desktop = QDBusConnection::connectToBus(address, QStringLiteral("desktop"));
        ASSERT_TRUE(desktop.isConnected());
        PortalStandIn portal;
        const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
        ASSERT_TRUE(desktop.registerVirtualObject(path, &portal));
        ASSERT_TRUE(desktop.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));

        ColorScheme scheme(nullptr, QDBusConnection::connectToBus(address, QStringLiteral("app")));
        EXPECT_TRUE(QTest::qWaitFor([&] { return scheme.dark(); })) << "the portal's answer to Read";

        auto tell = [&](const QString& group, const QVariant& value) {
            QDBusMessage changed = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.portal.Settings"),
                                                              QStringLiteral("SettingChanged"));
            changed << group << QStringLiteral("color-scheme") << QVariant::fromValue(QDBusVariant(value));
            desktop.send(changed);
        };
        // GNOME's own key comes first and is not ours to read.
        tell(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("prefer-light"));
        tell(QStringLiteral("org.freedesktop.appearance"), uint(ColorScheme::prefersLight));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !scheme.dark(); })) << "switched live";
        tell(QStringLiteral("org.freedesktop.appearance"), uint(ColorScheme::prefersDark));
        EXPECT_TRUE(QTest::qWaitFor([&] { return scheme.dark(); }));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("app"));
    QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
    daemon.kill();
    daemon.waitForFinished();
}

TEST_F(ShellTest, BothSchemesAreLegible) {
    // WCAG's ratio, by hand: black on white is 21, a colour on itself 1.
    EXPECT_NEAR(ColorScheme::contrast(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(ColorScheme::contrast(QColor(0x1E, 0x6F, 0xD9), QColor(0x1E, 0x6F, 0xD9)), 1.0, 1e-9);
    ColorScheme scheme;
    for (const char* choice : {"light", "dark"}) {
        SCOPED_TRACE(choice);
        scheme.setPreference(choice);
        for (const QColor& ground : {scheme.card(), scheme.groupedBackground(), scheme.bar(), scheme.background()}) {
            // Body text at least 7:1, the smaller grey text and the tinted buttons 4.5:1.
            EXPECT_GE(ColorScheme::contrast(scheme.text(), ground), 7.0);
            EXPECT_GE(ColorScheme::contrast(scheme.secondaryText(), ground), 4.5);
            EXPECT_GE(ColorScheme::contrast(scheme.destructive(), ground), 4.5);
            EXPECT_GE(ColorScheme::contrast(scheme.icon(), ground), 3.0);
        }
        // Tinted buttons and links sit on cards and bars.
        EXPECT_GE(ColorScheme::contrast(scheme.tint(), scheme.card()), 4.5);
        EXPECT_GE(ColorScheme::contrast(scheme.tint(), scheme.bar()), 4.5);
        // A switch's white knob against the track that is off.
        EXPECT_GE(ColorScheme::contrast(Qt::white, scheme.fill()), scheme.dark() ? 3.0 : 1.2);
    }
}

}  // namespace
