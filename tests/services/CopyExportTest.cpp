#include "services/CopyTest.h"
#include "support/JpegMaker.h"

#include <atomic>
#include <latch>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;
using Format = ExportSettings::Format;

class CopyExportTest : public CopyTest {
protected:
    PhotoItem picture(std::string_view name) {
        static const auto jpeg = makeJpeg({.size = {8, 6}});
        return photo(name, {reinterpret_cast<const char*>(jpeg.data()), jpeg.size()});
    }
    CopyService::PlanRequest exportOf(std::vector<PhotoItem> items, const ExportSettings& chosen = {},
                                      std::optional<ExportLook> look = {}) const {
        auto request = this->request(std::move(items));
        request.exportAs = CopyService::Export{std::move(look), chosen};
        return request;
    }
    std::vector<Plan> plansOf(const CopyService::PlanRequest& request) const {
        const auto plans = service.plan(request);
        EXPECT_TRUE(plans);
        return plans ? *plans : std::vector<Plan>{};
    }
    std::vector<Plan> plansOf(int count) {
        std::vector<PhotoItem> items;
        for (int i = 0; i < count; ++i) items.push_back(picture(std::to_string(i) + ".JPG"));
        return plansOf(exportOf(std::move(items)));
    }
    static ExportSettings settings(Format format, bool uses16Bit = false, bool appliesLook = true) {
        ExportSettings chosen;
        chosen.format = format;
        chosen.uses16Bit = uses16Bit;
        chosen.appliesLook = appliesLook;
        return chosen;
    }
    static const Plan::Render& render(const Plan& plan) { return std::get<Plan::Render>(plan.action); }
};

TEST_F(CopyExportTest, aShotBecomesOnePictureOfItsBestFile) {
    const auto pixels = [&](const Strings& names) {
        std::vector<PhotoItem> items;
        for (const auto& name : names) items.push_back({card.at(name), 1, {}});
        Strings chosen;
        for (const auto& plan : plansOf(exportOf(items))) chosen.emplace_back(plan.source.name());
        return chosen;
    };
    EXPECT_EQ(pixels({"a.NEF", "b.JPG", "a.HEIC", "a.jpeg", "a.MOV"}), (Strings{"b.JPG", "a.jpeg"}));
    EXPECT_EQ(pixels({"a.MOV", "a.NEF", "a.HIF"}), Strings{"a.HIF"});
    EXPECT_EQ(pixels({"a.MOV", "a.NEF", "a.DNG"}), Strings{"a.NEF"});
    EXPECT_EQ(pixels({"1/a.NEF", "2/a.JPG", "a.MOV"}), (Strings{"a.NEF", "a.JPG", "a.MOV"}));
}

TEST_F(CopyExportTest, picturesGetNamesThatNothingBears) {
    const std::string longest(251, 'n');
    target.write("b.heic");
    target.makeFolder("c.heic");
    const auto plans =
        plansOf(exportOf({picture("1/a.JPG"), picture("2/A.jpg"), photo("b.NEF", ""), photo("c.NEF", ""),
                          photo("d.x.NEF", ""), photo(longest + ".NEF", "")},
                         settings(Format::heif)));
    Strings names;
    for (const auto& plan : plans) names.emplace_back(plan.destination.name());
    EXPECT_EQ(names, (Strings{"a.heic", "A-1.heic", "b-1.heic", "c-1.heic", "d.x.heic",
                              longest.substr(1) + ".heic"}));
    EXPECT_EQ(plansOf(exportOf({picture("1/a.JPG")}))[0].destination, target.at("a.jpg"));
    auto byDate = exportOf({picture("1/a.JPG")}, settings(Format::png));
    byDate.intoDateFolders = true;
    EXPECT_EQ(plansOf(byDate)[0].destination, target.at("Undated/a.png"));
}

TEST_F(CopyExportTest, theRoomThatPicturesNeedDependsOnTheirFormat) {
    const std::vector items{photo("a.NEF", "123"), photo("b.NEF", "12345")};
    const struct {
        Format format;
        bool uses16Bit;
        std::int64_t needed;
    } cases[] = {{Format::jpeg, true, 8},
                 {Format::heif, false, 8},
                 {Format::png, false, 7 + 12},
                 {Format::png, true, 40}};
    for (const auto& [format, uses16Bit, needed] : cases) {
        const auto request = exportOf(items, settings(format, uses16Bit));
        files.capacity = needed;
        EXPECT_TRUE(service.plan(request));
        files.capacity = needed - 1;
        const auto refused = service.plan(request);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), (CopyService::CopyError{CopyService::NotEnoughSpace{needed, needed - 1}}));
    }
}

TEST_F(CopyExportTest, everyPhotoIsDrawnWithThePresetAndItsOwnEdits) {
    const auto warm = DevelopPreset::of("warm", "Warm", {}).withAmount(0.65);
    LightAdjustments light;
    light.set(LightAdjustments::Slider::exposure, 1);
    ExportLook look{warm, {{card.at("b.xmp"), light}}};
    const std::vector items{picture("a.JPG"), picture("b.JPG"), picture("c.JPG")};

    const auto plans = plansOf(exportOf(items, {}, look));
    ASSERT_EQ(plans.size(), 3U);
    EXPECT_EQ(render(plans[0]).preset->revision, warm.revision);
    EXPECT_EQ(render(plans[1]).preset->revision, look.presetFor(items[1])->revision);
    EXPECT_NE(render(plans[1]).preset->revision, warm.revision);
    EXPECT_EQ(render(plans[2]).preset, render(plans[0]).preset);
    EXPECT_EQ(render(plansOf(exportOf(items, settings(Format::jpeg, false, false), look))[1]).preset,
              nullptr);
    EXPECT_EQ(render(plansOf(exportOf(items))[1]).preset, nullptr);

    EXPECT_EQ((CopyService::Export{look, {}}.title()), "JPEG with “Warm 65%” + Edits applied");
    EXPECT_EQ((CopyService::Export{look, settings(Format::png, false, false)}.title()), "PNG");
    EXPECT_EQ((CopyService::Export{std::nullopt, settings(Format::heif)}.title()), "HEIF");
}

TEST_F(CopyExportTest, whatCannotBeReadIsNamedAndTheOthersAreExportedInOrder) {
    card.write("d.xmp", "stars");
    target.write("a.jpg", "somebody else's");
    const auto damaged = photo("damaged.JPG", "no picture");
    const auto gone = picture("gone.JPG");
    const auto plans = plansOf(exportOf({picture("a.JPG"), damaged, picture("c.JPG"),
                                         photo("film.MOV", "moving"), gone, photo("d.NEF", "no preview")}));
    std::filesystem::remove(gone.url.path());
    const auto report = copy(plans);
    EXPECT_EQ(report.copied, 2);
    EXPECT_EQ(report.renamed, 1);
    EXPECT_EQ(report.exported, (std::vector{target.at("a-1.jpg"), target.at("c.jpg")}));
    EXPECT_EQ(target.files(), (Strings{"a-1.jpg", "a.jpg", "c.jpg"}));
    const auto bytes = TemporaryFolder::read(target.at("c.jpg"));
    EXPECT_TRUE(bytes.starts_with("\xFF\xD8"));
    EXPECT_EQ(report.copiedBytes,
              static_cast<std::int64_t>(bytes.size() + TemporaryFolder::read(target.at("a-1.jpg")).size()));
    Strings reasons;
    for (const auto& failure : report.failures) reasons.push_back(failure.reason);
    std::ranges::sort(reasons);
    EXPECT_EQ(reasons, (Strings{"Couldn't read d.NEF.", "Couldn't read damaged.JPG.",
                                "Couldn't read film.MOV.", "Couldn't read gone.JPG."}));
}

TEST_F(CopyExportTest, aPictureHasItsNameWhenItIsWholeAndReplacesNothing) {
    const auto plans = plansOf(1);
    const auto reason = [&] {
        const auto report = copy(plans);
        return report.failures.size() == 1 ? report.failures[0].reason : std::string{};
    };
    files.onCreate = [](const FileURL&) { return std::optional{std::errc::no_space_on_device}; };
    EXPECT_EQ(reason(), "Couldn't create a JPEG for 0.JPG.");
    files.onCreate = {};
    files.onSync = [](const FileURL&) { return std::optional{std::errc::io_error}; };
    EXPECT_EQ(reason(), "Couldn't create a JPEG for 0.JPG.");
    EXPECT_EQ(target.files(), Strings{});
    files.onSync = {};
    files.onPlace = [this](const FileURL&, const FileURL&) { target.write("0.jpg", "theirs"); };
    EXPECT_EQ(reason(), "Another file of this name appeared at the destination.");
    EXPECT_EQ(target.files(), Strings{"0.jpg"});
    EXPECT_EQ(TemporaryFolder::read(target.at("0.jpg")), "theirs");
}

TEST_F(CopyExportTest, starsGoAlong) {
    const auto plans = plansOf(2);
    EXPECT_EQ(copy(plans, {{plans[1].source, *Rating::fromRawValue(3)}}).copied, 2);
    EXPECT_NE(TemporaryFolder::read(target.at("0.jpg")), TemporaryFolder::read(target.at("1.jpg")));
}

TEST_F(CopyExportTest, exportsTwoPhotosAtOnceAndFinishesThemWhenCancelled) {
    std::stop_source stop;
    std::latch two{2}; // the first two wait for one another
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    std::atomic<int> begun = 0;
    bool cancels = false;
    files.onCreate = [&](const FileURL&) -> std::optional<std::errc> {
        const int now = ++inside;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        if (++begun <= 2) two.arrive_and_wait();
        if (cancels) stop.request_stop();
        --inside;
        return std::nullopt;
    };
    EXPECT_EQ(copy(plansOf(10)).copied, 10);
    EXPECT_EQ(most, 2);

    cancels = true;
    const auto report = copy(plansOf(20), {}, stop.get_token());
    EXPECT_TRUE(report.wasCancelled);
    EXPECT_TRUE(report.failures.empty());
    EXPECT_LE(report.copied, 2);
    EXPECT_EQ(report.exported.size(), static_cast<std::size_t>(report.copied));
}

} // namespace
} // namespace kelvara
