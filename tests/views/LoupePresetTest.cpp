#include "views/LoupeFixture.h"

#include <QLabel>

#include <array>

namespace kelvara {

namespace {

/// Photos and presets of which every pair gives another colour.
class LoupePresetTest : public LoupeFixture {
protected:
    static constexpr std::array hues{20, 80, 140, 200, 260};
    static QColor photoColour(std::size_t index) { return QColor::fromHsv(hues[index], 200, 130); }

    void showPhotos(const QSize& size = {300, 200}) {
        for (std::size_t i = 0; i < hues.size(); ++i)
            addPhoto(numbered(static_cast<int>(i)), photoColour(i), size);
        m_presetFolder.write("a.xmp", xmpPreset("Brighter", 0.7));
        m_presetFolder.write("b.xmp", xmpPreset("Darker", -0.8));
        show();
    }
    /// "" for none.
    [[nodiscard]] QColor expected(std::size_t photo, const std::string& preset) const {
        const auto plain = photoColour(photo);
        if (preset.empty()) return plain;
        const auto drawn =
            m_presets->preset(preset)->look.apply({plain.redF(), plain.greenF(), plain.blueF()});
        return QColor::fromRgbF(static_cast<float>(drawn[0]), static_cast<float>(drawn[1]),
                                static_cast<float>(drawn[2]));
    }
    [[nodiscard]] bool shows(std::size_t photo, const std::string& preset) const {
        const auto shown = colour();
        if (!shown) return false;
        const auto wanted = expected(photo, preset);
        return std::abs(shown->red() - wanted.red()) + std::abs(shown->green() - wanted.green()) +
                   std::abs(shown->blue() - wanted.blue()) <
               15;
    }
    [[nodiscard]] QString caption(int index) const {
        QStringList shown;
        for (const auto* label : view().findChildren<QLabel*>()) {
            if (label->isVisible()) shown.append(label->text());
        }
        return shown.value(index);
    }
};

} // namespace

TEST_F(LoupePresetTest, neverShowsAnotherPhotoOrGoesBackToAnotherPreset) {
    showPhotos();
    const std::array<std::string, 3> presets{"", "a.xmp", "b.xmp"};
    std::size_t focused = 0;
    std::size_t active = 0;
    bool hasArrived = false; // as the active preset draws it
    for (int step = 0; step < 1500; ++step) {
        // Forwards and backwards, at every stage of loading and drawing.
        if (step % 17 == 3 || step % 29 == 5) {
            focused = (focused * 3 + static_cast<std::size_t>(step)) % hues.size();
            focus(focused);
            hasArrived = false;
        }
        if (step % 13 == 7) {
            active = (active + static_cast<std::size_t>(step)) % presets.size();
            if (step % 2 == 0) {
                m_presets->setHoveredPresetID(presets[active]);
            } else {
                m_presets->select(presets[active]);
            }
            hasArrived = false;
        }
        const std::array<ManualExecutor*, 4> executors{&m_decoding, &m_main, &m_rendering, &m_drawing};
        executors[static_cast<std::size_t>(step) % executors.size()]->runOne();
        ASSERT_TRUE(!colour() || shows(focused, "") || shows(focused, "a.xmp") || shows(focused, "b.xmp"))
            << "step " << step;
        ASSERT_TRUE(!colour() || !presets[active].empty() || shows(focused, "")) << "step " << step;
        ASSERT_TRUE(!hasArrived || shows(focused, presets[active])) << "step " << step;
        hasArrived = shows(focused, presets[active]);
    }
    for (const auto& preset : presets) {
        m_presets->select(preset);
        settleLoupe();
        EXPECT_TRUE(shows(focused, preset)) << preset;
    }
}

TEST_F(LoupePresetTest, theNeighboursAreDrawnAheadSoThatTheyNeverAppearWithoutThePreset) {
    showPhotos();
    m_presets->select("a.xmp");
    settleLoupe();
    focus(1);
    EXPECT_TRUE(shows(1, "a.xmp"));
    EXPECT_EQ(m_loupe->infoBar().presetText(), "Brighter");
}

TEST_F(LoupePresetTest, backslashShowsTheUnprocessedPhotoUntilAnotherPhotoOrPresetComes) {
    showPhotos();
    m_loupe->toggleBefore(); // nothing to compare
    EXPECT_FALSE(m_loupe->showsBefore());
    m_presets->select("a.xmp");
    settleLoupe();
    const QString previewing = "Previewing preset “Brighter” (approximate) · \\ shows before / after";
    EXPECT_EQ(caption(0), previewing);
    const auto step = [this](int index) {
        m_loupe->toggleBefore();
        EXPECT_TRUE(shows(index == 0 ? 0 : 1, ""));
        EXPECT_EQ(caption(0), "Before");
    };
    step(0);
    m_loupe->toggleBefore();
    EXPECT_TRUE(shows(0, "a.xmp"));
    EXPECT_EQ(caption(0), previewing);
    step(0);
    focus(1);
    settleLoupe();
    EXPECT_TRUE(shows(1, "a.xmp"));
    step(1);
    m_presets->select("b.xmp");
    settleLoupe();
    EXPECT_TRUE(shows(1, "b.xmp"));
    step(1);
    m_library->setShowsLoupeOverlays(false);
    EXPECT_EQ(caption(0), "");
    EXPECT_TRUE(shows(1, ""));
}

TEST_F(LoupePresetTest, drawsWhatTheZoomShowsAndKeepsZoomAndPlace) {
    showPhotos({2400, 1600});
    settleLoupe();
    m_library->requestZoom(ZoomRequest::Command::toggle);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().geometry().magnification() == 1.0; }));
    const auto origin = view().geometry().origin();
    m_presets->select("a.xmp");
    while (!shows(0, "a.xmp") && (m_drawing.runOne() || m_main.runOne())) {
    }
    EXPECT_EQ(view().image()->image().width(), 1200); // quick
    EXPECT_EQ(view().geometry().origin(), origin);
    settleLoupe();
    EXPECT_EQ(view().image()->image().width(), 2400);
    EXPECT_TRUE(shows(0, "a.xmp"));
    EXPECT_EQ(view().geometry().origin(), origin);
    EXPECT_EQ(view().geometry().magnification(), 1.0);

    focus(1);
    EXPECT_FALSE(m_loupe->preview().isRefining()); // there is too little of the photo yet
    settleLoupe();
    EXPECT_EQ(view().image()->image().width(), 2400);
    EXPECT_TRUE(shows(1, "a.xmp"));
    EXPECT_EQ(view().geometry().origin(), origin);

    // At fit fewer pixels do, whichever preset comes.
    m_library->requestZoom(ZoomRequest::Command::fit);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().geometry().isAtFit(); }));
    m_presets->select("b.xmp");
    settleLoupe();
    EXPECT_EQ(view().image()->image().width(), 600);
}

TEST_F(LoupePresetTest, drawsNothingWithoutPreviewsNorForVideosNorForFilesItCannotRead) {
    m_card.write("v.mov", "no film");
    m_card.write("x.jpg", "no picture");
    showPhotos();
    m_presets->select("a.xmp");
    settleLoupe();
    m_presets->setShowsPreviews(false);
    EXPECT_TRUE(shows(0, ""));
    EXPECT_EQ(caption(0), "");
    m_presets->select("b.xmp");
    focus(3);
    while (m_decoding.runOne() || m_rendering.runOne() || m_main.runOne()) {
    }
    EXPECT_EQ(m_drawing.pending(), 0U);
    m_presets->setShowsPreviews(true);
    settleLoupe();
    EXPECT_TRUE(shows(3, "b.xmp"));

    for (const auto* preset : {"a.xmp", "b.xmp"}) { // the video, then the other
        focus(preset == std::string{"a.xmp"} ? hues.size() : hues.size() + 1);
        m_drawing.runAll(); // what had begun for the photo before
        m_presets->select(preset);
        while (m_decoding.runOne() || m_rendering.runOne() || m_main.runOne()) {
        }
        EXPECT_EQ(m_drawing.pending(), 0U);
        EXPECT_EQ(caption(0), "");
    }
}

} // namespace kelvara
