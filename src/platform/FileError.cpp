#include "platform/FileSystem.h"

#include "text/Localized.h"

#include <fmt/format.h>

namespace kelvara {

std::string message(const FileError& error) {
    return fmt::format("“{}”: {}", error.url.name(), localized(error.code.message()));
}

} // namespace kelvara
