#pragma once

#include "platform/Volumes.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kelvara {

/// The mounted volumes as the sidebar lists them. Main thread; see `Volumes` for when answers arrive.
class VolumeService {
public:
    /// `volumes` outlives it. `locale` decides the order of names; see `NameOrder`.
    explicit VolumeService(Volumes& volumes, std::string locale = {})
        : m_volumes{volumes}, m_locale{std::move(locale)} {}

    /// Answers with the volumes, removable ones first, by name within each group. Of several requests under
    /// way only the latest is answered, so that an old list never replaces a newer one.
    void mountedVolumes(std::function<void(std::vector<VolumeInfo>)> onAnswer);
    void observe(std::function<void(const VolumeChange&)> onChange) {
        m_volumes.observe(std::move(onChange));
    }
    void eject(const FileURL& volume, std::function<void(Result<void, std::string>)> onEnd) {
        m_volumes.eject(volume, std::move(onEnd));
    }

private:
    Volumes& m_volumes;
    std::string m_locale;
    std::shared_ptr<int> m_latest = std::make_shared<int>(0); // the number of the latest request
};

} // namespace kelvara
