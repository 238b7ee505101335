#include "views/EditInspector.h"

#include "library/PreferenceKeys.h"
#include "views/HistogramView.h"
#include "views/LightSlider.h"
#include "views/LightValueField.h"
#include "views/LoupeFixture.h"

#include <QAccessible>
#include <QApplication>

namespace kelvara {

namespace {

using Slider = LightAdjustments::Slider;

class EditInspectorTest : public LoupeFixture {
protected:
    void open(const QColor& colour = {100, 110, 120}) {
        for (int i = 0; i < 3; ++i) addPhoto(numbered(i), colour);
        m_card.write("v.mov", "no film");
        show();
        m_inspector = std::make_unique<EditInspector>(EditInspector::Services{.library = *m_library,
                                                                              .presets = *m_presets,
                                                                              .edits = m_history,
                                                                              .preferences = m_preferences,
                                                                              .loupe = *m_loupe,
                                                                              .rendering = m_rendering,
                                                                              .main = m_main});
        m_inspector->resize(280, 600);
        m_inspector->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_inspector.get()));
        settleLoupe();
    }
    template <typename W> [[nodiscard]] W& find(const QString& name) const {
        const auto all = m_inspector->findChildren<W*>();
        return **std::ranges::find(all, name, &QWidget::accessibleName);
    }
    [[nodiscard]] double value(Slider slider) const {
        return m_edits.adjustments(m_library->focusedID())[slider];
    }
    [[nodiscard]] int brightness() const { return colour()->value(); }
    static void press(QWidget& slider, double share) {
        QTest::mousePress(&slider, Qt::LeftButton, {}, {qRound(slider.width() * share), slider.height() / 2});
    }
    static void move(QWidget& slider, double share, Qt::KeyboardModifiers modifiers = {}) {
        const QPointF at{slider.width() * share, slider.height() / 2.0};
        QMouseEvent event{QEvent::MouseMove, at,       slider.mapToGlobal(at), Qt::NoButton,
                          Qt::LeftButton,    modifiers};
        QApplication::sendEvent(&slider, &event);
    }
    static void release(QWidget& slider) { QTest::mouseRelease(&slider, Qt::LeftButton); }

    EditHistory m_history{m_edits};
    std::unique_ptr<EditInspector> m_inspector;
};

} // namespace

TEST_F(EditInspectorTest, aDragIsSeenOnThePhotoAndIsOneStep) {
    open();
    auto& exposure = find<LightSlider>("Exposure");
    const auto plain = brightness();
    press(exposure, 0.5);
    for (const auto share : {0.52, 0.6, 0.65}) move(exposure, share);
    release(exposure);
    EXPECT_GT(value(Slider::exposure), 1);
    EXPECT_LT(value(Slider::exposure), 2);
    settleLoupe();
    EXPECT_GT(brightness(), plain + 20);
    m_loupe->toggleBefore();
    EXPECT_EQ(brightness(), plain);
    m_loupe->toggleBefore();

    // With Alt a tenth of the way, from where it is.
    const auto coarse = value(Slider::exposure);
    press(exposure, 0.65);
    move(exposure, 0.85, Qt::AltModifier);
    release(exposure);
    EXPECT_NEAR(value(Slider::exposure), coarse + 0.2, 0.06);
    m_history.undo();
    EXPECT_EQ(value(Slider::exposure), coarse);
    m_history.undo();
    EXPECT_EQ(value(Slider::exposure), 0);
    settleLoupe();
    EXPECT_EQ(brightness(), plain);
}

TEST_F(EditInspectorTest, valuesThatComeFasterThanTheyAreDrawnLeaveOneDrawingUnderWayAndEndWithTheNewest) {
    open();
    auto& exposure = find<LightSlider>("Exposure");
    press(exposure, 0.5);
    std::vector<int> seen;
    for (int i = 0; i < 20; ++i) {
        move(exposure, 0.55 + i * 0.01);
        EXPECT_LE(m_drawing.pending(), 1U);
        if (i % 4 == 3 && m_drawing.runOne()) m_main.runAll();
        if (seen.empty() || seen.back() != brightness()) seen.push_back(brightness());
    }
    EXPECT_GE(seen.size(), 5U);                // it moves while the hand does,
    EXPECT_TRUE(std::ranges::is_sorted(seen)); // and never back
    release(exposure);
    settleLoupe();
    EXPECT_GT(brightness(), seen.back());
}

TEST_F(EditInspectorTest, doubleClicksKeysAndTypedNumbersSetASlider) {
    open();
    auto& contrast = find<LightSlider>("Contrast");
    QTest::mouseClick(&contrast, Qt::LeftButton, {}, {contrast.width() - 2, 10});
    EXPECT_EQ(value(Slider::contrast), 100);
    QTest::mouseDClick(&contrast, Qt::LeftButton, {}, {contrast.width() - 2, 10});
    EXPECT_EQ(value(Slider::contrast), 0);

    auto& exposure = find<LightSlider>("Exposure");
    exposure.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&exposure, Qt::Key_Right);
    QTest::keyClick(&exposure, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(&exposure, Qt::Key_Left, Qt::AltModifier);
    EXPECT_DOUBLE_EQ(value(Slider::exposure), 0.29);
    auto* told = QAccessible::queryAccessibleInterface(&exposure);
    ASSERT_TRUE(told);
    EXPECT_EQ(told->text(QAccessible::Name), "Exposure");
    EXPECT_EQ(told->text(QAccessible::Value), "+0.29");
    EXPECT_EQ(told->valueInterface()->maximumValue(), 5);
    m_history.undo();
    EXPECT_EQ(value(Slider::exposure), 0);

    auto& number = find<LightValueField>("Highlights");
    const auto type = [&](const QString& text, Qt::Key key) {
        number.setFocus();
        number.selectAll();
        QTest::keyClicks(&number, text);
        QTest::keyClick(&number, key);
    };
    struct Case {
        const char* text;
        Qt::Key key;
        double value;
    };
    for (const auto& [text, key, expected] :
         {Case{"-12,4", Qt::Key_Return, -12.4}, Case{"1e9", Qt::Key_Tab, 100}, Case{"x", Qt::Key_Return, 100},
          Case{"7", Qt::Key_Escape, 100}, Case{"30", Qt::Key_Up, 31}, Case{"0", Qt::Key_Return, 0}}) {
        type(QString::fromUtf8(text), key);
        number.clearFocus();
        EXPECT_EQ(value(Slider::highlights), expected) << text;
    }
    auto& typed = find<LightValueField>("Exposure");
    typed.setFocus();
    QTest::keyClick(&typed, Qt::Key_Down);
    QTest::keyClick(&typed, Qt::Key_Down, Qt::AltModifier);
    EXPECT_DOUBLE_EQ(value(Slider::exposure), -0.06);
    m_history.undo(); // both at once
    EXPECT_EQ(value(Slider::exposure), 0);
}

TEST_F(EditInspectorTest, whatIsTypedOrDraggedWhenAnotherPhotoComesIsOfThePhotoBefore) {
    open();
    auto& number = find<LightValueField>("Exposure");
    number.setFocus();
    number.selectAll();
    QTest::keyClicks(&number, QStringLiteral("2"));
    auto& contrast = find<LightSlider>("Contrast");
    press(contrast, 0.5);
    move(contrast, 0.75);
    const auto dragged = value(Slider::contrast);
    EXPECT_GT(dragged, 0);
    focus(1);
    move(contrast, 0.9);
    number.clearFocus();
    EXPECT_TRUE(m_edits.adjustments(photo(1)).isEmpty());
    EXPECT_EQ(m_edits.adjustments(photo(0))[Slider::contrast], dragged);
    EXPECT_EQ(m_edits.adjustments(photo(0))[Slider::exposure], 2);
}

TEST_F(EditInspectorTest, theWheelScrollsThePanelUnlessTheSliderHasTheKeyboard) {
    open();
    auto& slider = find<LightSlider>("Whites");
    const auto turn = [&] {
        QWheelEvent event{{10, 10}, slider.mapToGlobal(QPointF{10, 10}), {}, {0, 120}, {}, {}, {}, false};
        QApplication::sendEvent(&slider, &event);
    };
    turn();
    EXPECT_EQ(value(Slider::whites), 0);
    slider.setFocus(Qt::TabFocusReason);
    turn();
    EXPECT_EQ(value(Slider::whites), 1);
}

TEST_F(EditInspectorTest, autoSetsTheLightFromThePlainPhotoAndResetTakesItBack) {
    open({60, 60, 60});
    m_history.setSlider(Slider::exposure, -3, photo(0));
    settleLoupe();
    find<QToolButton>("Auto").click();
    settleLoupe();
    EXPECT_GT(value(Slider::exposure), 0);
    EXPECT_EQ(m_history.undoName(), EditHistory::Name{EditHistory::Action::automatic});
    find<QToolButton>("Reset").click();
    EXPECT_TRUE(m_edits.adjustments(photo(0)).isEmpty());
    EXPECT_FALSE(find<QToolButton>("Reset").isEnabled());
}

TEST_F(EditInspectorTest, theMarksTellOfClippingAndShowWhere) {
    open({128, 128, 128});
    auto& highlights = find<ClippingMark>("Clipped Highlights");
    auto& shadows = find<ClippingMark>("Clipped Shadows");
    EXPECT_FALSE(highlights.isLit() || shadows.isLit());
    m_history.setSlider(Slider::exposure, 5, photo(0));
    settleLoupe();
    EXPECT_TRUE(highlights.isLit());
    EXPECT_FALSE(shadows.isLit());
    const auto middle = [this] { return m_loupe->grab().toImage().pixelColor(200, 150); };
    EXPECT_EQ(middle().saturation(), 0);
    highlights.click();
    EXPECT_GT(middle().red(), middle().blue() + 100);
    m_inspector->hide();
    EXPECT_EQ(middle().saturation(), 0);
}

TEST_F(EditInspectorTest, showsTheFocusedPhotosEditsAndNoneOfAVideo) {
    open();
    m_history.setSlider(Slider::blacks, 20, photo(1));
    EXPECT_EQ(find<LightSlider>("Blacks").amount(), 0);
    focus(1);
    EXPECT_EQ(find<LightSlider>("Blacks").amount(), 20);
    settleLoupe();
    focus(3); // the video
    EXPECT_FALSE(find<LightSlider>("Blacks").isVisible());
    m_history.setSlider(Slider::exposure, 2, m_card / "v.jpg"); // of the same shot
    EXPECT_FALSE(m_loupe->canShowBefore());
}

TEST_F(EditInspectorTest, remembersWhetherTheGroupIsOpen) {
    open();
    auto& slider = find<LightSlider>("Exposure");
    EXPECT_TRUE(slider.isVisible());
    find<QToolButton>("Light").click();
    EXPECT_FALSE(slider.isVisible());
    EXPECT_EQ(m_preferences.boolean(PreferenceKeys::editLightExpanded), false);
}

} // namespace kelvara
