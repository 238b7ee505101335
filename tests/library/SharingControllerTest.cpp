#include "library/SharingController.h"

#include "library/PreferenceKeys.h"
#include "library/Settings.h"
#include "platform/linux/LinuxFileSystem.h"
#include "support/FakeAnalytics.h"
#include "support/FakeDesktop.h"
#include "support/FakeSharePicker.h"
#include "support/JpegMaker.h"
#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace kelvara {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SharingControllerTest : public testing::Test {
protected:
    PhotoItem photo(std::string_view path) const {
        const auto bytes = makeJpeg({.size = {96, 64}});
        return {m_folder.write(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}), 0, {}};
    }
    PhotoItem broken(std::string_view path) const { return {m_folder.write(path, "no picture"), 0, {}}; }
    SharingController& start() {
        m_sharing = std::make_unique<SharingController>(
            SharingController::Services{m_shares, m_picker, m_settings, m_analytics, m_background, m_main});
        settle();
        return *m_sharing;
    }
    void settle() { runAll(m_background, m_main); }
    [[nodiscard]] static ExportLook edits(const PhotoItem& photo) {
        LightAdjustments light;
        light.set(LightAdjustments::Slider::exposure, 1);
        return {{}, {{photo.url.stemKey(), light}}};
    }

    TemporaryFolder m_folder;
    LinuxFileSystem m_files;
    ShareService m_shares{m_files, m_folder.makeFolder("tmp")};
    FakeSharePicker m_picker;
    MemoryPreferences m_preferences;
    Settings m_settings{m_preferences};
    FakeAnalytics m_analytics;
    ManualExecutor m_background;
    ManualExecutor m_main;
    std::unique_ptr<SharingController> m_sharing;
};

} // namespace

TEST_F(SharingControllerTest, jpegsAreMadeThenPickedAndCountedOnceHandedOver) {
    auto& sharing = start();
    EXPECT_EQ(sharing.longEdge(), 2048);
    m_preferences.setInteger(PreferenceKeys::shareLongEdge, -3);
    EXPECT_EQ(sharing.longEdge(), 2048);
    std::vector<std::optional<SharingController::Progress>> told;
    const auto watch = sharing.observe({SharingProperty::progress},
                                       [&](const auto&) { told.push_back(sharing.progress()); });

    const SharePicker::Anchor anchor{1, 2, 3, 4};
    const auto first = photo("a.jpg");
    sharing.shareJPEGs({first, broken("b.nef"), photo("c.jpg")}, edits(first), anchor);
    EXPECT_EQ(sharing.progress(), (SharingController::Progress{0, 3}));
    settle();
    EXPECT_EQ(sharing.progress(), std::nullopt);
    EXPECT_GE(told.size(), 3U); // its beginning, its newest step, its end
    EXPECT_EQ(sharing.error(), "Couldn't read b.nef.");
    EXPECT_THAT(m_picker.requests, IsEmpty()) << "the alert comes first";
    sharing.clearError();
    ASSERT_THAT(m_picker.requests, SizeIs(1));
    EXPECT_THAT(m_picker.requests[0].files, SizeIs(2));
    EXPECT_EQ(m_picker.requests[0].anchor, anchor);
    EXPECT_THAT(m_analytics.events, IsEmpty());
    m_picker.requests[0].onEnd({});
    EXPECT_THAT(m_analytics.events, ElementsAre(UsageEvent{PhotosShared{.count = 2, .withEdits = true}}));

    sharing.shareJPEGs({broken("b.nef")}, {});
    settle();
    EXPECT_EQ(sharing.error(), "Couldn't read b.nef.");
    EXPECT_THAT(m_picker.requests, SizeIs(1)) << "nothing to share";
}

TEST_F(SharingControllerTest, whatPickerAndDevicesReportBecomesTheError) {
    auto& sharing = start();
    const auto file = photo("a.jpg");
    const ExportLook look{DevelopPreset::of("p", "Warm", {}), {}};
    sharing.airDropJPEGs({file}, look);
    settle();
    ASSERT_THAT(m_picker.requests, SizeIs(1));
    m_picker.requests[0].onUnavailable();
    EXPECT_EQ(sharing.error(), "AirDrop isn't available. Check that Wi-Fi and Bluetooth are on.");
    EXPECT_THAT(m_analytics.events, IsEmpty());
    m_picker.requests[0].onEnd({});
    EXPECT_THAT(m_analytics.events,
                ElementsAre(UsageEvent{PhotosShared{.count = 1, .byAirDrop = true, .withPreset = true}}));

    sharing.clearError();
    sharing.shareFiles({file.url});
    sharing.shareFiles({});
    ASSERT_THAT(m_picker.requests, SizeIs(2));
    EXPECT_THAT(m_picker.requests[1].files, ElementsAre(file.url)) << "the original, unchanged";
    m_picker.requests[1].onEnd(Failure{std::string{"The files couldn't be sent to Phone."}});
    EXPECT_EQ(sharing.error(), "The files couldn't be sent to Phone.");
    EXPECT_THAT(m_analytics.events, SizeIs(1));

    m_sharing.reset();
    m_picker.requests[1].onEnd({}); // long after
    EXPECT_THAT(m_analytics.events, SizeIs(1));
}

TEST_F(SharingControllerTest, aNewJobOrCancellingStopsTheOneThatRuns) {
    auto& sharing = start();
    sharing.shareJPEGs({photo("a.jpg")}, {});
    ASSERT_TRUE(m_background.runOne()); // its progress and its files wait for the main thread
    sharing.shareJPEGs({photo("b.jpg"), photo("c.jpg")}, {});
    while (m_main.runOne()) {
    }
    EXPECT_EQ(sharing.progress(), (SharingController::Progress{0, 2})) << "not the old one's";
    settle();
    ASSERT_THAT(m_picker.requests, SizeIs(1));
    EXPECT_EQ(m_picker.requests[0].files.front().name(), "b.jpg");

    sharing.shareJPEGs({photo("a.jpg")}, {});
    sharing.cancel();
    EXPECT_EQ(sharing.progress(), std::nullopt);
    settle();
    EXPECT_THAT(m_picker.requests, SizeIs(1));
    EXPECT_EQ(sharing.error(), "");
}

TEST_F(SharingControllerTest, manyFailuresAreSummedUpAndAMissingFolderIsOne) {
    auto& sharing = start();
    std::vector<PhotoItem> photos;
    for (int i = 0; i < 12; ++i) photos.push_back(broken(std::to_string(i) + ".jpg"));
    sharing.shareJPEGs(photos, {});
    settle();
    EXPECT_EQ(std::count(sharing.error().begin(), sharing.error().end(), '\n'), 8);
    EXPECT_TRUE(sharing.error().ends_with("7.jpg.\nand 4 more.")) << sharing.error();

    sharing.clearError();
    std::filesystem::remove_all(m_shares.exportRoot().path());
    m_folder.write("tmp/Kelvara-Share", "a file");
    sharing.shareJPEGs({photo("a.jpg")}, {});
    settle();
    EXPECT_EQ(sharing.error(), "“Kelvara-Share”: Not a directory");
}

} // namespace kelvara
