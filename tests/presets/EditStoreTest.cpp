#include "presets/EditStore.h"
#include "support/FakeFileSystem.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Slider = LightAdjustments::Slider;
using Operation = FakeFileSystem::Operation;

const FileURL raw{"/card/a\xff.CR3"};
const FileURL jpeg{"/card/a\xff.JPG"};
const FileURL other{"/card/b.JPG"};

LightAdjustments light(double exposure, double shadows = 0) {
    LightAdjustments adjustments;
    adjustments.set(Slider::exposure, exposure);
    adjustments.set(Slider::shadows, shadows);
    return adjustments;
}

class EditStoreTest : public testing::Test {
protected:
    void open() {
        m_store.reset();
        runAll();
        m_store =
            std::make_unique<EditStore>(files, FileURL{"/support/kelvara/Edits.json"}, writer, main,
                                        [this](std::chrono::milliseconds delay, std::function<void()> job) {
                                            EXPECT_EQ(delay, EditStore::saveDelay);
                                            alarms.push_back(std::move(job));
                                        });
    }
    void openLoaded() {
        open();
        runAll();
    }
    void runAll() { kelvara::runAll(writer, main); }
    /// Half a second passes.
    void wait() {
        for (const auto& alarm : std::exchange(alarms, {})) alarm();
        runAll();
    }
    [[nodiscard]] std::string saved() const {
        return files.bytes("/support/kelvara/Edits.json").value_or("none");
    }
    EditStore& store() { return *m_store; }

    FakeFileSystem files;
    ManualExecutor writer;
    ManualExecutor main;
    std::vector<std::function<void()>> alarms;
    std::unique_ptr<EditStore> m_store;
};

TEST_F(EditStoreTest, editsBelongToTheShotAndComeBack) {
    openLoaded();
    int changes = 0;
    const auto subscription = store().observe({EditProperty::adjustments}, [&](const auto&) { ++changes; });
    store().setAdjustments(light(0.35, 40), raw);
    EXPECT_EQ(store().adjustments(jpeg), light(0.35, 40));
    EXPECT_TRUE(store().adjustments(other).isEmpty());
    store().setAdjustments(light(0.35, 40), jpeg);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(saved(), "none");
    wait();
    EXPECT_EQ(saved(),
              "{\n \"file:///card/a%FF.xmp\": {\n  \"exposure\": 0.35,\n  \"shadows\": 40.0\n }\n}\n");
    openLoaded();
    EXPECT_EQ(store().adjustments(raw), light(0.35, 40));
    store().setAdjustments({}, raw);
    wait();
    EXPECT_EQ(saved(), "{}\n");
}

TEST_F(EditStoreTest, aBurstOfChangesIsWrittenOnce) {
    openLoaded();
    for (const double exposure : {1, 2, 3, 4, 5}) store().setAdjustments(light(exposure), raw);
    wait();
    EXPECT_EQ(files.count(Operation::write), 1);
    wait();
    EXPECT_EQ(files.count(Operation::write), 1);
    store().setAdjustments(light(1), raw);
    open(); // the old one ends before its time
    runAll();
    EXPECT_EQ(files.count(Operation::write), 2);
    EXPECT_EQ(store().adjustments(raw), light(1));
    wait(); // for what is gone
}

TEST_F(EditStoreTest, editsAreCopiedToOthers) {
    openLoaded();
    store().pasteAdjustments({{other}});
    store().setAdjustments(light(1), raw);
    store().copyAdjustments(jpeg);
    store().setAdjustments(light(2), raw);
    EXPECT_EQ(store().copiedAdjustments(), light(1));
    store().pasteAdjustments({{other, raw}});
    EXPECT_EQ(store().adjustments(other), light(1));
    EXPECT_EQ(store().adjustments(raw), light(1));
    store().copyAdjustments(FileURL{"/card/c.JPG"});
    store().pasteAdjustments({{other}});
    EXPECT_TRUE(store().adjustments(other).isEmpty()) << "no edits can be pasted too";
    wait();
    EXPECT_EQ(files.count(Operation::write), 1);
}

TEST_F(EditStoreTest, whatIsEditedBeforeTheFileIsReadWins) {
    openLoaded();
    store().setAdjustments(light(1), raw);
    store().setAdjustments(light(2), other);
    wait();
    open();
    store().setAdjustments({}, raw);
    store().setAdjustments(light(3), FileURL{"/card/c.JPG"});
    wait();
    EXPECT_TRUE(store().adjustments(raw).isEmpty());
    EXPECT_EQ(store().adjustments(other), light(2));
    wait();
    EXPECT_EQ(saved(), "{\n \"file:///card/b.xmp\": {\n  \"exposure\": 2.0\n },\n \"file:///card/c.xmp\": {\n"
                       "  \"exposure\": 3.0\n }\n}\n");
}

TEST_F(EditStoreTest, oddFilesAreReadAsFarAsTheyMakeSense) {
    files.addFile("/support/kelvara/Edits.json",
                  R"({"/card/x.xmp": {"exposure": 1}, "file:///card/b.xmp": {"exposure": 9, "shadows": "4",)"
                  R"( "contrast": 0.1, "grain": 5, "blacks": 1e999}, "file:///card/c.xmp": 3, "x": {}})");
    openLoaded();
    EXPECT_TRUE(store().adjustments(other).isEmpty()) << "1e999 is no JSON number that fits";
    EXPECT_TRUE(files.bytes("/support/kelvara/Edits.json.damaged"));
    files.addFile("/support/kelvara/Edits.json",
                  R"({"/card/x.xmp": {"exposure": 1}, "file:///card/b.xmp": {"exposure": 9, "shadows": "4",)"
                  R"( "contrast": 0.1, "grain": 5}, "file:///card/c.xmp": 3, "x": {}})");
    openLoaded();
    EXPECT_EQ(store().adjustments(other), light(5));
    for (const auto* text : {"", "[]", "{", "null"}) {
        files.addFile("/support/kelvara/Edits.json", text);
        openLoaded();
        EXPECT_TRUE(store().adjustments(other).isEmpty());
    }
    files.addFile("/support/kelvara/Edits.json", "of another user");
    files.refuse(Operation::read, "/support/kelvara/Edits.json");
    openLoaded();
    EXPECT_EQ(files.bytes("/support/kelvara/Edits.json.damaged.5"), "of another user") << "none is replaced";
}

TEST_F(EditStoreTest, aFailedWriteIsTriedAgain) {
    openLoaded();
    files.failChange(2); // after the folder's creation
    store().setAdjustments(light(1), raw);
    wait();
    EXPECT_EQ(saved(), "none");
    EXPECT_EQ(store().adjustments(raw), light(1));
    m_store.reset();
    runAll();
    EXPECT_NE(saved(), "none");
}

TEST_F(EditStoreTest, photosAreDrawnWithPresetAndEdits) {
    openLoaded();
    EXPECT_FALSE(store().exportLook(std::nullopt, raw));
    store().setAdjustments(light(1), raw);
    const std::optional preset = DevelopPreset::of("a", "A", {});
    EXPECT_EQ(store().exportLook(preset, raw)->revision, store().exportLook(preset, jpeg)->revision);
    EXPECT_EQ(store().exportLook(preset, other)->revision, preset->revision);
    EXPECT_FALSE(store().exportLook(std::nullopt, raw)->adjustments.isIdentity);
}

} // namespace
} // namespace kelvara
