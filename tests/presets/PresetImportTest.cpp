#include "presets/PresetImport.h"
#include "platform/linux/LinuxFileSystem.h"
#include "presets/PresetFolder.h"
#include "presets/PresetTestFiles.h"
#include "support/FakeFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <zip.h>

namespace kelvara {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Entries = std::vector<std::pair<std::string, std::string>>; // names and bytes

/// An archive as some program could write it, whatever the names; with a password, if there is one.
FileURL writeZip(const FileURL& url, const Entries& entries, const char* password = nullptr) {
    auto* archive = ::zip_open(url.path().c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [name, bytes] : entries) {
        auto* source = ::zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        // Names are set as they are, bytes above ASCII included.
        const auto index = static_cast<zip_uint64_t>(::zip_file_add(archive, name.c_str(), source, 0));
        if (password != nullptr) ::zip_file_set_encryption(archive, index, ZIP_EM_AES_256, password);
    }
    EXPECT_EQ(::zip_close(archive), 0);
    return url;
}

class PresetImportTest : public testing::Test {
protected:
    PresetImportReport import(const std::vector<FileURL>& sources) {
        return importPresets(m_files, sources, m_presets, {});
    }

    LinuxFileSystem m_files;
    TemporaryFolder m_folder;
    FileURL m_presets = m_folder.at("home/Presets"); // not there yet
};

} // namespace

TEST_F(PresetImportTest, takesFilesFoldersAndArchivesAndSaysWhatWasLeftOut) {
    const auto archive = writeZip(m_folder / "Bundle.zip", {{"a.xmp", xmpPreset("A")},
                                                            {"deep/er/b.lrtemplate", luaPreset("B")},
                                                            {"deep/er/", ""},
                                                            {"sample.jpg", "jpeg"},
                                                            {"__MACOSX/deep/._b.xmp", "fork"},
                                                            {"broken.lrtemplate", "s = {"}});
    m_folder.write("Pack/one.xmp", xmpPreset("One"));
    m_folder.write("Pack/sub/TWO.LRTEMPLATE", luaPreset("Two"));
    m_folder.write("Pack/sub/profile.xmp", "<x/>");
    m_folder.write("Pack/sub/readme.txt", "words");
    const auto report = import({m_folder.write("Warm.xmp", xmpPreset("Warm")), m_folder / "Pack", archive,
                                m_folder.write("photo.jpg", "jpeg"), m_folder / "missing.xmp",
                                m_folder.write("no.zip", "PK, but not really")});
    EXPECT_THAT(report.imported, ElementsAre("Warm.xmp", "Pack/one.xmp", "Pack/sub/TWO.LRTEMPLATE",
                                             "Bundle/a.xmp", "Bundle/deep/er/b.lrtemplate"));
    EXPECT_THAT(m_folder.files("home/Presets"), testing::UnorderedElementsAreArray(report.imported));
    EXPECT_THAT(report.problems, ElementsAre("profile.xmp isn't a Develop preset.",
                                             "broken.lrtemplate isn't a Lightroom preset this app can read.",
                                             "photo.jpg isn't a Lightroom preset this app can read.",
                                             "“missing.xmp”: No such file or directory",
                                             "no.zip isn't a Lightroom preset this app can read."));
    EXPECT_EQ(TemporaryFolder::read(m_presets.child("Pack/one.xmp")), xmpPreset("One"));

    // Its one folder names an archive's presets better than the archive does.
    const auto pack = writeZip(m_folder / "v2-final.zip",
                               {{"Look/x.xmp", xmpPreset("X")}, {"Look/y/z.xmp", xmpPreset("Z")}});
    EXPECT_THAT(import({pack}).imported, ElementsAre("Look/x.xmp", "Look/y/z.xmp"));
    EXPECT_TRUE(import({m_folder.makeFolder("empty")}).foundNone());
}

TEST_F(PresetImportTest, aTakenNameGetsTheNextNumberAndTheSamePresetIsLeftOut) {
    const auto import = [&](double exposure) {
        return this->import({m_folder.write("Warm.xmp", xmpPreset("Warm", exposure))});
    };
    EXPECT_THAT(import(1).imported, ElementsAre("Warm.xmp"));
    EXPECT_THAT(import(2).imported, ElementsAre("Warm-1.xmp"));
    EXPECT_THAT(import(3).imported, ElementsAre("Warm-2.xmp"));
    for (const double exposure : {1, 2, 3}) {
        const auto again = import(exposure);
        EXPECT_EQ(again.alreadyThere, 1U);
        EXPECT_FALSE(again.foundNone());
        EXPECT_THAT(again.imported, IsEmpty());
    }
    EXPECT_EQ(TemporaryFolder::read(m_presets.child("Warm.xmp")), xmpPreset("Warm", 1));
    // What is in the folder is not copied within it.
    EXPECT_EQ(this->import({m_presets}).alreadyThere, 3U);
    EXPECT_EQ(m_folder.files("home/Presets").size(), 3U);
}

TEST_F(PresetImportTest, archivesPutNothingWhereItDoesNotBelong) {
    const auto preset = xmpPreset("X");
    std::string deep, deepest; // as many folders as are made, and as fit into a name
    for (int i = 0; i < 15; ++i) deep += "d/";
    while (deepest.size() < 60'000) deepest += "d/";
    const auto report = import({writeZip(m_folder / "h.zip", {{"../../../up.xmp", preset},
                                                              {deepest + "deep.xmp", preset},
                                                              {"/etc/root.xmp", preset},
                                                              {"C:\\Users\\..\\dos.xmp", preset},
                                                              {"a/./b//dots.xmp", preset},
                                                              {"line\nbreak/tab\t.xmp", preset},
                                                              {".config/hidden.xmp", preset},
                                                              {".xmp", preset},
                                                              {"..", preset}})});
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(m_folder.files(),
                UnorderedElementsAre("h.zip", "home/Presets/h/up.xmp", "home/Presets/h/etc/root.xmp",
                                     "home/Presets/h/C:/Users/dos.xmp", "home/Presets/h/a/b/dots.xmp",
                                     "home/Presets/h/line_break/tab_.xmp",
                                     "home/Presets/h/" + deep + "deep.xmp"));

    // Few bytes that become many, and what only the owner of a password reads.
    const std::string large(DevelopPreset::maximumFileSize + 1, ' ');
    EXPECT_THAT(import({writeZip(m_folder / "bomb.zip", {{"bomb.xmp", large}})}).problems,
                ElementsAre("bomb.xmp isn't a Lightroom preset this app can read."));
    EXPECT_THAT(import({writeZip(m_folder / "p.zip", {{"secret.xmp", preset}}, "password")}).problems,
                ElementsAre("secret.xmp is protected by a password."));

    // Damage anywhere costs presets at most.
    const auto whole = TemporaryFolder::read(writeZip(
        m_folder / "w.zip", {{"../up.xmp", preset}, {"/etc/root.xmp", preset}, {"a/b.xmp", preset}}));
    for (std::size_t at = 0; at < whole.size(); at += 3) {
        auto damaged = whole;
        damaged[at] = static_cast<char>(~damaged[at]);
        FakeFileSystem files;
        files.addFile("/damaged.zip", damaged);
        files.addFile("/cut.zip", whole.substr(0, at));
        const std::vector<FileURL> sources{FileURL{"/damaged.zip"}, FileURL{"/cut.zip"}};
        (void)importPresets(files, sources, FileURL{"/Presets"}, {});
        for (const auto& path : files.paths()) {
            EXPECT_TRUE(path.ends_with(".zip") || path.starts_with("/Presets/")) << path;
            EXPECT_TRUE(path.ends_with(".zip") || files.bytes(path) == preset) << path;
        }
    }
}

TEST(PresetImportFailureTest, leavesWholeFilesWhereverItFails) {
    const auto a = xmpPreset("A");
    const auto b = xmpPreset("B");
    for (int change = 1; change <= 8; ++change) {
        FakeFileSystem files;
        files.addFile("/from/a.xmp", a);
        files.addFile("/from/b.xmp", b);
        files.failChange(change, std::errc::no_space_on_device);
        const auto report = importPresets(files, {FileURL{"/from"}}, FileURL{"/Presets"}, {});
        for (const auto& path : files.paths()) {
            EXPECT_EQ(path.find("incoming"), std::string::npos) << path << " after failure " << change;
            EXPECT_THAT(*files.bytes(path), testing::AnyOf(a, b)) << path << " after failure " << change;
        }
        const auto failures = report.problems.size() + (report.failure.empty() ? 0 : 1);
        EXPECT_EQ(failures, 1U) << change;
        EXPECT_TRUE(report.imported.size() == 1 || !report.failure.empty());
    }
    // Where nothing can be written, that is said once.
    FakeFileSystem files;
    for (int i = 0; i < 3; ++i) files.addFile("/from/" + std::to_string(i) + ".xmp", a);
    files.refuse(FakeFileSystem::Operation::createFolders, "/Presets");
    const auto report = importPresets(files, {FileURL{"/from"}}, FileURL{"/Presets"}, {});
    EXPECT_EQ(report.failure, "“Presets”: Permission denied");
    EXPECT_THAT(report.problems, IsEmpty());
}

TEST(PresetImportFailureTest, aCancelledImportKeepsWhatItHas) {
    FakeFileSystem files;
    for (int i = 0; i < 9; ++i) files.addFile("/from/" + std::to_string(i) + ".xmp", xmpPreset("X", i));
    std::stop_source stop;
    files.onOperation = [&](FakeFileSystem::Operation operation, const FileURL& url) {
        if (operation == FakeFileSystem::Operation::read && url.name() == "3.xmp") stop.request_stop();
    };
    const auto report =
        importPresets(files, {FileURL{"/from"}, FileURL{"/from"}}, FileURL{"/Presets"}, stop.get_token());
    EXPECT_TRUE(report.wasCancelled);
    EXPECT_EQ(report.imported.size(), 4U);
}

} // namespace kelvara
