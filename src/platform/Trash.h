#pragma once

#include "model/Result.h"
#include "platform/FileSystem.h"

namespace kelvara {

/// The desktop's Trash, from which people can take things back.
class Trash {
public:
    virtual ~Trash() = default;

    /// Moves one file, link or folder to the Trash of the volume it is on; nothing is ever erased instead.
    /// Blocks, so it belongs on a background thread; several threads may call it at once.
    virtual Result<void, FileError> moveToTrash(const FileURL& url) = 0;
};

} // namespace kelvara
