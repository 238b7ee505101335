#pragma once

#include "model/Result.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct zip;

namespace kelvara {

/// The files in a ".zip" archive. Nothing in it is believed: not its sizes, and its names are only texts.
class ZipArchive {
public:
    enum class Problem { damaged, encrypted, tooLarge };

    /// Takes the archive's bytes; without them the object is empty.
    [[nodiscard]] static Result<ZipArchive, Problem> open(std::string bytes);

    /// The path of each entry as the archive has it, in UTF-8; folders end in "/".
    [[nodiscard]] const std::vector<std::string>& names() const { return m_names; }
    /// The bytes of an entry, unpacked.
    [[nodiscard]] Result<std::string, Problem> read(std::size_t entry, std::size_t maximumBytes) const;

private:
    struct Close {
        void operator()(zip* archive) const;
    };
    ZipArchive() = default;

    std::unique_ptr<const std::string> m_bytes; // does not move
    std::unique_ptr<zip, Close> m_archive;
    std::vector<std::string> m_names;
};

} // namespace kelvara
