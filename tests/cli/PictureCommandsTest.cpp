#include "cli/CommandLine.h"
#include "samplecard/JPEG.h"

#include <exiv2/exiv2.hpp>

namespace kelvara {
namespace {

using namespace samplecard;
using Strings = std::vector<std::string>;

class PictureCommandsTest : public CommandLineTest {
protected:
    void SetUp() override {
        Shot shot;
        shot.time = 1'709'993'133;
        shot.fNumber = {28, 10};
        shot.orientation = 6;
        card.write("a.jpg", photoJPEG(Picture{96, 128}, shot, {}));
        card.write("broken.cr3", "no photo");
    }
    [[nodiscard]] std::string path(std::string_view name) const { return card.at(name).path(); }
    [[nodiscard]] Strings thumbnail(std::string_view name, const std::string& size,
                                    std::string_view output) const {
        return {"thumbnail", path(name), "--size", size, "--output", target.at(output).path(), "--json"};
    }
};

TEST_F(PictureCommandsTest, metadataIsPrintedForPeopleAndScripts) {
    const auto text = run({"metadata", path("a.jpg")});
    EXPECT_EQ(text.exitCode, 0) << text.errors;
    EXPECT_EQ(text.output, "Camera         Kelvara K1\n"
                           "Lens           KL 24-70mm F2.8\n"
                           "Aperture       ƒ/2.8\n"
                           "Shutter        1/250s\n"
                           "ISO            100\n"
                           "Focal Length   35mm\n"
                           "Exposure Bias  +0 EV\n"
                           "Captured       2024-03-09 14:05:33\n"
                           "Dimensions     128 × 96\n"
                           "Orientation    6\n");
    const auto json = run({"metadata", path("a.jpg"), "--json", "--full"}).json();
    EXPECT_EQ(json.at("captureDate"), "2024-03-09T14:05:33");
    EXPECT_EQ(json.at("exposureTime"), 0.004);
    EXPECT_EQ(json.at("pixelWidth"), 128);
    EXPECT_EQ(json.at("summaryLine"), "ƒ/2.8 · 1/250s · ISO 100");
    EXPECT_EQ(json.at("sections").at(0).at("title"), "Exif");
    EXPECT_THAT(run({"metadata", path("a.jpg"), "--full"}).output, testing::HasSubstr("\nTIFF\n"));
}

TEST_F(PictureCommandsTest, whatAFileDoesNotSayIsNoFailure) {
    const auto result = run({"metadata", path("broken.cr3")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    const auto json = run({"metadata", path("broken.cr3"), "--json"}).json();
    EXPECT_TRUE(json.at("iso").is_null());
    EXPECT_FALSE(json.contains("sections"));
    EXPECT_EQ(run({"metadata", path("missing.jpg")}).exitCode, 1);
    EXPECT_EQ(run({"metadata", card.url().path()}).exitCode, 1);
}

TEST_F(PictureCommandsTest, aThumbnailIsUprightAndOfTheSizeAskedFor) {
    for (const auto* name : {"a.png", "a.JPEG"}) {
        const auto result = run(thumbnail("a.jpg", "64", name));
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(result.json().at("width"), 48);
        EXPECT_EQ(result.json().at("height"), 64);
        const auto image = Exiv2::ImageFactory::open(target.at(name).path());
        image->readMetadata();
        EXPECT_EQ(image->pixelWidth(), 48);
        EXPECT_EQ(image->pixelHeight(), 64);
        EXPECT_EQ(image->mimeType(), std::string_view{name} == "a.png" ? "image/png" : "image/jpeg");
        EXPECT_TRUE(image->iccProfileDefined());
    }
    EXPECT_EQ(run(thumbnail("a.jpg", "4000", "large.jpg")).json().at("height"), 128); // never enlarged
}

TEST_F(PictureCommandsTest, aThumbnailReplacesNothingButAnEarlierOne) {
    target.write("a.png", "earlier");
    EXPECT_EQ(run(thumbnail("broken.cr3", "64", "a.png")).exitCode, 1);
    EXPECT_EQ(TemporaryFolder::read(target.at("a.png")), "earlier");
    EXPECT_EQ(run(thumbnail("a.jpg", "64", "a.png")).exitCode, 0);
    EXPECT_NE(TemporaryFolder::read(target.at("a.png")), "earlier");

    const auto before = TemporaryFolder::read(card.at("a.jpg"));
    EXPECT_EQ(run({"thumbnail", path("a.jpg"), "--size", "64", "--output", path("a.jpg")}).exitCode, 1);
    EXPECT_EQ(TemporaryFolder::read(card.at("a.jpg")), before);
    EXPECT_EQ(run(thumbnail("a.jpg", "64", "missing/a.png")).exitCode, 1);
    for (const auto& arguments : {thumbnail("a.jpg", "0", "a.png"), thumbnail("a.jpg", "64", "a.gif")}) {
        EXPECT_EQ(run(arguments).exitCode, 2);
    }
}

TEST_F(PictureCommandsTest, aPhotoIsDrawnThroughAPreset) {
    card.write("dark.lrtemplate",
               "s = { title = \"Dark\", value = { settings = { Exposure2012 = -3, GrainAmount = 40, "
               "Clarity2012 = 30 } } }\n");
    card.write("bad.lrtemplate", "s = 1\n");
    const auto render = [&](const std::string& preset, const std::string& output, const Strings& more) {
        Strings arguments{"render",     path("a.jpg"), "--preset",
                          path(preset), "--output",    target.at(output).path(),
                          "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    };
    const auto full = render("dark.lrtemplate", "a.png", {});
    EXPECT_EQ(full.exitCode, 0) << full.errors;
    EXPECT_EQ(full.json().at("width"), 96);
    EXPECT_EQ(full.json().at("height"), 128);
    EXPECT_EQ(render("dark.lrtemplate", "b.png", {"--amount", "1"}).exitCode, 0);
    EXPECT_EQ(TemporaryFolder::read(target.at("a.png")), TemporaryFolder::read(target.at("b.png")));

    EXPECT_EQ(render("dark.lrtemplate", "small.png", {"--size", "64"}).json().at("height"), 64);
    EXPECT_EQ(run(thumbnail("a.jpg", "64", "thumbnail.png")).exitCode, 0);
    const auto thumbnail = TemporaryFolder::read(target.at("thumbnail.png"));
    EXPECT_NE(TemporaryFolder::read(target.at("small.png")), thumbnail);
    EXPECT_EQ(render("dark.lrtemplate", "none.png", {"--size", "64", "--amount", "0"}).exitCode, 0);
    EXPECT_EQ(TemporaryFolder::read(target.at("none.png")), thumbnail);

    EXPECT_EQ(render("bad.lrtemplate", "c.png", {}).exitCode, 1);
    EXPECT_EQ(render("dark.lrtemplate", "c.png", {"--amount", "1.1"}).exitCode, 2);
}

} // namespace
} // namespace kelvara
