#include "views/Symbols.h"

#include <QImage>

#include <gtest/gtest.h>

namespace kelvara {

namespace {

/// The share of the area that is inked, 0 to 1.
double coverage(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) sum += qAlpha(image.pixel(x, y)) / 255.0;
    return sum / (image.width() * image.height());
}

} // namespace

TEST(SymbolsTest, everyDrawingInTheSetHasInkAndLeavesTheOuterEdgeFree) {
    const auto names = symbolNames();
    ASSERT_GE(names.size(), 40);
    for (const auto& name : names) {
        const auto image = symbol(name, 24, Qt::black, 4).toImage();
        ASSERT_EQ(image.size(), QSize(96, 96)) << name.toStdString();
        EXPECT_GT(coverage(image), 0.02) << name.toStdString();
        for (int i = 0; i < 96; ++i) {
            const auto edge = qAlpha(image.pixel(i, 0)) + qAlpha(image.pixel(i, 95)) +
                              qAlpha(image.pixel(0, i)) + qAlpha(image.pixel(95, i));
            ASSERT_EQ(edge, 0) << name.toStdString() << " is clipped at " << i;
        }
    }
}

TEST(SymbolsTest, aSymbolTakesTheColourItIsAskedFor) {
    const auto image = symbol(u"circle", 24, QColor(10, 200, 30), 2).toImage();
    const auto ink = image.pixelColor(24, 6); // on the ring: 3 of 24 units below the top
    EXPECT_EQ(ink, QColor(10, 200, 30));
    EXPECT_EQ(image.pixelColor(24, 24).alpha(), 0);
}

TEST(SymbolsTest, aFilledBadgeIsCutOutSoThatThePictureShowsThrough) {
    const auto filled = symbol(u"xmark.circle.fill", 24, Qt::white, 2).toImage();
    EXPECT_EQ(filled.pixelColor(24, 24).alpha(), 0); // where the strokes cross
    EXPECT_EQ(filled.pixelColor(24, 12).alpha(), 255);
}

TEST(SymbolsTest, anIconIsAsSharpAsItsScreen) {
    const auto icon = symbolIcon(u"folder", Qt::white);
    EXPECT_EQ(icon.pixmap(QSize(16, 16), 2.0).size(), QSize(32, 32));
    EXPECT_EQ(icon.pixmap(QSize(16, 16), 1.5).size(), QSize(24, 24));
}

TEST(SymbolsTest, anUnknownNameGivesNothing) {
    EXPECT_TRUE(symbol(u"no.such.symbol", 16, Qt::white, 1).isNull());
}

} // namespace kelvara
