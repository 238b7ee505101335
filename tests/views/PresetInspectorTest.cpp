#include "views/PresetInspector.h"

#include "services/PresetTileService.h"
#include "views/PictureFixture.h"
#include "views/PresetImportView.h"
#include "views/PresetStrengthView.h"
#include "views/ResettingSlider.h"
#include "views/SearchLine.h"
#include "views/TestPresets.h"
#include "views/WindowKeys.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>

namespace kelvara {

namespace {

using Entry = PresetListLayout::Entry;
using Step = PresetListLayout::Step;

class PresetInspectorTest : public PictureFixture {
protected:
    PresetListView& show(const QSize& size = {300, 700}) {
        open();
        m_inspector = std::make_unique<PresetInspector>(*m_library, m_presets.store, m_thumbnails, m_tiles);
        m_inspector->resize(size);
        m_inspector->show();
        QCoreApplication::processEvents();
        settle();
        m_list = m_inspector->findChild<PresetListView*>();
        return *m_list;
    }
    /// Where the entry is; fails when it isn't there.
    [[nodiscard]] std::size_t at(const QString& title) const {
        for (std::size_t i = 0; i < m_list->listLayout().entries().size(); ++i) {
            if (m_list->title(i) == title) return i;
        }
        ADD_FAILURE() << title.toStdString();
        return 0;
    }
    [[nodiscard]] QPoint middle(const QString& title) const { return m_list->entryRect(at(title)).center(); }
    void click(const QString& title, const QPoint& offset = {}) const {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, middle(title) + offset);
    }
    void key(Qt::Key key) const { QTest::keyClick(m_list, key); }
    [[nodiscard]] PresetStore& store() { return m_presets.store; }
    [[nodiscard]] QString selected() {
        const auto preset = store().selectedPreset();
        return preset ? QString::fromStdString(preset->title) : QString{};
    }
    [[nodiscard]] QString active() {
        return store().activePreset() ? QString::fromStdString(store().activePreset()->title) : QString{};
    }

    TestPresets m_presets{services()};
    PresetTileService m_tiles{m_rendering, m_main};
    std::unique_ptr<PresetInspector> m_inspector;
    PresetListView* m_list = nullptr;
};

} // namespace

TEST(PresetListLayoutTest, tilesFillTheWidthInSectionsThatFold) {
    const std::vector<PresetListLayout::Section> sections{{3, true}, {200, false}, {5, true}};
    for (const auto& [width, columns] : {std::pair{220, 2}, {284, 2}, {410, 3}, {900, 6}}) {
        const PresetListLayout layout{width, 20, sections};
        EXPECT_EQ(layout.columns(), columns) << width;
        ASSERT_EQ(layout.entries().size(), 1 + 3 + 3 + 5);
        for (std::size_t i = 0; i < layout.entries().size(); ++i) {
            const auto& rect = layout.entries()[i].rect;
            EXPECT_LE(rect.right(), width - 1);
            EXPECT_EQ(layout.indexAt(rect.center()), i);
            const auto seen = layout.visible(rect.top(), rect.height());
            EXPECT_TRUE(seen.begin <= i && i < seen.end);
        }
        EXPECT_GT(layout.contentHeight(), layout.entries().back().rect.bottom());
    }
    // none; header, 0 1 / 2; header; header, 0 1 / 2 3 / 4
    const PresetListLayout layout{284, 20, sections};
    const struct {
        std::size_t from;
        Step step;
        std::size_t to;
    } steps[]{{0, Step::left, 0}, {0, Step::down, 1},  {2, Step::right, 3}, {3, Step::down, 4},
              {4, Step::up, 2},   {4, Step::down, 5},  {5, Step::down, 6},  {8, Step::down, 10},
              {11, Step::up, 9},  {11, Step::down, 11}};
    for (const auto& [from, step, to] : steps) EXPECT_EQ(layout.neighbour(from, step), to) << from;
    EXPECT_EQ(layout.topThatShows(0, 100, 300), 0);
    EXPECT_EQ(layout.visible(layout.contentHeight() + 10, 100).begin, layout.entries().size());
}

TEST_F(PresetInspectorTest, tilesShowTheFocusedPhotoThroughTheirPresetsAndNeverAnother) {
    addPhoto("a.jpg", QColor{100, 100, 100}, {900, 600});
    addPhoto("b.jpg", QColor{60, 60, 160}, {600, 900});
    open();
    int changes = 0;
    PresetPictures pictures{m_thumbnails, m_tiles, [&changes] { ++changes; }};
    const auto bright =
        std::make_shared<const DevelopPreset>(DevelopPreset::of("bright", "Bright", {{"Exposure2012", 1.0}}));
    const auto color = [&](const auto& preset) { return pictures[preset].image.pixelColor(20, 20); };
    pictures.show(photo(0), {nullptr, bright}, {120, 80});
    EXPECT_TRUE(pictures.isLoading());
    settlePictures();
    EXPECT_FALSE(pictures.isLoading());
    EXPECT_EQ(changes, 3); // the thumbnail and two tiles
    EXPECT_EQ(pictures[bright].image.size(), (QSize{120, 80}));
    EXPECT_NEAR(color(PresetPictures::Preset{}).red(), 100, 2);
    EXPECT_GT(color(bright).red(), 125);

    pictures.show(photo(1), {nullptr, bright}, {120, 80});
    EXPECT_TRUE(pictures[bright].isOld);
    settlePictures();
    EXPECT_FALSE(pictures[bright].isOld);
    EXPECT_EQ(pictures[bright].image.height(), 80);
    EXPECT_GT(color(bright).blue(), color(bright).red());
    // From memory at once.
    pictures.show(photo(0), {bright}, {120, 80});
    EXPECT_FALSE(pictures.isLoading());
    EXPECT_GT(color(bright).red(), 125);
    pictures.reload();
    EXPECT_GT(color(bright).red(), 125);
    // Old pictures don't stay for long, and without a photo there are none.
    m_tiles.emptyCaches();
    pictures.show(photo(1), {bright}, {120, 80});
    EXPECT_TRUE(QTest::qWaitFor([&] { return pictures[bright].image.isNull(); }));
    settlePictures();
    EXPECT_FALSE(pictures[bright].image.isNull());
    pictures.show({}, {bright}, {120, 80});
    EXPECT_TRUE(pictures[bright].image.isNull());
    EXPECT_FALSE(pictures.isLoading());
}

TEST_F(PresetInspectorTest, onlyVisibleTilesAreDrawnAndNoneWhileHidden) {
    addPhoto("a.jpg", Qt::gray, {900, 600});
    for (int i = 0; i < 300; ++i) m_presets.put("p" + numbered(i), i / 300.0);
    store().setExpanded("imported/Mine", true);
    auto& list = show();
    ASSERT_GT(list.listLayout().entries().size(), 300);
    m_decoding.runAll();
    m_main.runAll();
    const auto drawn = m_rendering.pending();
    EXPECT_GT(drawn, 6);
    EXPECT_LT(drawn, 20);
    list.verticalScrollBar()->setValue(5000);
    settlePictures();
    EXPECT_FALSE(list.isLoading());
    m_inspector->hide();
    m_tiles.emptyCaches();
    settlePictures();
    m_inspector->show();
    list.verticalScrollBar()->setValue(9000);
    m_inspector->hide();
    m_rendering.runAll();
    EXPECT_FALSE(list.isLoading());
    EXPECT_EQ(m_main.pending(), 0); // withdrawn, so nothing is delivered
}

TEST_F(PresetInspectorTest, pointingPreviewsAndAClickChoosesOrNoMore) {
    addPhoto("a.jpg", Qt::gray);
    auto& list = show();
    const auto point = [&](const QPoint& to) { QTest::mouseMove(list.viewport(), to); };
    point(middle("Warm Afternoon"));
    EXPECT_EQ(active(), "Warm Afternoon");
    EXPECT_EQ(selected(), "");
    click("Cool Morning");
    EXPECT_EQ(selected(), "Cool Morning");
    point(middle("None"));
    EXPECT_EQ(active(), "");
    QEvent leave{QEvent::Leave};
    QCoreApplication::sendEvent(list.viewport(), &leave);
    EXPECT_EQ(active(), "Cool Morning");
    click("Cool Morning");
    EXPECT_EQ(selected(), "");
    click("Soft Light");
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, middle("Soft Light"));
    EXPECT_EQ(selected(), "Soft Light");
    click("None");
    EXPECT_EQ(selected(), "");

    const auto star = PresetTile::star(list.entryRect(at("Soft Light")), list.listLayout().pictureSize());
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, star.center());
    EXPECT_TRUE(store().isFavourite("builtin/soft-light"));
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(at("Favourites"), 1);
    click("Colour");
    EXPECT_FALSE(store().isExpanded("builtin/Colour"));
}

TEST_F(PresetInspectorTest, theKeyboardGoesThroughTheListAndChooses) {
    addPhoto("a.jpg", Qt::gray);
    auto& list = show();
    list.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(keyFocus(&list), KeyFocus::list);
    key(Qt::Key_Down); // the first header
    EXPECT_EQ(list.currentIndex(), at("Colour"));
    key(Qt::Key_Left);
    EXPECT_FALSE(store().isExpanded("builtin/Colour"));
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    EXPECT_EQ(selected(), "Amber and Teal");
    key(Qt::Key_Down);
    EXPECT_EQ(selected(), "Cool Morning");
    key(Qt::Key_Return);
    EXPECT_EQ(selected(), "");
    key(Qt::Key_Space);
    EXPECT_EQ(selected(), "Cool Morning");
    // What is chosen elsewhere comes into sight, and the keyboard goes on from there.
    for (int i = 0; i < 25; ++i) store().selectNext();
    const auto current = list.currentIndex();
    ASSERT_TRUE(current);
    EXPECT_EQ(list.title(*current), selected());
    EXPECT_TRUE(list.viewport()->rect().contains(list.entryRect(*current)));
}

TEST_F(PresetInspectorTest, assistiveToolsSeeAListOfPresets) {
    addPhoto("a.jpg", Qt::gray);
    auto& list = show();
    auto* view = QAccessible::queryAccessibleInterface(&list);
    ASSERT_EQ(view->role(), QAccessible::List);
    ASSERT_EQ(view->childCount(), static_cast<int>(list.listLayout().entries().size()));
    const auto child = [&](const QString& title) { return view->child(static_cast<int>(at(title))); };
    auto* preset = child("Soft Light");
    EXPECT_EQ(preset->text(QAccessible::Name), "Soft Light");
    EXPECT_EQ(preset->text(QAccessible::Description), "Low contrast, held highlights, pastel colours");
    preset->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(selected(), "Soft Light");
    EXPECT_TRUE(preset->state().selected);
    EXPECT_TRUE(child("Colour")->state().expanded);
    EXPECT_EQ(view->childAt(preset->rect().center().x(), preset->rect().center().y()), preset);
    EXPECT_EQ(view->indexOfChild(preset), static_cast<int>(at("Soft Light")));
}

TEST_F(PresetInspectorTest, theStrengthIsLiveAndADoubleClickMakesItFull) {
    m_presets.folder.write("Presets/x.lrtemplate",
                           "s = { title = \"Odd\", type = \"Develop\", value = { settings = { RedHue = 5, "
                           "CameraProfile = \"Portrait X\" } } }");
    show();
    auto* strength = m_inspector->findChild<PresetStrengthView*>();
    auto* slider = strength->findChild<ResettingSlider*>();
    const auto shows = [&](const QString& text) {
        for (const auto* label : strength->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == text) return true;
        }
        return false;
    };
    EXPECT_FALSE(slider->isEnabled());
    store().select("x.lrtemplate");
    EXPECT_TRUE(slider->isEnabled());
    EXPECT_TRUE(shows("Odd"));
    EXPECT_TRUE(shows("Not previewed: Calibration, Profile (Portrait X)"));
    slider->setValue(65);
    EXPECT_EQ(store().amount(), 0.65);
    EXPECT_TRUE(shows("65%"));
    QTest::mouseDClick(slider, Qt::LeftButton, {}, {20, slider->height() / 2});
    EXPECT_EQ(store().amount(), 1);
    QTest::mouseClick(slider, Qt::LeftButton, {}, {slider->width() / 2, slider->height() / 2});
    EXPECT_NEAR(store().amount(), 0.5, 0.02);
}

TEST_F(PresetInspectorTest, searchingFindsOrSaysThatNothingWasFound) {
    auto& list = show();
    auto* search = m_inspector->findChild<SearchLine*>();
    QTest::keyClicks(search, "soft");
    EXPECT_EQ(list.title(2), "Soft Light");
    QTest::keyClicks(search, " cheese");
    EXPECT_FALSE(list.isVisible());
    emit search->searched({});
    EXPECT_TRUE(list.isVisible());
    EXPECT_EQ(search->text(), "");
}

TEST_F(PresetInspectorTest, whatIsDroppedOnItIsImportedButForPhotos) {
    show();
    const auto source = m_card.write("Look.xmp", xmpPreset("Look"));
    const auto drop = [&](const FileURL& url) {
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(QString::fromStdString(url.path()))});
        QDropEvent event{QPointF{50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier};
        static_cast<QObject&>(*m_inspector).event(&event);
        return event.isAccepted();
    };
    EXPECT_FALSE(drop(m_card / "a.JPG"));
    EXPECT_TRUE(drop(source));
    EXPECT_TRUE(store().isImporting());
    settle();
    m_presets.watch.change();
    settle();
    EXPECT_TRUE(store().isImported("Look.xmp"));
    EXPECT_TRUE(m_list->viewport()->rect().contains(m_list->entryRect(at("Look"))));
}

TEST(PresetImportViewTest, saysWhatCameInAndWhatDidNot) {
    const struct {
        PresetImportReport report;
        QString error, title, note;
        bool wentWell;
    } cases[]{
        {{{"a"}, 0, {}, {}, false}, {}, "1 Preset Imported", "", true},
        {{{"a", "b"}, 1, {}, {}, false}, {}, "2 Presets Imported", "1 preset was there already.", true},
        {{{}, 3, {}, {}, false}, {}, "Nothing New", "3 presets were there already.", true},
        {{{}, 0, {"x isn't one."}, {}, false},
         "No Lightroom develop presets were found.",
         "No Presets Imported",
         "No Lightroom develop presets were found.\n1 file was not imported:",
         false},
        {{{"a"}, 0, {}, {}, true},
         {},
         "1 Preset Imported",
         "The import was stopped; the others stayed out.",
         true},
    };
    for (const auto& [report, error, title, note, wentWell] : cases) {
        const auto texts = presetImportTexts(report, error);
        EXPECT_EQ(texts.title, title);
        EXPECT_EQ(texts.note, note);
        EXPECT_EQ(texts.wentWell, wentWell) << title.toStdString();
    }
}

} // namespace kelvara
