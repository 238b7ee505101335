#include "presets/PresetStore.h"

#include "async/ThreadPool.h"
#include "platform/Trash.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxFolderWatch.h"
#include "presets/BuiltInPresets.h"
#include "presets/PresetTestFiles.h"
#include "support/FakeDesktop.h"
#include "support/FakeFolderWatch.h"
#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"
#include "support/WaitingExecutor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Loses what it is given, or refuses it.
class LossyTrash : public Trash {
public:
    Result<void, FileError> moveToTrash(const FileURL& url) override {
        if (refuses) return Failure{FileError{url, std::make_error_code(std::errc::permission_denied)}};
        std::filesystem::remove(url.path());
        return {};
    }
    bool refuses = false;
};

class PresetStoreTest : public testing::Test {
protected:
    PresetStore& start() {
        m_store = std::make_unique<PresetStore>(PresetServices{.files = m_files,
                                                               .trash = m_trash,
                                                               .watch = m_watch,
                                                               .desktop = m_desktop,
                                                               .preferences = m_preferences,
                                                               .background = m_background,
                                                               .main = m_main,
                                                               .folder = m_folder / "Presets",
                                                               .collationLocale = {}});
        settle();
        return *m_store;
    }
    void settle() { runAll(m_background, m_main); }
    void change() {
        m_watch.change();
        settle();
    }
    FileURL put(const std::string& path, const std::string& bytes) {
        return m_folder.write("Presets/" + path, bytes);
    }
    /// "Category: title, title"
    [[nodiscard]] std::vector<std::string> list() const {
        std::vector<std::string> lines;
        for (const auto& category : m_store->visibleCategories()) {
            auto& line = lines.emplace_back(category.title + ":");
            for (const auto& preset : category.presets) line += " " + preset->title;
        }
        return lines;
    }

    TemporaryFolder m_folder;
    LinuxFileSystem m_files;
    LossyTrash m_trash;
    FakeFolderWatch m_watch;
    FakeDesktop m_desktop;
    MemoryPreferences m_preferences;
    ManualExecutor m_background;
    ManualExecutor m_main;
    std::unique_ptr<PresetStore> m_store;
};

} // namespace

TEST_F(PresetStoreTest, bringsPresetsThatEachDrawSomething) {
    std::set<std::string> ids;
    std::set<std::string> titles;
    for (const auto& category : builtInPresets()) {
        EXPECT_FALSE(category.title.empty());
        for (const auto& preset : category.presets) {
            EXPECT_TRUE(preset.id.starts_with("builtin/") && preset.id.size() > 8);
            EXPECT_TRUE(ids.insert(preset.id).second && titles.insert(preset.title).second) << preset.id;
            EXPECT_FALSE(preset.look.isIdentity) << preset.id;
            EXPECT_FALSE(preset.summary.value_or("").empty()) << preset.id;
            EXPECT_THAT(preset.unsupportedSettings, IsEmpty()) << preset.id;
            EXPECT_EQ(preset.look.isMonochrome, category.name == "Black and White") << preset.id;
        }
    }
    EXPECT_GE(ids.size(), 16U);
    const auto& store = start();
    EXPECT_EQ(store.preset("builtin/matte")->settings.at("ToneCurvePV2012").index(), 3U);
    EXPECT_FALSE(store.isImported("builtin/matte"));
    EXPECT_TRUE(store.isExpanded(store.visibleCategories().front().id));
    EXPECT_EQ(m_watch.folder, m_folder / "Presets");
    EXPECT_TRUE(TemporaryFolder::exists(store.folder()));
}

TEST_F(PresetStoreTest, listsByGroupElseByFolderAndFindsWhatIsSearched) {
    put("loose.xmp", xmpPreset("Loose"));
    put("Pack/B 10.xmp", xmpPreset(""));
    put("Pack/B 9.xmp", xmpPreset(""));
    put("Pack/Deep/c.lrtemplate", luaPreset("Crème brûlée"));
    put("Pack/d.xmp", xmpPreset("Dusk", 1, "Evening"));
    put("broken.xmp", "<");
    auto& store = start();
    const auto builtIn = list().size() - 4;
    EXPECT_EQ(builtIn, builtInPresets().size());
    auto imported = list();
    imported.resize(4);
    EXPECT_THAT(imported, ElementsAre("Evening: Dusk", "Imported: Loose", "Pack: B 9 B 10",
                                      "Pack / Deep: Crème brûlée"));

    store.setFavourite("Pack/d.xmp", true);
    store.setFavourite("Pack/B 10.xmp", true);
    EXPECT_EQ(list().front(), "Favourites: B 10 Dusk");
    EXPECT_EQ(list().size(), builtIn + 5);
    EXPECT_FALSE(store.isExpanded("imported/Pack"));
    store.setSearchText(" BRULEE creme ");
    EXPECT_THAT(list(), ElementsAre("Pack / Deep: Crème brûlée"));
    EXPECT_TRUE(store.isExpanded("imported/Pack / Deep"));
    store.setSearchText("b 1");
    EXPECT_THAT(list(), ElementsAre("Favourites: B 10", "Pack: B 10"));
    store.setSearchText("no such preset");
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(PresetStoreTest, remembersWhatWasChosen) {
    put("Pack/a.xmp", xmpPreset("A"));
    auto* store = &start();
    EXPECT_TRUE(store->showsPreviews());
    EXPECT_EQ(store->amount(), 1);
    store->select("Pack/a.xmp");
    store->setAmount(0.652);
    store->setFavourite("builtin/matte", true);
    store->setExpanded("imported/Pack", true);
    store->setExpanded("builtin/Night", false);
    store->setShowsPreviews(false);
    EXPECT_EQ(m_preferences.text("selectedPresetID"), "Pack/a.xmp");
    EXPECT_EQ(m_preferences.number("presetAmount"), 0.65);
    EXPECT_EQ(m_preferences.boolean("presetPreviews"), false);

    store = &start();
    EXPECT_EQ(store->activePreset()->titleWithAmount(), "A 65%");
    EXPECT_TRUE(store->isFavourite("builtin/matte"));
    EXPECT_TRUE(store->isExpanded("imported/Pack") && store->isExpanded("builtin/Colour"));
    EXPECT_FALSE(store->isExpanded("builtin/Night") || store->showsPreviews());

    // A choice that is gone, and values nobody would choose.
    std::filesystem::remove_all((m_folder / "Presets").path());
    m_preferences.setNumber("presetAmount", std::nan(""));
    store = &start();
    EXPECT_EQ(store->selectedPresetID(), "");
    EXPECT_EQ(store->activePreset(), nullptr);
    EXPECT_EQ(store->amount(), 1);
    EXPECT_EQ(m_preferences.text("selectedPresetID"), "");
    store->setAmount(-3);
    EXPECT_EQ(store->amount(), 0);
}

TEST_F(PresetStoreTest, theRevisionChangesWithWhatIsDrawnAndWithNothingElse) {
    put("a.xmp", xmpPreset("A", 1));
    auto& store = start();
    int changes = 0;
    const auto subscription = store.observe({PresetProperty::activePreset}, [&](const auto&) { ++changes; });
    store.select("a.xmp");
    const auto full = store.activePreset();
    EXPECT_EQ(full, store.preset("a.xmp"));
    store.setAmount(0.5);
    const auto half = store.activePreset();
    EXPECT_EQ(half->amount, 0.5);
    EXPECT_NE(half->revision, full->revision);
    store.setAmount(0.504); // a whole percent is the least step
    change();
    store.select("a.xmp");
    EXPECT_EQ(store.activePreset(), half);
    EXPECT_EQ(changes, 2);
    store.setAmount(1);
    EXPECT_EQ(store.activePreset(), full);
    store.setAmount(0.5);
    EXPECT_EQ(store.activePreset()->revision, half->revision);

    store.setHoveredPresetID("builtin/matte");
    EXPECT_EQ(store.activePreset()->id, "builtin/matte");
    EXPECT_EQ(store.activePreset()->amount, 0.5);
    EXPECT_EQ(store.selectedPreset()->revision, half->revision);
    store.setHoveredPresetID("");
    EXPECT_EQ(store.activePreset(), nullptr);
    store.setHoveredPresetID("gone");
    EXPECT_EQ(store.activePreset()->revision, half->revision);
    store.setHoveredPresetID(std::nullopt);
    changes = 0;

    put("b.xmp", xmpPreset("B")); // another preset
    change();
    EXPECT_EQ(changes, 0);
    put("a.xmp", xmpPreset("A", 2)); // the same size
    change();
    EXPECT_EQ(changes, 1);
    EXPECT_NE(store.activePreset()->revision, half->revision);
    std::filesystem::remove((m_folder / "Presets/a.xmp").path());
    change();
    EXPECT_EQ(store.activePreset(), nullptr);
    EXPECT_EQ(store.selectedPresetID(), "");
    store.select("unknown");
    EXPECT_EQ(store.selectedPresetID(), "");
}

TEST_F(PresetStoreTest, theKeysGoThroughTheListAndNone) {
    for (const std::string name : {"a", "b", "c"}) put(name + ".xmp", xmpPreset("Zz " + name));
    auto& store = start();
    store.setFavourite("b.xmp", true);
    store.setSearchText("zz");
    const auto way = [&](void (PresetStore::*step)()) {
        std::string ids;
        for (int i = 0; i < 5; ++i) {
            (store.*step)();
            ids += store.selectedPresetID() + ",";
        }
        return ids;
    };
    EXPECT_EQ(way(&PresetStore::selectNext), "b.xmp,a.xmp,c.xmp,,b.xmp,");
    EXPECT_EQ(way(&PresetStore::selectPrevious), ",c.xmp,a.xmp,b.xmp,,");
    store.select("builtin/matte"); // which the search hides
    store.setHoveredPresetID("c.xmp");
    store.selectNext();
    EXPECT_EQ(store.activePreset()->id, "b.xmp");
}

TEST_F(PresetStoreTest, publishesAnImportTogetherWithItsPresets) {
    auto& store = start();
    bool wasWhole = false;
    const auto subscription = store.observe({PresetProperty::importReport}, [&](const auto&) {
        if (store.importReport()) wasWhole = store.preset("Pack/a.xmp") && !store.isImporting();
    });
    const auto pack = m_folder.write("Pack/a.xmp", xmpPreset("A")).parent();
    store.importPresets({pack});
    EXPECT_TRUE(store.isImporting());
    store.importPresets({m_folder.write("b.xmp", xmpPreset("B")), m_folder.write("c.xmp", "")});
    settle();
    EXPECT_TRUE(wasWhole);
    EXPECT_THAT(store.importReport()->imported, ElementsAre("Pack/a.xmp", "b.xmp"));
    EXPECT_THAT(store.importReport()->problems, testing::SizeIs(1));
    EXPECT_TRUE(store.isExpanded("imported/Pack") && store.isExpanded("imported/Imported"));
    EXPECT_EQ(store.importError(), "");

    store.importPresets({m_folder / "c.xmp"});
    EXPECT_FALSE(store.importReport());
    settle();
    EXPECT_EQ(store.importError(), "No Lightroom develop presets were found.");
    store.dismissImport();
    EXPECT_FALSE(store.importReport());
    EXPECT_EQ(store.importError(), "");

    store.importPresets({pack});
    store.cancelImport();
    settle();
    EXPECT_TRUE(store.importReport()->wasCancelled && !store.isImporting());
    EXPECT_EQ(store.importError(), "");
    store.importPresets({pack});
    m_store.reset(); // what arrives later finds nobody
    settle();
}

TEST_F(PresetStoreTest, removesAndRevealsTheUsersFilesOnly) {
    const auto file = put("a.xmp", xmpPreset("A"));
    auto& store = start();
    store.select("a.xmp");
    for (const auto* id : {"builtin/matte", "a.xmp"}) store.reveal(id);
    EXPECT_THAT(m_desktop.shown, ElementsAre(file));
    m_trash.refuses = true;
    for (const auto* id : {"builtin/matte", "a.xmp"}) store.remove(id);
    settle();
    EXPECT_EQ(store.removeError(), "“a.xmp”: Permission denied");
    EXPECT_TRUE(store.isImported("a.xmp"));
    m_trash.refuses = false;
    store.remove("a.xmp");
    EXPECT_EQ(store.removeError(), "");
    settle();
    EXPECT_FALSE(store.isImported("a.xmp"));
    EXPECT_EQ(store.selectedPresetID(), "");
}

TEST_F(PresetStoreTest, followsTheFolderWhileItImports) {
    WaitingExecutor main;
    LinuxFolderWatch watch{main, std::chrono::milliseconds{1}};
    ThreadPool background{2};
    PresetStore store{{.files = m_files,
                       .trash = m_trash,
                       .watch = watch,
                       .desktop = m_desktop,
                       .preferences = m_preferences,
                       .background = background,
                       .main = main,
                       .folder = m_folder / "Presets",
                       .collationLocale = {}}};
    for (int i = 0; i < 20; ++i) {
        m_folder.write("Pack/" + std::to_string(i) + ".xmp", xmpPreset("P", i + 1));
    }
    store.importPresets({m_folder / "Pack"});
    put("by hand.xmp", xmpPreset("By hand"));
    while (!store.importReport() || !store.preset("by hand.xmp")) main.runOne();
    EXPECT_EQ(store.importReport()->imported.size(), 20U);
    for (const auto& id : store.importReport()->imported) EXPECT_TRUE(store.preset(id)) << id;
    std::filesystem::remove(m_folder.at("Presets/by hand.xmp").path());
    while (store.preset("by hand.xmp")) main.runOne();
}

} // namespace kelvara
