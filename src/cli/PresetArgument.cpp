#include "cli/PresetArgument.h"

#include <cerrno>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

namespace kelvara::cli {

Result<DevelopPreset, CommandError> loadedPreset(const std::string& path) {
    const auto file = resolved(path);
    if (!file) return Failure{file.error()};
    if (::access(file->path().c_str(), R_OK) != 0) {
        const std::error_code code{errno, std::generic_category()};
        return Failure{CommandError{fmt::format("{}: {}", printable(file->path()), code.message())}};
    }
    auto preset = DevelopPreset::load(*file);
    if (!preset) return Failure{CommandError{printable(message(preset.error()))}};
    return std::move(*preset);
}

} // namespace kelvara::cli
