#pragma once

#include "presets/PresetTestFiles.h"
#include "support/FakeFolderWatch.h"
#include "views/LoupeInfoBar.h"
#include "views/LoupeView.h"
#include "views/PictureFixture.h"

#include <QTest>

#include <cmath>

namespace kelvara {

/// A loupe on real pictures and presets, which are decoded, drawn and halved when the test says so.
class LoupeFixture : public PictureFixture {
protected:
    LoupeView& show() {
        open();
        m_presets = std::make_unique<PresetStore>(PresetServices{.files = m_files,
                                                                 .trash = m_trash,
                                                                 .watch = m_presetWatch,
                                                                 .desktop = m_desktop,
                                                                 .preferences = m_preferences,
                                                                 .background = m_background,
                                                                 .main = m_main,
                                                                 .folder = m_presetFolder.url(),
                                                                 .collationLocale = {}});
        settle();
        m_library->toggleViewMode();
        m_loupe = std::make_unique<LoupeView>(*m_library, m_sources, m_previews, m_metadata, *m_presets,
                                              m_renderer, m_rendering, m_main);
        m_loupe->resize(400, 400);
        m_loupe->show();
        QCoreApplication::processEvents();
        return *m_loupe;
    }
    void focus(std::size_t index) { m_library->setFocusedID(photo(index)); }
    [[nodiscard]] const ZoomableImageView& view() const { return m_loupe->imageView(); }
    /// The colour of the picture on screen; nothing while none is shown.
    [[nodiscard]] std::optional<QColor> colour() const {
        if (!view().image()) return std::nullopt;
        return view().image()->image().pixelColor(10, 10);
    }
    [[nodiscard]] std::optional<int> hue() const {
        const auto shown = colour();
        return shown ? std::optional{shown->hue()} : std::nullopt;
    }
    [[nodiscard]] bool showsHue(int expected) const {
        const auto shown = hue();
        return shown && std::abs(*shown - expected) < 8;
    }
    /// Until nothing is on its way, what waits for a moment without changes included.
    void settleLoupe() {
        ASSERT_TRUE(QTest::qWaitFor([this] {
            while (m_drawing.runOne() || m_background.runOne() || m_thumbnailDrawing.runOne() ||
                   m_decoding.runOne() || m_reading.runOne() || m_rendering.runOne() || m_main.runOne()) {
            }
            return !m_loupe->isLoading();
        }));
    }

    TemporaryFolder m_presetFolder;
    FakeFolderWatch m_presetWatch;
    std::unique_ptr<PresetStore> m_presets;
    ManualExecutor m_drawing; ///< Of presets.
    PresetRenderer m_renderer{m_drawing, m_main};
    std::unique_ptr<LoupeView> m_loupe;
};

} // namespace kelvara
