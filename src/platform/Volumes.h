#pragma once

#include "model/Result.h"
#include "model/VolumeInfo.h"

#include <functional>
#include <string>
#include <vector>

namespace kelvara {

struct VolumeChange {
    FileURL url; ///< The mount point.
    bool didUnmount = false;
};

/// The desktop's mounted volumes. Called on the main thread, which it never blocks; every answer arrives
/// there, and none arrives after the object is gone.
class Volumes {
public:
    virtual ~Volumes() = default;

    /// Answers with the volumes that a person may browse, in no particular order.
    virtual void list(std::function<void(std::vector<VolumeInfo>)> onAnswer) = 0;

    /// One observer, told after every mount and unmount.
    virtual void observe(std::function<void(const VolumeChange&)> onChange) = 0;

    /// Unmounts every partition of the volume's disk and ejects it, or says in a sentence why it can't.
    virtual void eject(const FileURL& volume, std::function<void(Result<void, std::string>)> onEnd) = 0;
};

} // namespace kelvara
