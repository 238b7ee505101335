#include "LibraryFixture.h"

#include "library/PreferenceKeys.h"
#include "support/JpegMaker.h"

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class LibraryExportTest : public LibraryFixture {
protected:
    LibraryViewModel& startWithPhotos() {
        const auto jpeg = makeJpeg({.size = {8, 6}});
        for (const auto* name : {"a.jpg", "b.jpg"}) {
            m_card.write(std::string{"card/"} + name,
                         {reinterpret_cast<const char*>(jpeg.data()), jpeg.size()}, 1000);
        }
        m_card.write("card/a.NEF", "raw", 1000);
        m_preferences.setText(PreferenceKeys::copyDestination, (m_card / "kept").path());
        return start(m_card / "card");
    }
    void chooseAll() {
        const auto& items = m_library->items();
        m_library->showExportOptions({items.begin(), items.end()}, m_look);
    }
    [[nodiscard]] CopyService::Export chosen() const {
        return {m_library->pendingExportLook(), m_library->exportSettings()};
    }
    template <typename State> [[nodiscard]] const State* state() const {
        return std::get_if<State>(&m_library->copyState());
    }
    FileURL photo(std::string_view name) { return (m_card / "card").child(name); }

    ExportLook m_look{DevelopPreset::of("warm", "Warm", {}), {}};
};

TEST_F(LibraryExportTest, settingsStayAndNonsenseGivesTheUsualOnes) {
    auto& library = start();
    EXPECT_EQ(library.exportSettings(), ExportSettings{});
    ExportSettings settings{.format = ExportSettings::Format::png, .longEdge = 1600, .keepsLocation = false};
    library.setExportSettings(settings);
    EXPECT_EQ(start().exportSettings(), settings);

    const std::string start = R"({"format":"heif","quality":0.7,"uses16Bit":true,"keepsLocation":false)";
    const ExportSettings fullSize{ExportSettings::Format::heif, 0.7, true, std::nullopt, false, false};
    for (const auto& [json, expected] : std::vector<std::pair<std::string, ExportSettings>>{
             {start + R"(,"appliesLook":false})", fullSize}, {start + "}", {}}, {"no JSON", {}}}) {
        m_preferences.setText(PreferenceKeys::exportSettings, json);
        EXPECT_EQ(this->start().exportSettings(), expected) << json;
    }
}

TEST_F(LibraryExportTest, exportsWhatTheOptionsWereOpenedForAndEndsInAReport) {
    auto& library = startWithPhotos();
    library.toggleChecked(photo("a.jpg"));
    chooseAll();
    EXPECT_NE(state<ConfiguringExport>(), nullptr);
    EXPECT_EQ(library.exportItems().size(), 3U);
    library.startCopy(chosen());
    ASSERT_NE(state<CopyService::Progress>(), nullptr);
    EXPECT_EQ(state<CopyService::Progress>()->totalFiles, 2); // shots
    library.showExportOptions({}, {});                        // one at a time
    library.requestDelete({library.items().front()});
    EXPECT_FALSE(library.pendingDeletion());
    settle();

    const auto* report = state<CopyService::Report>();
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->copied, 2);
    EXPECT_EQ(m_card.files("kept"), (Strings{"a.jpg", "b.jpg"}));
    EXPECT_EQ(m_analytics.events, (std::vector<UsageEvent>{PhotosCopied{.count = 2, .withPreset = true}}));
    EXPECT_EQ(library.notCopiedCount(library.items()), std::nullopt); // a picture is no copy of its photo
    EXPECT_EQ(library.copyExport()->title(), "JPEG with Warm applied");
    EXPECT_TRUE(m_shared.empty());
    EXPECT_TRUE(library.copiedMarkedPhotos());
    library.unmarkCopiedPhotos();
    EXPECT_TRUE(library.checkedIDs().empty());

    library.dismissCopy();
    EXPECT_NE(state<CopyIdle>(), nullptr);
    EXPECT_TRUE(library.exportItems().empty());
    EXPECT_FALSE(library.copyExport() || library.pendingExportLook());
    library.startCopy(CopyService::Export{});
    EXPECT_EQ(m_desktop.beeps, 1);
}

TEST_F(LibraryExportTest, sharingMakesTheFilesInAFolderOfTheirOwnAndHandsThemOver) {
    auto& library = startWithPhotos();
    m_preferences.remove(PreferenceKeys::copyDestination);
    library.setCopiesIntoDateFolders(true);
    const SharePicker::Anchor anchor{1, 2, 3, 4};
    const auto share = [&] {
        chooseAll();
        library.startCopy(chosen(), anchor);
    };
    share();
    settle();
    ASSERT_EQ(m_shared.size(), 1U);
    EXPECT_EQ(m_shared[0].files, (std::vector{m_card / "share/a.jpg", m_card / "share/b.jpg"}));
    EXPECT_EQ(m_shared[0].anchor, anchor);
    EXPECT_TRUE(m_shared[0].hasLook);
    EXPECT_TRUE(m_chooser.requests.empty());

    share(); // and cancel
    library.cancelCopy();
    settle();
    EXPECT_TRUE(state<CopyService::Report>()->wasCancelled);
    m_shareFolder = Failure{FileError{m_card / "share", std::make_error_code(std::errc::permission_denied)}};
    share();
    settle();
    ASSERT_NE(state<CopyFailed>(), nullptr);
    EXPECT_EQ(m_shared.size(), 1U);
}

TEST_F(LibraryExportTest, theOptionsStayWhileAFolderIsChosen) {
    startWithPhotos();
    m_preferences.remove(PreferenceKeys::copyDestination);
    m_library.reset();
    auto& library = start(m_card / "card");
    chooseAll();
    library.dismissCopy();
    EXPECT_NE(state<CopyIdle>(), nullptr);
    EXPECT_TRUE(library.exportItems().empty());
    chooseAll();
    library.startCopy(chosen());
    m_chooser.answer(std::nullopt);
    EXPECT_NE(state<ConfiguringExport>(), nullptr);
    library.startCopy(chosen());
    m_chooser.answer(FolderChooser::Choice{m_card / "kept", false});
    EXPECT_TRUE(library.isCopying());
    m_volumes.unmount(m_card / "card");
    EXPECT_TRUE(library.copyInterruption().starts_with("The card was removed during the copy."));
    settle();

    library.showExportOptions({library.items().begin(), library.items().end()}, {}); // of no photos
    EXPECT_EQ(state<ConfiguringExport>(), nullptr);
    EXPECT_EQ(m_desktop.beeps, 1);
}

} // namespace
} // namespace kelvara
