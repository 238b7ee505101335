#include "cli/DesktopVolumes.h"

#include "platform/linux/UDisksVolumes.h"
#include "services/VolumeService.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <optional>
#include <utility>

namespace kelvara::cli {

namespace {

/// Starts something that answers later, and lets the loop run until it has.
template <typename Answer, typename Start> Answer awaited(Start start) {
    QEventLoop loop;
    std::optional<Answer> answer;
    start([&](Answer given) {
        answer = std::move(given);
        loop.quit();
    });
    while (!answer) loop.exec();
    return std::move(*answer);
}

} // namespace

struct DesktopVolumes::Desktop {
    // Qt keeps references to both.
    int argumentCount = 1;
    char name[12] = "kelvara-cli";
    char* arguments[2] = {name, nullptr};
    QCoreApplication application{argumentCount, arguments};
    UDisksVolumes volumes{QDBusConnection::systemBus()};
    VolumeService service{volumes};
};

DesktopVolumes::DesktopVolumes() : m_desktop{std::make_unique<Desktop>()} {}
DesktopVolumes::~DesktopVolumes() = default;

std::vector<VolumeInfo> DesktopVolumes::list() {
    return awaited<std::vector<VolumeInfo>>(
        [this](auto onAnswer) { m_desktop->service.mountedVolumes(std::move(onAnswer)); });
}

Result<void, std::string> DesktopVolumes::eject(const FileURL& volume) {
    return awaited<Result<void, std::string>>(
        [&](auto onEnd) { m_desktop->service.eject(volume, std::move(onEnd)); });
}

} // namespace kelvara::cli
