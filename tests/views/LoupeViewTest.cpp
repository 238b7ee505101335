#include "views/LoupeView.h"
#include "imaging/DecodingTest.h"
#include "views/LoupeFixture.h"

#include <QLabel>

namespace kelvara {

class LoupeViewTest : public LoupeFixture {};

TEST_F(LoupeViewTest, assistiveToolsReadWhichPhotoIsShownAndHowItWasJudged) {
    addPhotos(2);
    show();
    focus(1);
    EXPECT_EQ(m_loupe->accessibleName().toStdString(), photo(1).name());
    EXPECT_EQ(m_loupe->accessibleDescription(), "");
    m_library->toggleChecked(photo(1));
    m_library->setRating(*Rating::fromRawValue(3), photo(1));
    EXPECT_EQ(m_loupe->accessibleDescription(), "Marked, 3 of 5 stars");
}

TEST_F(LoupeViewTest, showsAThumbnailFirstAndThenTheFullPicture) {
    addPhoto("a.jpg", QColor::fromHsv(100, 200, 200), {2400, 1600});
    show();
    EXPECT_FALSE(hue());
    EXPECT_TRUE(m_loupe->isLoading());
    while (!view().image() && (m_main.runOne() || m_decoding.runOne())) {
    }
    EXPECT_EQ(view().image()->image().width(), 1024);
    EXPECT_FALSE(m_loupe->pictures().shown().isFullResolution);
    EXPECT_FALSE(view().zoom()); // of how many percent is not known yet
    const auto before = view().geometry().toView({0, 0});
    settlePictures();
    EXPECT_TRUE(m_loupe->pictures().shown().isFullResolution);
    EXPECT_FALSE(m_loupe->isLoading());
    EXPECT_EQ(view().geometry().pixelSize(), (ZoomSize{2400, 1600}));
    // It stands where the thumbnail stood.
    EXPECT_NEAR(view().geometry().toView({0, 0}).x, before.x, 0.5);
    EXPECT_NEAR(view().geometry().toView({0, 0}).y, before.y, 0.5);
    EXPECT_TRUE(view().zoom()->isAtFit);
}

TEST_F(LoupeViewTest, showsTheStoredThumbnailUntilABetterOneIsThere) {
    JpegRecipe stored{.size = {150, 100}};
    stored.paint = [](int, int) { return std::array<std::uint8_t, 4>{255, 0, 0, 0}; };
    JpegRecipe photo{.size = {1800, 1200}};
    photo.paint = [](int, int) { return std::array<std::uint8_t, 4>{0, 0, 255, 0}; };
    photo.exif = exifBlock(1, makeJpeg(stored));
    const auto bytes = makeJpeg(photo);
    m_card.write("a.jpg", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    show();
    while (!hue() && (m_main.runOne() || m_decoding.runOne())) {
    }
    EXPECT_EQ(hue(), 0); // red: the stored one
    EXPECT_TRUE(m_loupe->isLoading());
    settlePictures();
    EXPECT_TRUE(showsHue(240));
}

TEST_F(LoupeViewTest, neverShowsThePictureOfAnotherPhoto) {
    const std::vector<int> hues{20, 80, 140, 200, 260};
    for (std::size_t i = 0; i < hues.size(); ++i) {
        addPhoto(numbered(static_cast<int>(i)), QColor::fromHsv(hues[i], 200, 200));
    }
    show();
    std::size_t focused = 0;
    for (int step = 0; step < 300; ++step) {
        // Forwards and backwards at every stage of loading.
        if (step % 7 == 3 || step % 11 == 5) {
            focused = (focused * 3 + static_cast<std::size_t>(step)) % hues.size();
            focus(focused);
        }
        switch (step % 3) {
        case 0:
            m_decoding.runOne();
            break;
        case 1:
            m_main.runOne();
            break;
        default:
            m_rendering.runOne();
        }
        EXPECT_EQ(m_loupe->pictures().shown().url, photo(focused));
        EXPECT_TRUE(!hue() || showsHue(hues[focused])) << "step " << step;
    }
    settlePictures();
    EXPECT_TRUE(showsHue(hues[focused]));
    EXPECT_TRUE(m_loupe->pictures().shown().isFullResolution);
}

TEST_F(LoupeViewTest, aPhotoOfTheSameSizeKeepsZoomAndPlaceAndAnotherGoesToFit) {
    addPhoto("a.jpg", Qt::red, {2400, 1600});
    addPhoto("b.jpg", Qt::green, {2400, 1600});
    addPhoto("c.jpg", Qt::blue, {1600, 2400});
    show();
    settlePictures();
    auto& zoomed = *m_loupe->findChild<ZoomableImageView*>();
    QTest::mouseClick(&zoomed, Qt::LeftButton, {}, {100, 100});
    QTest::mouseDClick(&zoomed, Qt::LeftButton, {}, {100, 100});
    QTest::mouseRelease(&zoomed, Qt::LeftButton, {}, {100, 100});
    ASSERT_TRUE(QTest::qWaitFor([&] { return zoomed.geometry().magnification() == 1.0; }));
    const auto origin = zoomed.geometry().origin();

    focus(1);
    settlePictures();
    ASSERT_TRUE(m_loupe->pictures().shown().isFullResolution);
    EXPECT_EQ(zoomed.geometry().magnification(), 1.0);
    EXPECT_EQ(zoomed.geometry().origin(), origin);

    focus(2);
    settlePictures();
    EXPECT_TRUE(zoomed.geometry().isAtFit());
}

TEST_F(LoupeViewTest, aFileThatCannotBeReadShowsThatItCannot) {
    addPhoto("a.jpg", Qt::red);
    m_card.write("b.jpg", "no picture");
    show();
    focus(1);
    settlePictures();
    EXPECT_TRUE(m_loupe->pictures().shown().isUnreadable);
    EXPECT_TRUE(m_loupe->accessibleName().startsWith("Can't read "));
    EXPECT_FALSE(view().isVisible());
    EXPECT_FALSE(m_loupe->isLoading());
    focus(0);
    settlePictures();
    EXPECT_TRUE(view().isVisible());
    EXPECT_TRUE(m_loupe->pictures().shown().isFullResolution);
}

TEST_F(LoupeViewTest, prefetchesTheNeighboursOnceThePhotoIsThere) {
    for (int i = 0; i < 6; ++i) addPhoto(numbered(i), Qt::gray);
    show();
    focus(2);
    settlePictures();
    EXPECT_NE(m_previews.cachedFullResolution(photo(1)), nullptr);
    EXPECT_NE(m_previews.cachedFullResolution(photo(3)), nullptr);
    EXPECT_EQ(m_previews.cachedFullResolution(photo(4)), nullptr);
    EXPECT_NE(m_thumbnails.cachedThumbnail(photo(5), 1024), nullptr);
}

TEST_F(LoupeViewTest, zoomCommandsReachThePictureOnce) {
    addPhoto("a.jpg", Qt::red, {2400, 1600});
    show();
    settlePictures();
    m_library->requestZoom(ZoomRequest::Command::toggle);
    EXPECT_EQ(view().geometry().target(), 1.0);
    m_library->requestZoom(ZoomRequest::Command::zoomIn);
    EXPECT_EQ(view().geometry().target(), 1.5);
    m_library->requestZoom(ZoomRequest::Command::fit);
    EXPECT_TRUE(view().geometry().isAtFit());
}

TEST_F(LoupeViewTest, draggingMovesAZoomedPictureOnly) {
    addPhoto("a.jpg", Qt::red, {2400, 1600});
    show();
    settlePictures();
    auto& image = *m_loupe->findChild<ZoomableImageView*>();
    const auto drag = [&] {
        QTest::mousePress(&image, Qt::LeftButton, {}, {100, 100});
        QTest::mouseMove(&image, {80, 70});
        QTest::mouseRelease(&image, Qt::LeftButton, {}, {80, 70});
    };
    const auto fitted = image.geometry().origin();
    drag();
    EXPECT_EQ(image.geometry().origin(), fitted);
    m_library->requestZoom(ZoomRequest::Command::toggle);
    ASSERT_TRUE(QTest::qWaitFor([&] { return image.geometry().magnification() == 1.0; }));
    const auto origin = image.geometry().origin();
    drag();
    EXPECT_DOUBLE_EQ(image.geometry().origin().x, origin.x + 20);
    EXPECT_DOUBLE_EQ(image.geometry().origin().y, origin.y + 30);
    EXPECT_EQ(image.cursor().shape(), Qt::OpenHandCursor);
}

TEST_F(LoupeViewTest, nothingInTheInfoBarIsCutHoweverNarrowItIs) {
    LoupeInfoBar bar;
    bar.show({.url = FileURL{"/card/a rather long name of a file.jpg"},
              .position = 10'885,
              .total = 16'000,
              .exposure = QStringLiteral("ƒ/2.8 · 1/8000s · ISO 12800"),
              .isChecked = true,
              .rating = *Rating::fromRawValue(5),
              .zoom = ZoomState{100, true},
              .isLoadingFullResolution = true,
              .preset = QStringLiteral("Some preset's rather long title 65%")});
    bar.setVisible(true);
    for (int width = 240; width < 1400; width += 20) {
        bar.resize(width, bar.height());
        QCoreApplication::processEvents();
        for (const auto* part : bar.findChildren<QLabel*>()) {
            if (!part->isVisible()) continue;
            EXPECT_GE(part->width(), part->minimumSizeHint().width()) << part->text().toStdString() << width;
        }
    }
}

TEST_F(LoupeViewTest, theExposureInTheInfoBarIsThatOfTheFocusedPhoto) {
    addPhotos(3);
    show();
    m_reading.runAll(); // read, but not delivered yet
    focus(1);
    focus(2);
    EXPECT_EQ(m_loupe->infoBar().exposureText(), "");
    settlePictures();
    EXPECT_EQ(m_loupe->infoBar().exposureText(), "ISO 102");
    EXPECT_EQ(m_metadataReads, 2); // the one in between was passed over
    focus(0);
    EXPECT_EQ(m_loupe->infoBar().exposureText(), "ISO 100"); // at once, as it is known
}

} // namespace kelvara
