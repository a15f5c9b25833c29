// SPDX-License-Identifier: GPL-3.0-or-later
// Every QML file of the app loads, and the screens run through their states, without a single
// warning: a binding to a missing property, a type error or a failed import is only ever a
// warning at run time, so here any warning fails.
#include "AlbumListViewModel.h"
#include "AppController.h"
#include "AppModels.h"
#include "ColorScheme.h"
#include "DetailViewModel.h"
#include "EditViewModel.h"
#include "LocationModifierViewModel.h"
#include "ToolBarModel.h"
#include "GroupViewModel.h"
#include "QmlSetup.h"
#include "Settings.h"
#include "TSMapView.h"
#include "TSAlbum.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <functional>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QQmlContext>
#include <QDirIterator>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

namespace {

QStringList& warnings() {
    static QStringList list;
    return list;
}
QtMessageHandler previousHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg) warnings() << message;
    previousHandler(type, context, message);
}

AppModels* models = nullptr;
QQmlEngine* engine = nullptr;

// The cards of the visible popups that are drawn through a layer effect: the software renderer
// leaves such a card out, and the popup's text shows over the screen behind.
int cardsLeftOut(QQuickItem* item) {
    int count = 0;
    if (QByteArrayView(item->metaObject()->className()) == "QQuickOverlay") {
        for (QQuickItem* child : item->childItems()) {
            auto* card = child->property("background").value<QQuickItem*>();
            auto* layer = card ? card->property("layer").value<QObject*>() : nullptr;
            count += child->isVisible() && layer && layer->property("enabled").toBool();
        }
        return count;
    }
    for (QQuickItem* child : item->childItems()) count += cardsLeftOut(child);
    return count;
}


// The interactive items a screen reader reaches under `iface` that have no name, each as its role
// and class; items that are hidden or off the window are not read out and are left alone.
QStringList namelessControls(QAccessibleInterface* iface, int depth = 0) {
    QStringList out;
    if (!iface || !iface->isValid() || depth > 60) return out;
    static const QList<QAccessible::Role> interactive{
        QAccessible::Button,   QAccessible::PushButton, QAccessible::CheckBox,  QAccessible::RadioButton,
        QAccessible::ComboBox, QAccessible::MenuItem,   QAccessible::ListItem,  QAccessible::EditableText,
        QAccessible::Slider,   QAccessible::SpinBox,    QAccessible::ButtonMenu, QAccessible::Link,
        QAccessible::Cell,     QAccessible::PageTab};
    const QAccessible::State state = iface->state();
    if (state.invisible || state.offscreen) return out;
    if (interactive.contains(iface->role()) && iface->text(QAccessible::Name).trimmed().isEmpty()) {
        QObject* object = iface->object();
        out << QStringLiteral("role %1, %2 %3, text \"%4\"")
                   .arg(int(iface->role()))
                   .arg(object ? QString::fromLatin1(object->metaObject()->className()) : QString())
                   .arg(object ? object->objectName() : QString())
                   .arg(object ? object->property("text").toString() : QString())
               + QStringLiteral(" in %1").arg(object && qmlContext(object) ? qmlContext(object)->baseUrl().toString() : QString());
    }
    for (int i = 0; i < iface->childCount(); ++i) out << namelessControls(iface->child(i), depth + 1);
    return out;
}

QStringList namelessControls(QQuickWindow* window) {
    QStringList out = namelessControls(QAccessible::queryAccessibleInterface(window));
    out.removeDuplicates();
    return out;
}

class QmlLoadTest : public ::testing::Test {
protected:
    void SetUp() override {
        // The maps draw offline: no tile server.
        Settings::setValue(TSMapView::standardTilesKey, "none");
        models->app->rebuildRoot();
        TSEnvironment::setCurrentAlbum(nullptr);
        warnings().clear();
    }
    void TearDown() override {
        QTest::qWait(50);
        EXPECT_TRUE(warnings().isEmpty()) << warnings().join('\n').toStdString();
    }
    // Lets transitions, loading and thumbnails run.
    static void settle() { QTest::qWait(400); }
    // The app's window at a size, shown and active; nothing (and a failure) when it can't be made.
    std::unique_ptr<QQuickWindow> openMain(int width, int height) {
        QQmlComponent component(engine, QUrl("qrc:/qml/Main.qml"));
        // Qt 6.4 crashes when a component with errors is created with initial properties.
        if (component.isError()) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        std::unique_ptr<QObject> root(component.createWithInitialProperties({{"width", width}, {"height", height}}));
        std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow*>(root.get()));
        if (!window) {
            ADD_FAILURE() << "Main.qml made no window: " << component.errorString().toStdString();
            return nullptr;
        }
        root.release();
        window->requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        return window;
    }

};

TEST_F(QmlLoadTest, EveryFileLoads) {
    QStringList files;
    for (QDirIterator it(":/qml", {"*.qml"}, QDir::Files); it.hasNext();) files << it.next();
    files.sort();
    ASSERT_TRUE(files.contains(":/qml/Main.qml"));
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        QQmlComponent component(engine, QUrl("qrc" + file));
        if (component.isError()) {
            ADD_FAILURE() << component.errorString().toStdString();
            continue;
        }
        std::unique_ptr<QObject> object(component.create());
        if (!object) {
            // A building block that needs its data from a view (a delegate) can't stand alone;
            // it is created by the screens in the test below.
            EXPECT_TRUE(component.errorString().contains("Required property")) << component.errorString().toStdString();
            continue;
        }
        if (auto* window = qobject_cast<QQuickWindow*>(object.get())) {
            window->show();
            settle();
            window->close();
            continue;
        }
        // A page or a part of one: shown in a phone-sized window.
        QQuickWindow window;
        window.resize(390, 844);
        if (auto* item = qobject_cast<QQuickItem*>(object.get())) {
            item->setParentItem(window.contentItem());
            item->setSize(QSizeF(390, 844));
        } else {
            object->setProperty("parent", QVariant::fromValue(window.contentItem()));
        }
        window.show();
        settle();
        object.reset();
    }
}

TEST_F(QmlLoadTest, ScreensRunThroughTheirStates) {
    QStringList files = testsupport::corpusFiles().mid(0, 5);
    files << testsupport::movies().first();
    const std::unique_ptr<QQuickWindow> owner = openMain(390, 844);
    ASSERT_TRUE(owner);
    QQuickWindow* window = owner.get();
    settle();

    AppController& app = *models->app;
    EXPECT_FALSE(app.pad());
    // The entry that opens files shows the file dialog (Qt's own where the platform has none).
    models->albumList->select(0);
    settle();
    QObject* picker = window->findChild<QObject*>("documentPicker");
    ASSERT_TRUE(picker);
    EXPECT_TRUE(picker->property("visible").toBool());
    QMetaObject::invokeMethod(picker, "reject");
    settle();
    // A dialog's card is drawn, not left out by the software renderer.
    QObject* unavailable = window->findChild<QObject*>("libraryUnavailable");
    ASSERT_TRUE(unavailable);
    QMetaObject::invokeMethod(unavailable, "open");
    settle();
    EXPECT_EQ(cardsLeftOut(window->contentItem()), 0);
    QMetaObject::invokeMethod(unavailable, "close");
    settle();
    models->albumList->openPaths(files);
    settle();
    models->group->toggleView();
    settle();
    models->group->show(5);
    settle();
    models->group->toggleView();
    app.back();
    models->group->show(1);
    settle();
    // Escape goes back, screen by screen, from whatever has the focus.
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group"}));
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    EXPECT_EQ(app.screens(), QStringList{"albums"});
    app.openSettings();
    settle();
    app.openAbout();
    settle();
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "settings"}));

    // The same as a tablet: the detail beside the column.
    window->resize(1180, 820);
    settle();
    EXPECT_TRUE(app.pad());
    models->albumList->select(1);
    settle();
    models->group->show(0);
    settle();
    models->group->toggleView();
    settle();
    models->group->show(3);
    settle();
    // Beside the list, the arrow keys page through the items.
    QTest::keyClick(window, Qt::Key_Right);
    settle();
    EXPECT_EQ(TSEnvironment::currentAlbum()->actualIndex(), 4);
    app.back();
    settle();
    window->close();
}


TEST_F(QmlLoadTest, EveryInteractiveItemOfEveryScreenHasAName) {
    QAccessible::setActive(true);
    QStringList files = testsupport::corpusFiles().mid(0, 3);
    files << testsupport::movies().first();
    const std::unique_ptr<QQuickWindow> owner = openMain(390, 844);
    ASSERT_TRUE(owner);
    QQuickWindow* window = owner.get();
    settle();
    auto expectNamed = [&](const char* screen) {
        settle();
        const QStringList nameless = namelessControls(window);
        EXPECT_TRUE(nameless.isEmpty()) << screen << ":\n" << nameless.join('\n').toStdString();
    };
    AppController& app = *models->app;

    expectNamed("album list");
    models->albumList->openPaths(files);
    expectNamed("group as a list");
    models->group->toggleView();
    expectNamed("group as a grid");
    models->group->toggleView();
    models->group->show(0);
    expectNamed("detail");
    models->detail->toggleTables();
    expectNamed("all tags");
    models->detail->toggleTables();

    ASSERT_TRUE(models->edit->openCurrent());
    expectNamed("edit screen");
    for (const char* page : {"date", "rotation", "shift", "track", "iptc", "location"}) {
        emit models->edit->pushRequested(page);
        expectNamed(page);
        QTest::keyClick(window, Qt::Key_Escape);
        settle();
    }
    models->edit->close();
    settle();
    app.back();
    app.back();
    settle();
    app.openSettings();
    expectNamed("settings");
    app.openAbout();
    expectNamed("about");
    app.back();
    app.back();

    // A tablet shows the list and the detail at once.
    window->resize(1180, 820);
    models->albumList->select(1);
    settle();
    models->group->show(1);
    expectNamed("tablet");
    window->close();
    QAccessible::setActive(false);
}

// The rough edges a new user met: the strip opens on the selected item, in the middle; the
// place search runs as the user types; the location sheet's rows end at its bar; every switch
// draws a knob of its own, which the software renderer shows.
TEST_F(QmlLoadTest, StripSearchSheetAndSwitchesAsAUserSeesThem) {
    QStringList files = testsupport::corpusFiles().mid(0, 8);
    const std::unique_ptr<QQuickWindow> owner = openMain(1180, 820);
    ASSERT_TRUE(owner);
    QQuickWindow* window = owner.get();
    settle();

    // An album opened on its sixth item: the strip shows it in the middle.
    models->albumList->openPaths(files);
    settle();
    models->group->show(5);
    settle();
    auto* strip = window->findChild<QQuickItem*>("strip");
    ASSERT_TRUE(strip);
    auto* current = strip->property("currentItem").value<QQuickItem*>();
    ASSERT_TRUE(current);
    const double middle = current->x() - strip->property("contentX").toDouble() + current->width() / 2;
    EXPECT_NEAR(middle, strip->width() / 2, 2.0);

    // The location screen of an edit: typing a place's name is enough, no Enter.
    ASSERT_TRUE(models->edit->openCurrent());
    settle();
    emit models->edit->pushRequested("location");
    settle();
    auto* search = window->findChild<QQuickItem*>("placeSearch");
    ASSERT_TRUE(search);
    search->forceActiveFocus();
    for (char c : std::string("Zermatt")) QTest::keyClick(window, c);
    const auto found = [&] {
        for (const QVariant& section : models->location->sections())
            for (const QVariant& row : section.toMap().value("rows").toList())
                if (row.toMap().value("title").toString().contains("Zermatt")) return true;
        return false;
    };
    EXPECT_TRUE(QTest::qWaitFor(found, 5000));

    // Below the rows, the sheet's bar with "Done" shows its own colour, whatever the list holds.
    auto* rows = window->findChild<QQuickItem*>("placeRows");
    ASSERT_TRUE(rows);
    const QImage shot = window->grabWindow();
    const QPointF below = rows->mapToScene(QPointF(rows->width() / 2, rows->height() + 6));
    const double ratio = shot.width() / double(window->width());
    EXPECT_EQ(shot.pixelColor((below * ratio).toPoint()), QColor(models->colors->bar()));

    // Every switch of the edit screen and the settings has a knob of ours.
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    auto knobs = [&](const char* screen) {
        int switches = 0;
        QList<QQuickItem*> items{window->contentItem()};
        for (int i = 0; i < items.size(); ++i) items << items[i]->childItems();
        for (QQuickItem* item : items) {
            if (!item->inherits("QQuickSwitch") || !item->isVisible()) continue;
            ++switches;
            auto* indicator = item->property("indicator").value<QQuickItem*>();
            EXPECT_TRUE(indicator && indicator->findChild<QQuickItem*>("switchKnob")) << screen;
        }
        return switches;
    };
    EXPECT_GT(knobs("edit screen"), 0);
    models->edit->close();
    settle();
    models->app->openSettings();
    settle();
    EXPECT_GT(knobs("settings"), 0);
    window->close();
}

// The keyboard alone: arrows and Enter open an album and an item, Escape goes back.
TEST_F(QmlLoadTest, TheKeyboardAloneOpensAnAlbumAndAnItem) {
    const std::unique_ptr<QQuickWindow> owner = openMain(390, 844);
    ASSERT_TRUE(owner);
    QQuickWindow* window = owner.get();
    AppController& app = *models->app;
    // Files picked earlier: the list offers "Files", then their album.
    models->albumList->openPaths(testsupport::corpusFiles().mid(0, 3));
    settle();
    app.back();
    settle();
    ASSERT_EQ(app.screens(), QStringList{"albums"});

    QTest::keyClick(window, Qt::Key_Down);
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group"}));
    QTest::keyClick(window, Qt::Key_Down);
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group", "detail"}));
    EXPECT_EQ(TSEnvironment::currentAlbum()->actualIndex(), 1);
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    EXPECT_EQ(app.screens(), (QStringList{"albums", "group"}));
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    ASSERT_EQ(app.screens(), (QStringList{"albums", "group", "detail"}));

    // The edit screen's rows that open a page are on the Tab road too: the original date opens
    // its picker by Return. (Ctrl+E opens the screen only on a library item.)
    ASSERT_TRUE(models->edit->openCurrent());
    auto* stack = window->findChild<QQuickItem*>("editStack");
    ASSERT_TRUE(stack);
    ASSERT_TRUE(QTest::qWaitFor([&] { return stack->isVisible(); }, 5000));
    settle();
    const auto focusedName = [&] {
        QQuickItem* item = window->activeFocusItem();
        QAccessibleInterface* a = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        return a ? a->text(QAccessible::Name) : QString();
    };
    const auto tabTo = [&](const std::function<bool(QQuickItem*)>& wanted) {
        for (int tabs = 0; tabs < 12; ++tabs) {
            if (window->activeFocusItem() && wanted(window->activeFocusItem())) return true;
            QTest::keyClick(window, Qt::Key_Tab);
        }
        return false;
    };
    ASSERT_TRUE(tabTo([&](QQuickItem*) { return focusedName().contains("Original Date"); }))
        << "Tab never reached the original date";
    // The ring shows where the keys are.
    auto* ring = window->findChild<QQuickItem*>("focusRing");
    ASSERT_TRUE(ring);
    QQuickItem* focused = window->activeFocusItem();
    EXPECT_TRUE(ring->isVisible());
    EXPECT_EQ(ring->mapRectToScene(QRectF(0, 0, ring->width(), ring->height())),
              focused->mapRectToScene(QRectF(0, 0, focused->width(), focused->height())));
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    EXPECT_EQ(stack->property("depth").toInt(), 2);

    // Return on the own date opens the wheels; a wheel keeps the keys while the page redraws
    // after each turn, so two presses move the day by two.
    QObject* dates = models->edit->property("dateScreen").value<QObject*>();
    ASSERT_TRUE(dates);
    ASSERT_TRUE(tabTo([](QQuickItem* item) { return item->property("cellData").toMap().value("kind") == "date"; }));
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    ASSERT_TRUE(tabTo([](QQuickItem* item) { return item->inherits("QQuickTumbler"); })) << "no wheel takes the keys";
    const QDateTime before = dates->property("pickerDate").toDateTime();
    QTest::keyClick(window, Qt::Key_Down);
    settle();
    QTest::keyClick(window, Qt::Key_Down);
    settle();
    EXPECT_EQ(before.daysTo(dates->property("pickerDate").toDateTime()), 2);

    // Back on the edit page, Ctrl+S asks how to save.
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    ASSERT_EQ(stack->property("depth").toInt(), 1);
    QTest::keyClick(window, Qt::Key_S, Qt::ControlModifier);
    auto* sheet = window->findChild<QObject*>("saveSheet");
    ASSERT_TRUE(sheet);
    ASSERT_TRUE(QTest::qWaitFor([&] { return sheet->property("visible").toBool(); }, 5000)) << "Ctrl+S opened no save question";
    // Its first answer has the keys, so Return saves a new picture.
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->activeFocusItem() && window->activeFocusItem()->property("text") == "New Picture"; }, 2000))
        << (window->activeFocusItem() ? window->activeFocusItem()->metaObject()->className() : "nothing") << " has the keys";
    window->close();
}

TEST_F(QmlLoadTest, TwoFingersSpreadApartZoomTheMapIn) {
    QQmlComponent component(engine, QUrl("qrc:/qml/MapView.qml"));
    ASSERT_FALSE(component.isError()) << component.errorString().toStdString();
    std::unique_ptr<QObject> object(component.create());
    auto* item = qobject_cast<QQuickItem*>(object.get());
    ASSERT_TRUE(item);
    QQuickWindow window;
    window.resize(400, 400);
    item->setParentItem(window.contentItem());
    item->setSize(QSizeF(400, 400));
    item->setProperty("place", QVariantMap{{"latitude", 45.5}, {"longitude", 9.2}, {"title", "Milan"}});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* map = item->property("map").value<TSMapView*>();
    ASSERT_TRUE(map);
    const double before = map->zoom();

    // Two fingers 100 pixels apart about the middle, spread to 400 in small steps.
    static QPointingDevice* touch = QTest::createTouchDevice();
    QTest::touchEvent(&window, touch).press(0, QPoint(150, 200)).press(1, QPoint(250, 200));
    QTest::qWait(20);
    for (int spread = 55; spread <= 200; spread += 5) {
        QTest::touchEvent(&window, touch).move(0, QPoint(200 - spread, 200)).move(1, QPoint(200 + spread, 200));
        QTest::qWait(10);
    }
    QTest::touchEvent(&window, touch).release(0, QPoint(0, 200)).release(1, QPoint(400, 200));
    QTest::qWait(50);
    // Four times as far apart: two zoom levels in, less what the handler's threshold swallowed
    // at the start.
    EXPECT_GT(map->zoom() - before, 1.3);
    EXPECT_LE(map->zoom() - before, 2.0 + 1e-9);
    EXPECT_TRUE(map->property("movedAway").toBool());
    window.close();
}

}  // namespace

int main(int argc, char** argv) {
    // Also when the test runner lists the tests, where no display is set.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The renderer the app's screenshots and a window without OpenGL use.
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND")) qputenv("QT_QUICK_BACKEND", "software");
    // The models read the settings as they are built: never the user's.
    testsupport::Isolation isolation;
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    previousHandler = qInstallMessageHandler(collect);
    appqml::setStyle();
    AppModels appModels;
    appModels.registerWithQml();
    QQmlEngine qmlEngine;
    appqml::setUpEngine(qmlEngine);
    models = &appModels;
    engine = &qmlEngine;
    return RUN_ALL_TESTS();
}
