#include "samplecard/Card.h"

#include "model/MediaKind.h"
#include "samplecard/Shot.h"
#include "tools/Readers.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace kelvara::samplecard {
namespace {

namespace fs = std::filesystem;

class CardTest : public testing::Test {
protected:
    ~CardTest() override { fs::remove_all(m_root); }

    [[nodiscard]] fs::path folder(const std::string& name) const { return m_root / name; }

    static std::string bytesOf(const fs::path& path) {
        std::ifstream file{path, std::ios::binary};
        return {std::istreambuf_iterator<char>{file}, {}};
    }

    /// Every file with its content, by its path below the card.
    static std::map<std::string, std::string> contentOf(const fs::path& card) {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator{card})
            if (entry.is_regular_file())
                files[entry.path().lexically_relative(card).string()] = bytesOf(entry.path());
        return files;
    }

    static std::int64_t modificationTime(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mtim.tv_sec;
    }

private:
    fs::path m_root = fs::path{testing::TempDir()} / fmt::format("samplecard-{}", ::getpid());
};

CardOptions small() {
    CardOptions options;
    options.scale = 0.02;
    return options;
}

TEST_F(CardTest, isTheSameEveryTimeAndCompleteAfterwards) {
    const CardOptions options = small();
    ASSERT_EQ(stateOf(folder("a"), describe(options)), FolderState::free);
    const auto written = writeCard(folder("a"), options);
    ASSERT_TRUE(written) << written.error().message;
    ASSERT_TRUE(writeCard(folder("b"), options));
    const auto files = contentOf(folder("a"));
    EXPECT_EQ(files.size(), written->files + 1); // and the marker
    const auto again = contentOf(folder("b"));
    ASSERT_EQ(files.size(), again.size());
    for (const auto& [path, bytes] : files) EXPECT_TRUE(again.at(path) == bytes) << path;
    EXPECT_EQ(stateOf(folder("a"), describe(options)), FolderState::complete);

    std::size_t visible = 0;
    std::set<std::string> days;
    std::set<std::string> extensions;
    for (const auto& [path, bytes] : files) {
        const fs::path name{path};
        const std::string extension = name.extension().string();
        if (name.filename().string().front() == '.' || path.front() == '.' ||
            path.find(".photoslibrary/") != std::string::npos)
            continue;
        if (extension.empty() || !mediaKind(extension.substr(1))) continue;
        ++visible;
        extensions.insert(extension);
        if (extension != ".JPG" || path.find("truncated") != std::string::npos) continue;
        const std::string date = exifOf(*metadataOf(bytes), "Exif.Photo.DateTimeOriginal");
        EXPECT_EQ(date, exifDate(modificationTime(folder("a") / path))) << path;
        days.insert(date.substr(0, 10));
        EXPECT_NO_THROW((void)decodeJPEG(bytes)) << path;
    }
    EXPECT_GE(visible, 70U);
    EXPECT_EQ(days.size(), 3U);
    EXPECT_EQ(extensions, (std::set<std::string>{".ARW", ".CR3", ".DNG", ".HEIC", ".HIF", ".JPG", ".MP4",
                                                 ".NEF", ".jpeg"}));
    EXPECT_TRUE(files.contains("DCIM/100KELVA/KEL_0412.DNG"));
    EXPECT_TRUE(files.contains("DCIM/100KELVA/KEL_0412.JPG")) << "the pair of the raw file";
    for (const auto& [path, bytes] : files) { // a sidecar belongs to a raw file
        if (!path.ends_with(".xmp")) continue;
        EXPECT_TRUE(files.contains(path.substr(0, path.size() - 3) + "DNG")) << path;
    }
}

TEST_F(CardTest, onlyAFolderOfItsOwnOrAnEmptyOneIsFree) {
    const std::string wanted = describe(small());
    fs::create_directories(folder("empty"));
    EXPECT_EQ(stateOf(folder("empty"), wanted), FolderState::free);
    fs::create_directories(folder("full"));
    std::ofstream{folder("full") / "letter.txt"} << "Dear";
    EXPECT_EQ(stateOf(folder("full"), wanted), FolderState::foreign);
    EXPECT_EQ(stateOf(folder("full") / "letter.txt", wanted), FolderState::foreign);
    fs::create_directories(folder("old"));
    std::ofstream{folder("old") / ".kelvara-sample"} << "an earlier one";
    EXPECT_EQ(stateOf(folder("old"), wanted), FolderState::own);
}

TEST_F(CardTest, aFolderThatCannotBeMadeIsAnError) {
    fs::create_directories(folder(""));
    std::ofstream{folder("file")} << "in the way";
    const auto result = writeCard(folder("file") / "card", small());
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find("file"), std::string::npos);
}

TEST_F(CardTest, aBenchmarkCardHoldsDistinctValidPhotos) {
    for (const auto kind :
         {BenchmarkOptions::Kind::jpeg, BenchmarkOptions::Kind::dng, BenchmarkOptions::Kind::heic}) {
        BenchmarkOptions options;
        options.photos = 9;
        options.megapixels = 0.02;
        options.kind = kind;
        const fs::path card = folder(std::to_string(static_cast<int>(kind)));
        const auto written = writeBenchmarkCard(card, options);
        ASSERT_TRUE(written) << written.error().message;
        std::set<std::string> dates;
        for (const auto& [path, bytes] : contentOf(card / "DCIM")) {
            const bool heic = kind == BenchmarkOptions::Kind::heic;
            const Exiv2::ExifData exif = heic ? exifOfHEIC(bytes) : metadataOf(bytes)->exifData();
            const std::string date = exifOf(exif, "Exif.Photo.DateTimeOriginal");
            EXPECT_EQ(date, exifDate(modificationTime(card / "DCIM" / path)));
            dates.insert(date);
        }
        EXPECT_EQ(dates.size(), 9U);
    }
}

} // namespace
} // namespace kelvara::samplecard
