#pragma once

#include "model/Result.h"
#include "model/VolumeInfo.h"

#include <memory>
#include <string>
#include <vector>

namespace kelvara::cli {

/// The desktop's volumes for a program that has nothing else to do than wait for them. One at a time, on the
/// main thread: it brings the event loop that the answers arrive in.
class DesktopVolumes {
public:
    DesktopVolumes();
    ~DesktopVolumes();

    /// In the sidebar's order.
    [[nodiscard]] std::vector<VolumeInfo> list();
    /// Unmounts the volume's disk and ejects it, or says in a sentence why it can't.
    Result<void, std::string> eject(const FileURL& volume);

private:
    struct Desktop;
    std::unique_ptr<Desktop> m_desktop;
};

} // namespace kelvara::cli
