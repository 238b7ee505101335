#include "presets/EditStore.h"
#include "async/ThreadPool.h"
#include "platform/linux/LinuxFileSystem.h"
#include "support/FakeFileSystem.h"
#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"
#include "support/WaitingExecutor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Slider = LightAdjustments::Slider;
using Operation = FakeFileSystem::Operation;
using testing::HasSubstr;

const std::string path = "/support/kelvara/Edits.json";
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
            std::make_unique<EditStore>(files, FileURL{path}, writer, main,
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
    [[nodiscard]] std::string saved() const { return files.bytes(path).value_or("none"); }
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
    EXPECT_EQ(saved(), "{\n \"file:///card/a%FF.xmp\": {\"exposure\": 0.35, \"shadows\": 40}\n}\n");
    openLoaded();
    EXPECT_EQ(store().adjustments(raw), light(0.35, 40));
    store().setAdjustments({}, raw);
    wait();
    EXPECT_EQ(saved(), "{\n}\n");
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
    EXPECT_EQ(
        saved(),
        "{\n \"file:///card/b.xmp\": {\"exposure\": 2},\n \"file:///card/c.xmp\": {\"exposure\": 3}\n}\n");
}

TEST_F(EditStoreTest, whatIsNotUnderstoodStaysAsItStands) {
    const std::string kept = "{\n \"version\": 2.10,\n"
                             " \"/card/x.jpg\": {\"exposure\":1 , \"mask\" : [\"}\\\"\", {}]},\n"
                             " \"file:///card/c.xmp\": {\"exposure\": 1e999, \"blacks\": 9},\n"
                             " \"file:///card/%.xmp\": {\"exposure\": 1},\n \"file:///card/d.xmp\": \"\xff\"";
    files.addFile(path, kept + R"(, "file:///card/b.xmp": {"exposure": 9, "shadows": "4", "contrast": 0.1,)" +
                            R"( "grain": 1.50, "whites": -40}, "file:///card/%62.xmp":{"blacks":7}})");
    openLoaded();
    EXPECT_EQ(store().adjustments(FileURL{"/card/x.CR3"}), light(1));
    EXPECT_EQ(store().adjustments(FileURL{"/card/c.CR3"})[Slider::blacks], 9);
    EXPECT_EQ(store().adjustments(other)[Slider::blacks], 7) << "of two spellings the last";
    store().setAdjustments(light(7, 4), other);
    wait();
    EXPECT_EQ(saved(),
              kept + ",\n \"file:///card/b.xmp\": {\"exposure\": 5, \"shadows\": 4, \"grain\": 1.50}\n}\n");
    store().setAdjustments({}, other);
    wait();
    EXPECT_EQ(saved(), kept + ",\n \"file:///card/b.xmp\": {\"grain\": 1.50}\n}\n");
}

TEST_F(EditStoreTest, damagedFilesArePutAside) {
    std::string aside = path + ".damaged";
    int asides = 0;
    for (const std::string text : {"[]", "{", "{\"a\": 1", "{\"a\": [}]}", "{\"a\" 1}", "{} x", "{\"a\\",
                                   "{a: 1}", "{\"a\":}", "{,}"}) {
        files.addFile(path, text);
        openLoaded();
        EXPECT_TRUE(store().adjustments(other).isEmpty());
        EXPECT_EQ(saved(), text) << "not before there is something to save";
        store().setAdjustments(light(1), raw);
        wait();
        EXPECT_EQ(files.bytes(aside), text);
        aside = path + ".damaged." + std::to_string(++asides);
    }
    files.addFile(path, "{");
    store().setAdjustments(light(2), other);
    wait();
    openLoaded();
    EXPECT_EQ(store().adjustments(raw), light(1)) << "what was known is written anew";
    EXPECT_EQ(store().adjustments(other), light(2));
}

TEST_F(EditStoreTest, severalStoresShareTheFile) {
    openLoaded();
    const auto first = std::move(m_store);
    openLoaded();
    int changes = 0;
    const auto subscription = first->observe({EditProperty::adjustments}, [&](const auto&) { ++changes; });
    store().setAdjustments(light(1), raw);
    store().setAdjustments(light(2), other);
    wait();
    EXPECT_TRUE(first->adjustments(other).isEmpty());
    first->setAdjustments(light(3), raw);
    wait();
    EXPECT_EQ(first->adjustments(raw), light(3));
    EXPECT_EQ(first->adjustments(other), light(2));
    EXPECT_EQ(changes, 2) << "one of its own, one of the other";
    store().setAdjustments({}, other);
    wait();
    EXPECT_EQ(store().adjustments(raw), light(3));
    first->setAdjustments(light(4), raw);
    wait();
    EXPECT_TRUE(first->adjustments(other).isEmpty());
    EXPECT_EQ(saved(), "{\n \"file:///card/a%FF.xmp\": {\"exposure\": 4}\n}\n");
}

TEST_F(EditStoreTest, aFailedWriteIsToldAndTriedAgain) {
    openLoaded();
    files.failChange(2); // after the folder's creation
    store().setAdjustments(light(1), raw);
    wait();
    EXPECT_EQ(saved(), "none");
    EXPECT_EQ(store().saveError(), "Couldn't save the edits: “Edits.json”: Input/output error");
    EXPECT_EQ(store().adjustments(raw), light(1));

    bool isFirst = true; // what is changed while a save runs is saved after it
    files.onOperation = [&](Operation operation, const FileURL&) {
        if (operation == Operation::write && std::exchange(isFirst, false))
            store().setAdjustments(light(3), raw);
    };
    store().setAdjustments(light(2), other);
    wait();
    EXPECT_EQ(store().saveError(), "");
    EXPECT_THAT(saved(), AllOf(HasSubstr("\"exposure\": 1}"), HasSubstr("\"exposure\": 2}")));
    wait();
    EXPECT_THAT(saved(), HasSubstr("\"exposure\": 3}"));

    files.failChange(2);
    store().setAdjustments(light(4), raw);
    wait();
    m_store.reset();
    runAll();
    EXPECT_THAT(saved(), HasSubstr("\"exposure\": 4}"));
}

TEST_F(EditStoreTest, aFileThatCantBeReadIsNotReplaced) {
    files.addFile(path, "of another user");
    files.refuse(Operation::read, path);
    openLoaded();
    store().setAdjustments(light(1), raw);
    wait();
    EXPECT_EQ(store().saveError(), "Couldn't save the edits: “Edits.json”: Permission denied");
    EXPECT_EQ(store().adjustments(raw), light(1));
    EXPECT_EQ(saved(), "of another user");
    EXPECT_EQ(files.paths(), std::vector{path});
    store().clearSaveError();
    EXPECT_EQ(store().saveError(), "");
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

TEST(EditStoreThreadsTest, storesThatSaveAtOnceLoseNothing) {
    const TemporaryFolder folder;
    const auto file = folder.at("new/Edits.json");
    constexpr int photos = 20;
    LinuxFileSystem files;
    WaitingExecutor main;
    const auto atOnce = [&main](std::chrono::milliseconds, std::function<void()> job) {
        main.post(std::move(job));
    };
    {
        ThreadPool writer{1, ThreadPool::AtEnd::finish}, otherWriter{1, ThreadPool::AtEnd::finish};
        EditStore store{files, file, writer, main, atOnce},
            otherStore{files, file, otherWriter, main, atOnce};
        for (int i = 0; i < photos; ++i) {
            store.setAdjustments(light(1), folder.at("a" + std::to_string(i)));
            otherStore.setAdjustments(light(2), folder.at("b" + std::to_string(i)));
            for (int job = 0; job < 2; ++job) main.runOne(); // the two alarms are among what there is
        }
    }
    const auto found = EditFile::read(files, file);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 2 * photos);
}

} // namespace
} // namespace kelvara
