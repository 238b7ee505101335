#include "services/PhotoExport.h"

#include "imaging/ImageDecoder.h"
#include "support/FailingFileSystem.h"
#include "support/JpegMaker.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

class PhotoExportTest : public testing::Test {
protected:
    PhotoExportTest() {
        const auto jpeg = makeJpeg({.size = {300, 200}});
        card.write("a.JPG", {reinterpret_cast<const char*>(jpeg.data()), jpeg.size()});
        photo.source = card.at("a.JPG");
        photo.destination = target.at("b.jpg");
    }

    /// What went wrong, as people read it; empty when nothing did.
    std::string failure(const std::stop_token& stop = {}) {
        const auto written = photo.run(files, stop);
        return written ? std::string{} : message(written.error());
    }
    std::vector<std::string> leftBehind() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator{target.url().path()})
            names.push_back(entry.path().filename());
        return names;
    }

    const TemporaryFolder card, target;
    FailingFileSystem files;
    PhotoExport photo;
};

TEST_F(PhotoExportTest, aPhotoIsWrittenInTheSizeAndWithTheLookThatIsWanted) {
    photo.settings.longEdge = 150;
    photo.preset = DevelopPreset::of("id", "Bright", {{"Exposure2012", PresetValue{1.5}}});
    struct Case {
        bool appliesLook;
        double amount;
        int grey;
    };
    for (const auto& [appliesLook, amount, grey] : {Case{false, 1, 128}, {true, 0, 128}, {true, 1, 200}}) {
        photo.settings.appliesLook = appliesLook;
        photo.preset = photo.preset->withAmount(amount);
        const auto written = photo.run(files, {});
        ASSERT_TRUE(written) << message(written.error());
        EXPECT_EQ(*written, static_cast<std::int64_t>(TemporaryFolder::read(photo.destination).size()));
        const auto image = ImageDecoder::decodeOriginal(photo.destination, {}, {});
        ASSERT_TRUE(image);
        EXPECT_EQ(image->size(), (PixelSize{150, 100}));
        EXPECT_NEAR(image->row(50)[200], grey, grey == 128 ? 1 : 40);
        std::filesystem::remove(photo.destination.path());
    }
    photo.settings.longEdge = 1600;
    ASSERT_TRUE(photo.run(files, {}));
    EXPECT_EQ(ImageDecoder::decodeOriginal(photo.destination, {}, {})->width(), 300) << "never larger";
}

TEST_F(PhotoExportTest, whatIsThereIsNeverReplaced) {
    target.write("b.jpg", "somebody's");
    EXPECT_NE(failure(), "");
    EXPECT_EQ(TemporaryFolder::read(photo.destination), "somebody's");
    photo.destination = target.at("c.jpg");
    target.write("c.jpg.partial", "left behind");
    EXPECT_EQ(failure(), "");
    files.onPlace = [&](const FileURL&, const FileURL&) { target.write("d.jpg", "just now"); };
    photo.destination = target.at("d.jpg");
    EXPECT_NE(failure(), "");
    EXPECT_EQ(TemporaryFolder::read(photo.destination), "just now");
    EXPECT_EQ(leftBehind().size(), 3U);
}

TEST_F(PhotoExportTest, failuresAreToldAndLeaveNothing) {
    files.onCreate = [](const FileURL&) { return std::errc::no_space_on_device; };
    EXPECT_EQ(failure(), "Couldn't create a JPEG for a.JPG.");
    photo.settings.format = ExportSettings::Format::png;
    EXPECT_EQ(failure(), "Couldn't create a PNG for a.JPG.");
    files.onCreate = {};
    files.onSync = [](const FileURL&) { return std::errc::io_error; };
    EXPECT_EQ(failure(), "Couldn't create a PNG for a.JPG.");
    files.onSync = {};
    EXPECT_EQ(message(PhotoExport::Error{ImageWriter::WriteError{"a.JPG", ExportSettings::Format::heif}}),
              "Couldn't create a HEIC for a.JPG.");
    for (const auto* name : {"missing.JPG", "text.NEF", "film.MOV"}) {
        photo.source = card.at(name);
        if (photo.source.stem() != "missing") card.write(name, "no picture at all");
        EXPECT_EQ(failure(), "Couldn't read " + std::string{name} + ".");
    }
    photo.source = card.at("a.JPG");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(photo.run(files, stop.get_token()).error(), PhotoExport::Error{PhotoExport::Cancelled{}});
    EXPECT_EQ(leftBehind(), std::vector<std::string>{});
}

} // namespace
} // namespace kelvara
