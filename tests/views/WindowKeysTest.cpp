#include "views/WindowKeys.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include <gtest/gtest.h>

#include <initializer_list>

namespace kelvara {

using Kind = WindowCommand::Kind;

namespace {
std::optional<WindowCommand> command(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                                     KeyFocus focus = KeyFocus::photos, ViewMode mode = ViewMode::grid) {
    return windowCommand(key, modifiers, focus, mode);
}
} // namespace

TEST(WindowKeysTest, photosAreBrowsedMarkedAndRatedWithPlainKeys) {
    EXPECT_EQ(command(Qt::Key_Left), WindowCommand{Kind::moveLeft});
    EXPECT_EQ(command(Qt::Key_Down), WindowCommand{Kind::moveDown});
    EXPECT_EQ(command(Qt::Key_Space), WindowCommand{Kind::toggleViewMode});
    EXPECT_EQ(command(Qt::Key_S), WindowCommand{Kind::toggleMark});
    EXPECT_EQ(command(Qt::Key_Return), WindowCommand{Kind::toggleMark});
    EXPECT_EQ(command(Qt::Key_Enter, Qt::KeypadModifier), WindowCommand{Kind::toggleMark});
    EXPECT_EQ(command(Qt::Key_0), (WindowCommand{Kind::rate, 0}));
    EXPECT_EQ(command(Qt::Key_5, Qt::KeypadModifier), (WindowCommand{Kind::rate, 5}));
    EXPECT_EQ(command(Qt::Key_3, Qt::ShiftModifier), (WindowCommand{Kind::rate, 3})); // as in France
    EXPECT_FALSE(command(Qt::Key_6));
    EXPECT_FALSE(command(Qt::Key_S, Qt::ShiftModifier));
    EXPECT_FALSE(command(Qt::Key_S, Qt::AltModifier));
}

TEST(WindowKeysTest, lettersAreCommandsOnKeyboardsOfOtherScripts) {
    constexpr int cyrillicYeru = 0x42b, greekZeta = 0x396, arabicHah = 0x62d;
    EXPECT_EQ(latinKey(cyrillicYeru, 39), Qt::Key_S);
    EXPECT_EQ(latinKey(greekZeta, 52), Qt::Key_Z);
    EXPECT_EQ(latinKey(arabicHah, 33), Qt::Key_P);
    EXPECT_EQ(latinKey(0xe03, 51), Qt::Key_Backslash); // as in Thailand
    EXPECT_EQ(latinKey(arabicHah, 34), Qt::Key_BracketLeft);
    EXPECT_EQ(latinKey(arabicHah, 47), arabicHah); // where Latin keyboards have no letter
    EXPECT_EQ(latinKey(Qt::Key_Z, 29), Qt::Key_Z); // as in Germany
    EXPECT_EQ(latinKey(Qt::Key_Left, 113), Qt::Key_Left);
}

TEST(WindowKeysTest, aTextFieldKeepsWhatTypesAndGivesTheFocusBackOnUpDownReturnAndEscape) {
    for (const int key :
         {Qt::Key_S, Qt::Key_I, Qt::Key_Z, Qt::Key_5, Qt::Key_Space, Qt::Key_Left, Qt::Key_Right}) {
        EXPECT_FALSE(command(key, Qt::NoModifier, KeyFocus::textField, ViewMode::loupe)) << key;
    }
    for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Return, Qt::Key_Escape}) {
        EXPECT_EQ(command(key, Qt::NoModifier, KeyFocus::textField), WindowCommand{Kind::focusPhotos}) << key;
    }
    EXPECT_EQ(command(Qt::Key_Return, Qt::ControlModifier, KeyFocus::textField),
              WindowCommand{Kind::copyMarked});
    // A number's arrows are its own.
    for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_5, Qt::Key_S, Qt::Key_Delete})
        EXPECT_FALSE(command(key, Qt::NoModifier, KeyFocus::numberField)) << key;
    for (const int key : {Qt::Key_Return, Qt::Key_Escape})
        EXPECT_EQ(command(key, Qt::NoModifier, KeyFocus::numberField), WindowCommand{Kind::focusPhotos});
}

TEST(WindowKeysTest, aFocusedButtonIsPressedBySpaceAndReturnButLettersStillReachThePhotos) {
    EXPECT_FALSE(command(Qt::Key_Space, Qt::NoModifier, KeyFocus::button));
    EXPECT_FALSE(command(Qt::Key_Return, Qt::NoModifier, KeyFocus::button));
    EXPECT_FALSE(command(Qt::Key_Left, Qt::NoModifier, KeyFocus::slider));
    EXPECT_EQ(command(Qt::Key_S, Qt::NoModifier, KeyFocus::button), WindowCommand{Kind::toggleMark});
    EXPECT_EQ(command(Qt::Key_Escape, Qt::NoModifier, KeyFocus::slider), WindowCommand{Kind::goBack});
}

TEST(WindowKeysTest, keysOfTheSingleImageWorkThereOnlyOnEveryKindOfKeyboard) {
    const auto inLoupe = [](int key, Qt::KeyboardModifiers modifiers) {
        return command(key, modifiers, KeyFocus::photos, ViewMode::loupe);
    };
    EXPECT_EQ(inLoupe(Qt::Key_Z, Qt::NoModifier), WindowCommand{Kind::toggleZoom});
    EXPECT_EQ(inLoupe(Qt::Key_Plus, Qt::ControlModifier), WindowCommand{Kind::zoomIn});
    EXPECT_EQ(inLoupe(Qt::Key_Equal, Qt::ControlModifier), WindowCommand{Kind::zoomIn});
    EXPECT_EQ(inLoupe(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier), WindowCommand{Kind::zoomIn});
    EXPECT_EQ(inLoupe(Qt::Key_Minus, Qt::ControlModifier | Qt::KeypadModifier), WindowCommand{Kind::zoomOut});
    EXPECT_EQ(inLoupe(Qt::Key_0, Qt::ControlModifier), WindowCommand{Kind::zoomToFit});
    EXPECT_EQ(inLoupe(Qt::Key_0, Qt::ControlModifier | Qt::ShiftModifier), WindowCommand{Kind::zoomToFit});
    for (const auto modifiers : {Qt::NoModifier, Qt::GroupSwitchModifier}) // AltGr, as in Germany
        EXPECT_EQ(inLoupe(Qt::Key_Backslash, modifiers), WindowCommand{Kind::togglePresetBefore});
    EXPECT_FALSE(command(Qt::Key_Backslash));
    EXPECT_FALSE(command(Qt::Key_Z));
    EXPECT_FALSE(command(Qt::Key_0, Qt::ControlModifier));
}

TEST(WindowKeysTest, theKeyThatAMenuShowsGivesItsCommand) {
    int shown = 0;
    for (int kind = 0; kind <= static_cast<int>(Kind::quit); ++kind) {
        const auto keys = menuKey(static_cast<Kind>(kind));
        if (keys.isEmpty()) continue;
        ++shown;
        EXPECT_EQ(
            windowCommand(keys[0].key(), keys[0].keyboardModifiers(), KeyFocus::photos, ViewMode::loupe),
            WindowCommand{static_cast<Kind>(kind)});
    }
    EXPECT_GE(shown, 12);
    EXPECT_TRUE(menuKey(Kind::toggleMark).isEmpty()); // S and Return, which no menu shows
}

TEST(WindowKeysTest, keysThatEditTextStayWithATextFieldAndOtherMenuKeysDoNot) {
    const auto inField = [](int key, Qt::KeyboardModifiers modifiers) {
        return command(key, modifiers, KeyFocus::textField);
    };
    EXPECT_EQ(command(Qt::Key_Delete), WindowCommand{Kind::deletePhotos});
    EXPECT_EQ(command(Qt::Key_Backspace, Qt::ControlModifier), WindowCommand{Kind::deletePhotos});
    EXPECT_FALSE(inField(Qt::Key_Delete, Qt::NoModifier));
    EXPECT_FALSE(inField(Qt::Key_Backspace, Qt::ControlModifier));
    EXPECT_FALSE(inField(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_EQ(inField(Qt::Key_Comma, Qt::ControlModifier), WindowCommand{Kind::showSettings});
    // Where the slash needs Shift.
    EXPECT_EQ(inField(Qt::Key_Slash, Qt::ControlModifier | Qt::ShiftModifier),
              WindowCommand{Kind::showShortcuts});
}

TEST(WindowKeysTest, onlyMovingAndZoomingRepeatWhileAKeyIsHeld) {
    EXPECT_TRUE(command(Qt::Key_Right)->repeats());
    EXPECT_FALSE(command(Qt::Key_Space)->repeats());
    EXPECT_FALSE(command(Qt::Key_S)->repeats());
}

TEST(WindowKeysTest, theFocusIsToldApartByTheKindOfWidget) {
    const QLineEdit field;
    const QPushButton button;
    const QSlider slider;
    const QWidget canvas;
    EXPECT_EQ(keyFocus(&field), KeyFocus::textField);
    EXPECT_EQ(keyFocus(&button), KeyFocus::button);
    EXPECT_EQ(keyFocus(&slider), KeyFocus::slider);
    EXPECT_EQ(keyFocus(&canvas), KeyFocus::photos);
    EXPECT_EQ(keyFocus(nullptr), KeyFocus::photos);
}

} // namespace kelvara
