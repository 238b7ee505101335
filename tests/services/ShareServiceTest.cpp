#include "services/ShareService.h"

#include "imaging/ImageDecoder.h"
#include "platform/linux/LinuxFileSystem.h"
#include "support/JpegMaker.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace kelvara {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

mode_t modeOf(const FileURL& url) {
    struct stat values {};
    return ::lstat(url.path().c_str(), &values) == 0 ? values.st_mode & 07777 : 0;
}

class ShareServiceTest : public testing::Test {
protected:
    PhotoItem photo(std::string_view path, PixelSize size = {96, 64}) const {
        const auto bytes = makeJpeg({.size = size});
        return {m_folder.write(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}), 0, {}};
    }
    PhotoItem broken(std::string_view path) const { return {m_folder.write(path, "no picture"), 0, {}}; }
    ShareService::Made make(const std::vector<PhotoItem>& photos, int longEdge = 0,
                            const std::optional<ExportLook>& look = {}) const {
        const auto made = m_shares.makeJPEGs(photos, look, longEdge, {});
        EXPECT_TRUE(made) << message(made.error());
        return made ? *made : ShareService::Made{};
    }
    [[nodiscard]] static std::vector<std::string> names(const ShareService::Made& made) {
        std::vector<std::string> result;
        for (const auto& file : made.files) result.emplace_back(file.name());
        return result;
    }
    [[nodiscard]] std::vector<std::string> jobFolders() const {
        std::vector<std::string> result;
        const auto entries = m_files.entries(m_shares.exportRoot());
        if (entries) {
            for (const auto& entry : *entries) result.emplace_back(entry.name());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    TemporaryFolder m_folder;
    LinuxFileSystem m_files;
    ShareService m_shares{m_files, m_folder.makeFolder("tmp")};
};

/// In the past, seconds before now.
void age(const FileURL& url, std::int64_t seconds) {
    const auto then = std::chrono::system_clock::now() - std::chrono::seconds{seconds};
    const timespec time{.tv_sec = std::chrono::system_clock::to_time_t(then), .tv_nsec = 0};
    const timespec times[2] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, url.path().c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

} // namespace

TEST_F(ShareServiceTest, eachShotGivesOneJPEGWithAnEntirelyUniqueName) {
    const auto made = make({broken("IMG_1.MOV"), broken("IMG_1.CR3"), photo("IMG_1.JPG"), photo("DSC_1.jpg"),
                            photo("other/dsc_1.JPEG"), photo("third/DSC_1.jpg")});
    EXPECT_THAT(names(made), ElementsAre("IMG_1.jpg", "DSC_1.jpg", "dsc_1-1.jpg", "DSC_1-2.jpg"));
    EXPECT_THAT(made.failures, IsEmpty());
    const auto folder = made.files[0].parent();
    EXPECT_EQ(folder.parent(), m_shares.exportRoot());
    EXPECT_EQ(folder.name().size(), 36U);
    EXPECT_NE(make({photo("DSC_1.jpg")}).files[0].parent(), folder);
    EXPECT_EQ(m_folder.files("tmp").size(), 5U) << "nothing but the pictures";
}

TEST_F(ShareServiceTest, aPhotoThatCannotBeReadIsNamedAndTheOthersAreMade) {
    std::set<std::size_t> steps;
    const auto made = m_shares.makeJPEGs(
        std::vector{
            photo("a.jpg"), broken("b.jpg"), broken("c.mov"), {m_folder / "d.nef", 0, {}}, photo("e.jpg")},
        {}, 100, {}, [&](std::size_t done, std::size_t total) {
            EXPECT_EQ(total, 5U);
            steps.insert(done);
        });
    ASSERT_TRUE(made);
    EXPECT_THAT(names(*made), ElementsAre("a.jpg", "e.jpg"));
    EXPECT_THAT(made->failures,
                ElementsAre("Couldn't read b.jpg.", "Couldn't read c.mov.", "Couldn't read d.nef."));
    EXPECT_THAT(steps, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(ShareServiceTest, theLongEdgeAndTheLookAreApplied) {
    const auto wide = photo("wide.jpg", {2400, 30});
    const auto decoded = [](const FileURL& file) { return ImageDecoder::decodeOriginal(file, {}, {}); };
    for (const auto& [wanted, edge] : {std::pair{0, 2048}, {-1, 2048}, {1024, 1024}, {4096, 2400}}) {
        const auto made = make({wide}, wanted);
        ASSERT_EQ(made.files.size(), 1U);
        EXPECT_EQ(decoded(made.files[0])->size().width, edge) << wanted;
    }
    const auto plain = make({wide});
    LightAdjustments light;
    light.set(LightAdjustments::Slider::exposure, 2);
    const auto bright = make({wide}, 0, ExportLook{{}, {{wide.url.stemKey(), light}}});
    const auto level = [&](const FileURL& file) { return decoded(file)->row(0)[1]; };
    EXPECT_GT(level(bright.files[0]), level(plain.files[0]));
}

TEST_F(ShareServiceTest, aStoppedJobLeavesNothingBehind) {
    std::stop_source stop;
    std::vector<PhotoItem> photos;
    for (int i = 0; i < 20; ++i) photos.push_back(photo(std::to_string(i) + ".jpg"));
    std::atomic<int> steps = 0;
    const auto made = m_shares.makeJPEGs(photos, {}, 0, stop.get_token(), [&](std::size_t, std::size_t) {
        ++steps;
        stop.request_stop();
    });
    ASSERT_FALSE(made);
    EXPECT_TRUE(made.error().wasCancelled());
    EXPECT_LE(steps, 2);
    EXPECT_THAT(jobFolders(), IsEmpty());
}

TEST_F(ShareServiceTest, jobFoldersGoAfterADayAndLinksInThemLeadNowhere) {
    m_shares.purgeOldExports();
    EXPECT_FALSE(TemporaryFolder::exists(m_shares.exportRoot())) << "nothing to purge, nothing to make";

    const auto kept = m_folder.write("kept/photo.jpg", "original");
    const auto old = m_shares.makeJobFolder();
    const auto young = m_shares.makeJobFolder();
    ASSERT_TRUE(old && young);
    m_folder.write("tmp/Kelvara-Share/" + std::string{old->name()} + "/a/b.jpg", "copy");
    std::filesystem::create_directory_symlink(kept.parent().path(), old->child("link").path());
    const auto link = m_shares.exportRoot().child(".link");
    std::filesystem::create_directory_symlink(kept.parent().path(), link.path());
    for (const auto& entry : {*old, link}) age(entry, 25 * 3600);
    age(kept.parent(), 25 * 3600);
    age(*young, 3600);
    const auto next = m_shares.makeJobFolder(); // which purges
    ASSERT_TRUE(next);
    EXPECT_THAT(jobFolders(), testing::UnorderedElementsAre(young->name(), next->name()));
    EXPECT_EQ(TemporaryFolder::read(kept), "original");
}

TEST_F(ShareServiceTest, aRootThatOthersControlIsRefusedAndNotPurged) {
    const auto root = m_shares.exportRoot();
    const auto victim = m_folder.makeFolder("tmp/victim/old");
    const auto expectRefusal = [&](std::errc reason) {
        age(victim, 25 * 3600);
        const auto folder = m_shares.makeJobFolder();
        ASSERT_FALSE(folder);
        EXPECT_EQ(folder.error(), (FileError{root, std::make_error_code(reason)}));
        EXPECT_TRUE(TemporaryFolder::exists(victim));
        std::filesystem::rename(root.path(), m_folder.at("tmp/refused").path());
        std::filesystem::remove_all(m_folder.at("tmp/refused").path());
    };
    std::filesystem::create_directory_symlink(victim.parent().path(), root.path());
    expectRefusal(std::errc::not_a_directory);
    m_folder.write("tmp/Kelvara-Share", "a file");
    expectRefusal(std::errc::not_a_directory);
    ASSERT_EQ(::mkdir(root.path().c_str(), 0700), 0);
    ASSERT_EQ(::chmod(root.path().c_str(), 0750), 0);
    expectRefusal(std::errc::permission_denied);
    if (::geteuid() == 0) { // only then can a folder be given to somebody else
        ASSERT_EQ(::mkdir(root.path().c_str(), 0700), 0);
        ASSERT_EQ(::chown(root.path().c_str(), 1234, 1234), 0);
        expectRefusal(std::errc::permission_denied);
    }
    const auto folder = m_shares.makeJobFolder();
    ASSERT_TRUE(folder);
    EXPECT_EQ(modeOf(root), 0700U);
    EXPECT_EQ(modeOf(*folder), 0700U);
}

} // namespace kelvara
