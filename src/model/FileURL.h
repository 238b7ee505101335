#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara {

/// Where a file or folder is, and which one it is: an absolute path, compared byte for byte.
///
/// A path is bytes, not text: names that are not UTF-8 are as good as any. The name's parts are views into
/// the path, and the hash is computed once, so that a URL is cheap as a key of large collections.
class FileURL {
public:
    /// No file at all; `isEmpty()`.
    FileURL() = default;
    /// Takes the path as it stands; see `standardized()` for paths that a person typed.
    explicit FileURL(std::string path);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] bool isEmpty() const { return m_path.empty(); }

    /// Last path component, extension included: "DSC_0042.NEF". The root's name is "/".
    [[nodiscard]] std::string_view name() const;
    /// Text after the last dot of the name, case kept: "NEF". Empty for "README", ".hidden" and "name.".
    [[nodiscard]] std::string_view extension() const;
    /// The name without its extension and the dot: "DSC_0042".
    [[nodiscard]] std::string_view stem() const;

    /// The folder that holds it; the root is its own parent.
    [[nodiscard]] FileURL parent() const;
    [[nodiscard]] FileURL child(std::string_view name) const;
    [[nodiscard]] FileURL withExtension(std::string_view extension) const;
    /// "IMG_1.CR3" becomes "IMG_1.CR3.partial".
    [[nodiscard]] FileURL appendingExtension(std::string_view extension) const;

    /// The rating sidecar of the shot, and the key that all files of the shot share: extension "xmp".
    [[nodiscard]] FileURL stemKey() const { return withExtension("xmp"); }

    /// Without empty and "." components and trailing slashes, ".." resolved by the text alone (no link is
    /// followed). Relative paths are taken from `workingFolder`.
    [[nodiscard]] static FileURL standardized(std::string_view path, std::string_view workingFolder = "/");
    [[nodiscard]] FileURL standardized() const { return standardized(m_path); }

    /// "file:///card/caf%E9.jpg": names the file exactly, in plain ASCII, whatever bytes its path is made of.
    [[nodiscard]] std::string uri() const;
    /// Empty for anything but the "file:" URI of an absolute path.
    [[nodiscard]] static std::optional<FileURL> fromURI(std::string_view uri);

    /// Whether it is `folder` itself or lies below it, by whole path components; both standardized first.
    [[nodiscard]] bool isContained(const FileURL& folder) const;

    [[nodiscard]] std::size_t hash() const { return m_hash; }

    friend bool operator==(const FileURL& a, const FileURL& b) {
        return a.m_hash == b.m_hash && a.m_path == b.m_path;
    }
    friend auto operator<=>(const FileURL& a, const FileURL& b) { return a.m_path <=> b.m_path; }

private:
    std::string m_path;
    std::size_t m_hash = std::hash<std::string_view>{}({});
    std::uint32_t m_nameStart = 0;
    std::uint32_t m_dot = 0; // where the extension's dot stands; the path's length when there is none
};

} // namespace kelvara

template <> struct std::hash<kelvara::FileURL> {
    std::size_t operator()(const kelvara::FileURL& url) const noexcept { return url.hash(); }
};
