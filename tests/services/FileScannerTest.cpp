#include "services/FileScanner.h"

#include "platform/linux/LinuxFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<std::string> names(const std::vector<PhotoItem>& items) {
    std::vector<std::string> result;
    for (const auto& item : items) result.emplace_back(item.url.name());
    return result;
}

class FileScannerTest : public testing::Test {
protected:
    std::vector<PhotoItem> collect(const FileURL& folder) {
        auto collected = FileScanner{m_files}.collect(folder, {});
        return collected ? std::move(collected).value() : std::vector<PhotoItem>{};
    }
    std::vector<std::string> collectNames() { return names(collect(m_card.url())); }

    LinuxFileSystem m_files;
    TemporaryFolder m_card;
};

TEST_F(FileScannerTest, entersFoldersAndLeavesOutWhatIsNoMedia) {
    m_card.write("DCIM/100CAM/a.NEF", "12345", 1'700'000'000);
    m_card.write("DCIM/101CAM/b.NEF", "", 1'700'000'001);
    for (const auto* clutter : {"notes.txt", "IMG_0001.xmp", "IMG_0001.THM", "photo.jpe", "photo.tif",
                                "photo.png", "jpg", ".Trashes/x.jpg", "._IMG_0001.JPG", ".hidden/deep/y.jpg",
                                "Old.photoslibrary/originals/z.jpg", "DCIM/Raws.LRDATA/q.jpg"}) {
        m_card.write(clutter);
    }
    const auto items = collect(m_card.url());
    EXPECT_THAT(names(items), ElementsAre("a.NEF", "b.NEF"));
    EXPECT_EQ(items[0].url, m_card / "DCIM/100CAM/a.NEF");
    EXPECT_EQ(items[0].fileSize, 5);
    EXPECT_EQ(items[0].creationDate, FileTime{std::chrono::seconds{1'700'000'000}});
    EXPECT_EQ(items[1].fileSize, 0);
}

TEST_F(FileScannerTest, takesOnlyRegularFiles) {
    const auto photo = m_card.write("real.jpg");
    m_card.write("folder.mov/inside.jpg");
    std::filesystem::create_symlink(photo.path(), (m_card / "link.jpg").path());
    std::filesystem::create_directory_symlink(m_card.url().path(), (m_card / "loop").path());
    ASSERT_EQ(::mkfifo((m_card / "pipe.jpg").path().c_str(), 0600), 0);
    EXPECT_THAT(collectNames(), UnorderedElementsAre("real.jpg", "inside.jpg"));
}

TEST_F(FileScannerTest, ordersByDateThenByNameAsPeopleReadIt) {
    m_card.write("IMG_10.JPG", "x", 1000);
    m_card.write("IMG_9.JPG", "x", 1000);
    m_card.write("z.jpg", "x", 999);
    m_card.write("img_9.heic", "x", 1000);
    EXPECT_THAT(collectNames(), ElementsAre("z.jpg", "img_9.heic", "IMG_9.JPG", "IMG_10.JPG"));
}

TEST_F(FileScannerTest, takesNamesThatAreNoTextAndNamesOf255Bytes) {
    m_card.write("\xff\xfe\x80.jpg");
    m_card.write(std::string(251, 'n') + ".jpg");
    m_card.write("a\u0308 photo \u00e4.jpg");
    EXPECT_EQ(collectNames().size(), 3U);
}

TEST_F(FileScannerTest, findsNothingWhereThereIsNoFolder) {
    EXPECT_THAT(collect(m_card / "missing"), IsEmpty());
    EXPECT_THAT(collect(m_card.write("file.jpg")), IsEmpty());
}

TEST_F(FileScannerTest, survivesDeepNesting) {
    std::string path;
    for (int level = 0; level < 200; ++level) path += "level/";
    m_card.write(path + "deep.jpg");
    EXPECT_THAT(collectNames(), ElementsAre("deep.jpg"));
}

/// A tree in memory whose files need not have dates, and which can be stopped while it is walked.
class ScriptedFiles : public LinuxFileSystem {
public:
    Result<void, FileError> walk(const FileURL& folder, FolderWalkVisitor& visitor) const override {
        for (const auto& [name, status] : entries) {
            ++visited;
            if (onVisit) onVisit(visited);
            const auto answer = visitor.met(name);
            if (answer == FolderWalkVisitor::Answer::stop) break;
            if (answer == FolderWalkVisitor::Answer::describe) visitor.described(folder.path(), name, status);
        }
        return {};
    }
    std::vector<std::pair<std::string, FileStatus>> entries;
    std::function<void(int)> onVisit;
    mutable int visited = 0;
};

FileStatus file(std::optional<int> seconds) {
    FileStatus status{FileStatus::Kind::file, 1, std::nullopt};
    if (seconds) status.creationDate = FileTime{std::chrono::seconds{*seconds}};
    return status;
}

TEST(FileScannerOrderTest, comparesAFileWithoutADateByItsNameOnly) {
    ScriptedFiles files;
    files.entries = {{"b.jpg", file(2)}, {"c.jpg", file({})}, {"a.jpg", file(3)}};
    // b comes before a by date; c has no date and follows either by name.
    EXPECT_THAT(names(*FileScanner{files}.collect(FileURL{"/card"}, {})),
                ElementsAre("b.jpg", "a.jpg", "c.jpg"));
}

TEST(FileScannerOrderTest, keepsEveryFileOnceWhereTheOrderContradictsItself) {
    ScriptedFiles files;
    for (int i = 0; i < 1000; ++i) {
        files.entries.emplace_back(std::to_string(i * 7919 % 1000) + ".jpg",
                                   file(i % 3 == 0 ? std::nullopt : std::optional{i * 31 % 17}));
    }
    const auto items = *FileScanner{files}.collect(FileURL{"/card"}, {});
    auto found = names(items);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(std::unique(found.begin(), found.end()), found.end());
    EXPECT_EQ(found.size(), 1000U);
}

TEST(FileScannerCancelTest, stopsAtTheNextMultipleOf256AndYieldsNoList) {
    std::stop_source stop;
    ScriptedFiles files;
    files.entries.assign(5000, {"a.jpg", file(1)});
    files.onVisit = [&](int visited) {
        if (visited == 1000) stop.request_stop();
    };
    EXPECT_FALSE(FileScanner{files}.collect(FileURL{"/card"}, stop.get_token()));
    EXPECT_EQ(files.visited, 1024);
}

} // namespace
} // namespace kelvara
