#include "services/VolumeService.h"

#include "support/FakeDesktop.h"

#include <gtest/gtest.h>
#include <optional>

namespace kelvara {
namespace {

VolumeInfo volume(const char* name, bool isRemovable, const char* path = "/media/x") {
    VolumeInfo info;
    info.url = FileURL{path};
    info.name = name;
    info.isRemovable = isRemovable;
    return info;
}

std::vector<std::string> names(const std::vector<VolumeInfo>& volumes) {
    std::vector<std::string> result;
    for (const auto& info : volumes) result.push_back(info.name);
    return result;
}

/// Answers when the test says so.
class SlowVolumes : public FakeVolumes {
public:
    void list(std::function<void(std::vector<VolumeInfo>)> onAnswer) override {
        requests.push_back(std::move(onAnswer));
    }
    std::vector<std::function<void(std::vector<VolumeInfo>)>> requests;
};

TEST(VolumeServiceTest, cardsComeFirstAndThenNamesAsPeopleCount) {
    FakeVolumes volumes;
    volumes.mounted = {volume("Backup", false), volume("Card 10", true), volume("archive", false),
                       volume("NO NAME", true), volume("Card 2", true)};
    std::vector<VolumeInfo> seen;
    VolumeService{volumes}.mountedVolumes([&](std::vector<VolumeInfo> listed) { seen = std::move(listed); });
    EXPECT_EQ(names(seen), (std::vector<std::string>{"Card 2", "Card 10", "NO NAME", "archive", "Backup"}));
}

TEST(VolumeServiceTest, equalNamesKeepTheirOrder) {
    FakeVolumes volumes;
    volumes.mounted = {volume("NO NAME", true, "/media/2"), volume("no name", true, "/media/1"),
                       volume("NO NAME", true, "/media/3")};
    std::vector<VolumeInfo> seen;
    VolumeService{volumes}.mountedVolumes([&](std::vector<VolumeInfo> listed) { seen = std::move(listed); });
    EXPECT_EQ(seen, volumes.mounted);
}

TEST(VolumeServiceTest, anOldListNeverReplacesANewerOne) {
    SlowVolumes volumes;
    VolumeService service{volumes};
    std::vector<std::string> seen;
    const auto note = [&](const std::vector<VolumeInfo>& listed) { seen = names(listed); };
    service.mountedVolumes(note);
    service.mountedVolumes(note);
    volumes.requests[1]({volume("new", true)});
    volumes.requests[0]({volume("old", true)});
    EXPECT_EQ(seen, std::vector<std::string>{"new"});
}

TEST(VolumeServiceTest, nothingArrivesOnceItIsGone) {
    SlowVolumes volumes;
    bool isAnswered = false;
    std::optional<VolumeService> service{volumes};
    service->mountedVolumes([&](const auto&) { isAnswered = true; });
    service.reset();
    volumes.requests[0]({});
    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace kelvara
