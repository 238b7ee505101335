#include "services/CopyNames.h"
#include "services/CopyTest.h"

#include <cstdlib>
#include <ctime>
#include <limits>
#include <unistd.h>

namespace kelvara {
namespace {

/// Moves the process to another time zone while it lives.
class TimeZone {
public:
    explicit TimeZone(const char* name) {
        if (const char* before = std::getenv("TZ")) m_before = before;
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    ~TimeZone() {
        m_before ? ::setenv("TZ", m_before->c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> m_before;
};

class CopyPlanTest : public CopyTest {};

TEST_F(CopyPlanTest, aDestinationInsideTheSourceIsRefusedBeforeAnythingIsMade) {
    const auto item = photo("a.NEF", "x");
    for (const auto& destination : {card.url(), card.at("new/deep"), card.at("x/../new")}) {
        auto refused = service.plan({{item}, destination, card.url(), true});
        ASSERT_FALSE(refused);
        EXPECT_EQ(message(refused.error()), "Choose a destination outside the folder you're copying from.");
    }
    EXPECT_FALSE(TemporaryFolder::exists(card.at("new")));
    // A neighbour whose name only begins alike, and the folder above, are outside.
    EXPECT_TRUE(service.plan({{item}, FileURL{card.url().path() + "2"}, card.url(), false}));
    std::filesystem::remove(card.url().path() + "2");
    EXPECT_TRUE(service.plan({{item}, target.url(), card.at("sub"), false}));
}

TEST_F(CopyPlanTest, aVolumeWithExactlyTheRoomSufficesAndOneByteLessDoesNot) {
    const std::vector items{photo("a.NEF", "1234567"), photo("b.NEF", "12345")};
    files.capacity = 12;
    EXPECT_TRUE(service.plan(request(items)));
    files.capacity = 11;
    const auto refused = service.plan(request(items));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), (CopyService::CopyError{CopyService::NotEnoughSpace{12, 11}}));
    EXPECT_EQ(message(refused.error()), "Not enough space: 12 bytes needed, 11 bytes available.");
    target.write("b.NEF", "there"); // what is skipped needs no room
    EXPECT_TRUE(service.plan(request(items)));
    files.capacity = std::optional<std::int64_t>{};
    EXPECT_TRUE(service.plan(request(items)));
}

TEST_F(CopyPlanTest, sizesThatNoVolumeCanHoldAreTooMuchAndDoNotOverflow) {
    constexpr auto huge = std::numeric_limits<std::int64_t>::max() / 2 + 1;
    const auto refused = service.plan(request({{card.at("a.NEF"), huge, {}}, {card.at("b.NEF"), huge, {}}}));
    ASSERT_FALSE(refused);
    EXPECT_TRUE(std::holds_alternative<CopyService::NotEnoughSpace>(refused.error()));
}

TEST_F(CopyPlanTest, aFolderThatCannotBeMadeIsTheErrorOfTheJob) {
    target.write("file");
    const auto refused = service.plan({{photo("a.NEF", "x")}, target.at("file/below"), card.url(), false});
    ASSERT_FALSE(refused);
    EXPECT_TRUE(std::holds_alternative<FileError>(refused.error()));
    target.write("Undated");
    EXPECT_FALSE(service.plan({{photo("a.NEF", "x")}, target.url(), card.url(), true}));
}

TEST_F(CopyPlanTest, dateFoldersAreDaysInTheUsersTimeZone) {
    using namespace std::chrono;
    const FileTime evening = sys_days{2024y / March / 6} + 20h;
    {
        const TimeZone zone{"JST-9"};
        EXPECT_EQ(dateFolderName(evening), "2024-03-07");
        EXPECT_EQ(dateFolderName(sys_days{1969y / December / 31} + 23h + 59min + 59s + 1us), "1970-01-01");
        EXPECT_EQ(dateFolderName(std::nullopt), "Undated");
    }
    const TimeZone zone{"UTC0"};
    EXPECT_EQ(dateFolderName(FileTime{-1us}), "1969-12-31");
    const auto plans = service.plan(
        {{photo("a.NEF", "x", evening), photo("b.NEF", "x")}, target.at("new/trip"), card.url(), true});
    ASSERT_TRUE(plans);
    EXPECT_EQ(plans->at(0).destination, target.at("new/trip/2024-03-06/a.NEF"));
    EXPECT_EQ(plans->at(1).destination, target.at("new/trip/Undated/b.NEF"));
    EXPECT_TRUE(std::filesystem::is_directory(target.at("new/trip/2024-03-06").path()));
}

TEST_F(CopyPlanTest, noTwoFilesGetOneNameWhateverItsCase) {
    const auto plans =
        planned({photo("1/DSC_1.NEF", "aa"), photo("2/DSC_1.NEF", "bb"), photo("3/dsc_1.nef", "c"),
                 photo("3/caf\xE9.jpg", "d"), photo("4/caf\xE8.jpg", "e")});
    ASSERT_EQ(plans.size(), 5U);
    EXPECT_EQ(plans[0].destination, target.at("DSC_1.NEF"));
    EXPECT_EQ(plans[1].destination, target.at("DSC_1-1.NEF"));
    EXPECT_EQ(plans[2].destination, target.at("dsc_1-2.nef"));
    EXPECT_EQ(plans[3].destination, target.at("caf\xE9.jpg"));
    EXPECT_EQ(plans[4].destination, target.at("caf\xE8.jpg"));
}

TEST_F(CopyPlanTest, aFileOfTheSameSizeIsAnEarlierCopyAlsoUnderANumber) {
    const auto item = photo("IMG_1.CR3", "12345");
    target.write("IMG_1.CR3", "other");
    EXPECT_TRUE(isSkipped(planned({item})[0]));
    target.write("IMG_1.CR3", "another");
    EXPECT_EQ(planned({item})[0].destination, target.at("IMG_1-1.CR3"));
    target.write("IMG_1-1.CR3", "67890");
    const auto plan = planned({item})[0];
    EXPECT_EQ(plan.destination, target.at("IMG_1-1.CR3"));
    EXPECT_TRUE(isSkipped(plan));
}

TEST_F(CopyPlanTest, verificationTakesOnlyTheSameContentsForAnEarlierCopy) {
    target.write("IMG_1.CR3", "67890");
    target.write("IMG_1-1.CR3", "12345");
    auto request = this->request({photo("IMG_1.CR3", "12345"), photo("b/IMG_1.CR3", "12346")});
    EXPECT_TRUE(isSkipped(service.plan(request)->at(0)));
    request.verifies = true;
    const auto plans = service.plan(request);
    ASSERT_TRUE(plans);
    EXPECT_TRUE(isSkipped(plans->at(0)));
    EXPECT_EQ(plans->at(0).destination, target.at("IMG_1-1.CR3"));
    EXPECT_EQ(plans->at(1).destination, target.at("IMG_1-2.CR3"));
    EXPECT_EQ(plans->at(1).action, Plan::Action{Plan::Copy{.isVerified = true}});

    std::stop_source stop; // requested while contents are compared
    stop.request_stop();
    EXPECT_EQ(service.plan(request, stop.get_token()).error(),
              CopyService::CopyError{CopyService::Cancelled{}});
}

TEST_F(CopyPlanTest, foldersAndLinksOfTheNameAreNoEarlierCopies) {
    target.makeFolder("a.MOV");
    target.write("real", "1");
    ASSERT_EQ(::symlink("real", target.at("a-1.MOV").path().c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", target.at("a-2.MOV").path().c_str()), 0);
    const auto plan = planned({photo("a.MOV", "1")})[0];
    EXPECT_EQ(plan.destination, target.at("a-3.MOV"));
    EXPECT_FALSE(isSkipped(plan));
}

TEST_F(CopyPlanTest, knowsRawFilesAndTheirSidecars) {
    card.write("a.xmp", "stars");
    card.makeFolder("c.xmp");
    const auto plans =
        planned({photo("a.NEF", "1"), photo("a.JPG", "2"), photo("b.NEF", "3"), photo("c.NEF", "4")});
    EXPECT_TRUE(plans[0].isRaw);
    EXPECT_FALSE(plans[1].isRaw);
    EXPECT_EQ(plans[0].sourceSidecar, card.at("a.xmp"));
    EXPECT_EQ(plans[2].sourceSidecar, std::nullopt);
    EXPECT_EQ(plans[3].sourceSidecar, std::nullopt);
}

TEST_F(CopyPlanTest, aPlanThatIsOnlyLookedAtMakesNothing) {
    target.write("file");
    auto request = this->request({photo("a.NEF", "1"), photo("b/a.NEF", "22")});
    request.createsFolders = false;
    request.intoDateFolders = true;
    request.destination = target.at("new/trip");
    const auto plans = service.plan(request);
    ASSERT_TRUE(plans);
    EXPECT_EQ(plans->at(1).destination, target.at("new/trip/Undated/a-1.NEF"));
    EXPECT_FALSE(TemporaryFolder::exists(target.at("new")));
    files.capacity = 2; // of the volume that the folder would be made on
    EXPECT_FALSE(service.plan(request));
    files.capacity.reset();
    request.destination = target.at("file/below");
    EXPECT_FALSE(service.plan(request));
}

TEST_F(CopyPlanTest, canBeCancelled) {
    std::stop_source stop;
    stop.request_stop();
    const auto plans = service.plan(request({photo("a.NEF", "1")}), stop.get_token());
    ASSERT_FALSE(plans);
    EXPECT_EQ(plans.error(), CopyService::CopyError{CopyService::Cancelled{}});
}

TEST(CopyNamesTest, numbersStandBeforeTheExtension) {
    EXPECT_EQ(numberedName(FileURL{"/c/IMG.1.CR3"}, 0), "IMG.1.CR3");
    EXPECT_EQ(numberedName(FileURL{"/c/IMG.1.CR3"}, 12), "IMG.1-12.CR3");
    EXPECT_EQ(numberedName(FileURL{"/c/README"}, 1), "README-1");
}

TEST(CopyNamesTest, namesThatWouldBecomeTooLongAreShortenedBetweenCharacters) {
    std::string longest; // 251 bytes of two-byte letters and one more, 255 with the extension
    for (int i = 0; i < 125; ++i) longest += "ä";
    longest += 'x';
    const FileURL source{"/c/" + longest + ".NEF"};
    ASSERT_EQ(source.name().size(), maximumNameLength);
    const auto numbered = numberedName(source, 1);
    EXPECT_EQ(numbered, std::string{source.stem().substr(0, 248)} + "-1.NEF");

    const auto temporary = temporaryURL(source);
    EXPECT_LE(temporary.name().size(), maximumNameLength);
    EXPECT_EQ(temporary.extension(), "partial");
    EXPECT_EQ(temporary.parent(), source.parent());
    EXPECT_NE(temporary, temporaryURL(FileURL{"/c/" + longest + ".JPG"}));
    EXPECT_EQ(temporaryURL(FileURL{"/c/a.NEF"}), FileURL{"/c/a.NEF.partial"});
}

} // namespace
} // namespace kelvara
