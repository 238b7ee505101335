#pragma once

#include "model/FileURL.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace kelvara {

/// A folder of a test's own, gone with all that is in it when the test ends.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string path = parent / "kelvara-test-XXXXXX";
        if (::mkdtemp(path.data()) == nullptr) std::abort();
        m_url = FileURL{path};
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_url.path(), ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const FileURL& url() const { return m_url; }
    [[nodiscard]] FileURL at(std::string_view relativePath) const { return m_url.child(relativePath); }

    [[nodiscard]] FileURL operator/(std::string_view relativePath) const { return at(relativePath); }

    /// Writes a file and the folders above it. `modified`, in seconds since 1970, is the present where 0.
    FileURL write(std::string_view relativePath, std::string_view bytes = {},
                  std::int64_t modified = 0) const {
        auto url = at(relativePath);
        std::filesystem::create_directories(url.parent().path());
        std::ofstream{url.path(), std::ios::binary} << bytes;
        const timespec time{.tv_sec = modified, .tv_nsec = 0};
        const timespec times[2] = {time, time};
        if (modified != 0) ::utimensat(AT_FDCWD, url.path().c_str(), times, 0);
        return url;
    }
    FileURL makeFolder(std::string_view relativePath) const {
        auto url = at(relativePath);
        std::filesystem::create_directories(url.path());
        return url;
    }

    [[nodiscard]] static std::string read(const FileURL& url) {
        std::ifstream stream{url.path(), std::ios::binary};
        return {std::istreambuf_iterator<char>{stream}, {}};
    }
    [[nodiscard]] static bool exists(const FileURL& url) {
        return std::filesystem::exists(std::filesystem::symlink_status(url.path()));
    }
    /// Everything that is not a folder below `relativePath`, as sorted relative paths.
    [[nodiscard]] std::vector<std::string> files(std::string_view relativePath = {}) const {
        const std::filesystem::path top{relativePath.empty() ? m_url.path() : at(relativePath).path()};
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator{top}) {
            if (!entry.is_directory()) found.push_back(entry.path().string().substr(top.string().size() + 1));
        }
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    FileURL m_url;
};

} // namespace kelvara
