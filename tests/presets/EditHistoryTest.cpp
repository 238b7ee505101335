#include "presets/EditHistory.h"

#include "presets/EditStore.h"
#include "support/FakeFileSystem.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Slider = LightAdjustments::Slider;
using Action = EditHistory::Action;
using Name = EditHistory::Name;

const FileURL a{"/card/a.JPG"};
const FileURL b{"/card/b.JPG"};

class EditHistoryTest : public testing::Test {
protected:
    EditHistoryTest() { runAll(executor, executor); } // loads nothing

    void drag(Slider slider, std::initializer_list<double> values, const FileURL& photo = a) {
        history.beginGesture();
        for (const auto value : values) history.setSlider(slider, value, photo);
    }
    [[nodiscard]] double value(Slider slider, const FileURL& photo = a) const {
        return store.adjustments(photo)[slider];
    }

    FakeFileSystem files;
    ManualExecutor executor;
    EditStore store{files, FileURL{"/support/Edits.json"}, executor, executor, [](auto, const auto&) {}};
    EditHistory history{store};
};

TEST_F(EditHistoryTest, aGestureIsOneStepHoweverManyValuesItPasses) {
    int changes = 0;
    const auto subscription = history.observe({EditHistoryProperty::names}, [&](const auto&) { ++changes; });
    drag(Slider::exposure, {0.1, 0.5, 1});
    EXPECT_EQ(changes, 1);
    drag(Slider::exposure, {1.5});
    drag(Slider::contrast, {20});
    EXPECT_EQ(history.undoName(), (Name{Action::slider, Slider::contrast}));
    EXPECT_EQ(history.undo(), std::vector{a});
    EXPECT_EQ(history.redoName(), (Name{Action::slider, Slider::contrast}));
    history.undo();
    EXPECT_EQ(value(Slider::exposure), 1);
    history.undo();
    EXPECT_TRUE(store.adjustments(a).isEmpty());
    EXPECT_EQ(history.undo(), std::vector<FileURL>{});
    history.redo();
    EXPECT_EQ(value(Slider::exposure), 1);

    // What is done instead ends what could be redone, and goes on in no older gesture.
    history.setSlider(Slider::exposure, 2, a);
    EXPECT_FALSE(history.redoName());
    history.undo();
    EXPECT_EQ(value(Slider::exposure), 1);
}

TEST_F(EditHistoryTest, whatChangesNothingLeavesNothingToUndo) {
    drag(Slider::shadows, {10});
    drag(Slider::shadows, {10, 30, 10}); // there and back
    history.paste({&a, 1});              // nothing was copied
    history.setAutomatic(store.adjustments(a), a);
    history.undo();
    EXPECT_TRUE(store.adjustments(a).isEmpty());
    EXPECT_FALSE(history.undoName());
    // A step before keeps to itself when a gesture begins at its value.
    drag(Slider::shadows, {10});
    drag(Slider::shadows, {10, 20});
    history.undo();
    EXPECT_EQ(value(Slider::shadows), 10);
}

TEST_F(EditHistoryTest, pastingOntoManyPhotosIsOneStepAndEachGetsItsOwnBack) {
    drag(Slider::whites, {40}, a);
    drag(Slider::blacks, {-5}, b);
    store.copyAdjustments(a);
    int changes = 0;
    const auto subscription = store.observe({EditProperty::adjustments}, [&](const auto&) { ++changes; });
    const std::vector photos{a, b, FileURL{"/card/b.CR3"}};
    history.paste(photos);
    EXPECT_EQ(value(Slider::whites, b), 40);
    EXPECT_EQ(history.undoName(), Name{Action::paste});
    EXPECT_EQ(history.undo(), (std::vector{b, FileURL{"/card/b.CR3"}})); // the others had them already
    EXPECT_EQ(value(Slider::whites, b), 0);
    EXPECT_EQ(value(Slider::blacks, b), -5);
    EXPECT_EQ(changes, 2);

    history.reset(a);
    EXPECT_TRUE(store.adjustments(a).isEmpty());
    history.undo();
    EXPECT_EQ(value(Slider::whites), 40);
}

TEST_F(EditHistoryTest, forgetsTheOldestSteps) {
    for (std::size_t i = 0; i < EditHistory::mostSteps + 1; ++i)
        drag(Slider::exposure, {i % 2 == 0 ? 1.0 : 2.0});
    while (history.undoName()) history.undo();
    EXPECT_EQ(value(Slider::exposure), 1);
}

} // namespace
} // namespace kelvara
