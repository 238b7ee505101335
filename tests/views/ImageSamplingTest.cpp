#include "views/ImageSampling.h"
#include "views/BitmapImage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvara {

namespace {

constexpr QRgb background = 0xff203040;

QImage numbered(int width, int height) {
    QImage image{width, height, QImage::Format_RGB32};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.setPixel(x, y, qRgb(x % 256, y % 256, (x * 7 + y * 13) % 256));
    return image;
}

BitmapPtr bitmapOf(const QImage& image) {
    auto bitmap = Bitmap::create({image.width(), image.height()}, ColorProfile::sRGB());
    for (int y = 0; y < image.height(); ++y)
        std::copy_n(image.constScanLine(y), image.width() * 4, bitmap->row(y).begin());
    return bitmap;
}

QImage drawn(const QImage& image, QSize size, const ImageView& view) {
    QImage frame{size, QImage::Format_RGB32};
    frame.fill(Qt::magenta);
    drawImage(frame, *ImagePyramid::build(bitmapOf(image)), view, background);
    return frame;
}

ImageView viewOf(const QImage& image, ZoomPoint origin, double magnification) {
    return {origin,
            magnification,
            {static_cast<double>(image.width()), static_cast<double>(image.height())},
            magnification > 1.001};
}

} // namespace

TEST(ImageSamplingTest, oneHundredPercentShowsThePixelsThemselves) {
    const auto image = numbered(300, 200);
    const auto frame = drawn(image, {100, 80}, viewOf(image, {40, 30}, 1));
    EXPECT_EQ(frame, image.copy(40, 30, 100, 80));
    // Between two pixels it still takes whole ones.
    EXPECT_EQ(drawn(image, {100, 80}, viewOf(image, {40.3, 30.4}, 1)), frame);
}

TEST(ImageSamplingTest, aSmallImageLiesInTheMiddleOfTheBackground) {
    const auto image = numbered(20, 10);
    const auto frame = drawn(image, {40, 30}, viewOf(image, {-10, -10}, 1));
    EXPECT_EQ(frame.copy(10, 10, 20, 10), image);
    EXPECT_EQ(frame.pixel(9, 15), background);
    EXPECT_EQ(frame.pixel(30, 15), background);
    EXPECT_EQ(frame.pixel(15, 9), background);
    EXPECT_EQ(frame.pixel(15, 20), background);
}

TEST(ImageSamplingTest, aboveOneHundredPercentPixelsAreSquares) {
    const auto image = numbered(50, 50);
    const auto frame = drawn(image, {40, 40}, viewOf(image, {5, 6}, 4));
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_EQ(frame.pixel(x, y), image.pixel(5 + x / 4, 6 + y / 4)) << x << " " << y;
}

TEST(ImageSamplingTest, aFinePatternShrinksToItsMeanWithoutAliasing) {
    QImage checks{512, 512, QImage::Format_RGB32};
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x) checks.setPixel(x, y, (x + y) % 2 == 0 ? 0xffffffff : 0xff000000);
    for (const double magnification : {0.5, 0.37, 0.25, 0.1}) {
        const auto side = static_cast<int>(512 * magnification);
        const auto frame = drawn(checks, {side, side}, viewOf(checks, {0, 0}, magnification));
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) ASSERT_NEAR(qRed(frame.pixel(x, y)), 128, 2) << magnification;
    }
}

TEST(ImageSamplingTest, aThumbnailStandsWhereTheFullImageWill) {
    QImage full{800, 600, QImage::Format_RGB32};
    full.fill(Qt::black);
    for (int y = 200; y < 400; ++y)
        for (int x = 400; x < 600; ++x) full.setPixel(x, y, 0xffffffff);
    const auto thumbnail = full.scaled(200, 150, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto view = viewOf(full, {0, 0}, 0.5);
    const auto exact = drawn(full, {400, 300}, view);
    const auto standIn = drawn(thumbnail, {400, 300}, view);
    for (const auto& [x, y] :
         {std::pair{210, 110}, {290, 190}, {190, 110}, {310, 190}, {250, 90}, {250, 210}}) {
        EXPECT_EQ(exact.pixel(x, y), standIn.pixel(x, y)) << x << " " << y;
    }
}

TEST(ImagePyramidTest, levelsHalveRoundedUpAndAreWhatFitNeeds) {
    const auto bitmap = bitmapOf(numbered(1001, 333));
    const auto pyramid = ImagePyramid::build(bitmap);
    EXPECT_EQ(pyramid->image().constBits(), bitmap->data()); // not copied
    EXPECT_EQ(pyramid->level(1).constBits(), pyramid->bitmap(1)->data());
    EXPECT_EQ(pyramid->level(1).size(), QSize(501, 167));
    EXPECT_EQ(pyramid->level(2).size(), QSize(251, 84));
    EXPECT_EQ(pyramid->levelFor(3), 0);
    EXPECT_EQ(pyramid->levelFor(0.51), 0);
    EXPECT_EQ(pyramid->levelFor(0.5), 1);
    EXPECT_EQ(pyramid->levelFor(0.26), 1);
    EXPECT_EQ(pyramid->levelFor(1e-9), pyramid->levels() - 1);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(ImagePyramid::build(bitmap, stop.get_token()), nullptr);
}

TEST(BitmapImageTest, theImageUsesTheBitmapsMemoryAndKeepsItAlive) {
    auto made = Bitmap::create({3, 2}, ColorProfile::sRGB());
    for (int y = 0; y < 2; ++y) std::ranges::fill(made->row(y), std::uint8_t{0});
    made->row(1)[2 * 4 + 2] = 0xcc; // red of the last pixel
    BitmapPtr bitmap = std::move(made);
    const std::weak_ptr<const Bitmap> watch = bitmap;
    auto image = wrapped(bitmap);
    EXPECT_EQ(image.constBits(), bitmap->data());
    bitmap = nullptr;
    EXPECT_EQ(qRed(image.pixel(2, 1)), 0xcc);
    EXPECT_FALSE(watch.expired());
    image = {};
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(wrapped(nullptr).isNull());
}

} // namespace kelvara
