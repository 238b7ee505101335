#include "model/FileURL.h"

#include "text/PercentEncoding.h"

#include <charconv>
#include <utility>
#include <vector>

namespace kelvara {

namespace {
constexpr std::string_view uriScheme = "file://";
} // namespace

FileURL::FileURL(std::string path) : m_path{std::move(path)}, m_hash{std::hash<std::string_view>{}(m_path)} {
    const auto slash = m_path.rfind('/');
    // The root has no component after its slash, so its name is the slash.
    const bool endsInSlash = slash != std::string::npos && slash + 1 == m_path.size();
    m_nameStart = slash == std::string::npos || endsInSlash ? 0 : static_cast<std::uint32_t>(slash + 1);
    const auto dot = m_path.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > m_nameStart && dot + 1 < m_path.size();
    m_dot = static_cast<std::uint32_t>(hasExtension ? dot : m_path.size());
}

std::string_view FileURL::name() const { return std::string_view{m_path}.substr(m_nameStart); }

std::string_view FileURL::extension() const {
    return m_dot < m_path.size() ? std::string_view{m_path}.substr(m_dot + 1) : std::string_view{};
}

std::string_view FileURL::stem() const {
    return std::string_view{m_path}.substr(m_nameStart, m_dot - m_nameStart);
}

FileURL FileURL::parent() const {
    if (m_nameStart <= 1) return FileURL{"/"};
    return FileURL{m_path.substr(0, m_nameStart - 1)};
}

FileURL FileURL::child(std::string_view name) const {
    std::string path;
    path.reserve(m_path.size() + 1 + name.size());
    path = m_path;
    if (!path.ends_with('/')) path += '/';
    path += name;
    return FileURL{std::move(path)};
}

FileURL FileURL::withExtension(std::string_view extension) const {
    std::string path;
    path.reserve(m_dot + 1 + extension.size());
    path.assign(m_path, 0, m_dot);
    path += '.';
    path += extension;
    return FileURL{std::move(path)};
}

FileURL FileURL::appendingExtension(std::string_view extension) const {
    return FileURL{m_path + '.' + std::string{extension}};
}

std::string FileURL::uri() const { return std::string{uriScheme} + percentEncoded(m_path); }

std::optional<FileURL> FileURL::fromURI(std::string_view uri) {
    if (!uri.starts_with(uriScheme)) return std::nullopt;
    uri.remove_prefix(uriScheme.size());
    if (!uri.starts_with('/')) return std::nullopt;
    std::string path;
    while (!uri.empty()) {
        if (uri.front() == '%') {
            unsigned byte = 0;
            const auto digits = uri.substr(1, 2);
            const auto* end = digits.data() + digits.size();
            const auto parsed = std::from_chars(digits.data(), end, byte, 16);
            if (digits.size() != 2 || parsed.ptr != end || byte == 0) return std::nullopt;
            path += static_cast<char>(byte);
            uri.remove_prefix(3);
        } else {
            path += uri.front();
            uri.remove_prefix(1);
        }
    }
    return FileURL{std::move(path)};
}

FileURL FileURL::standardized(std::string_view path, std::string_view workingFolder) {
    std::vector<std::string_view> components;
    const auto addComponents = [&](std::string_view text) {
        while (!text.empty()) {
            const auto slash = text.find('/');
            const auto component = text.substr(0, slash);
            if (component == "..") {
                if (!components.empty()) components.pop_back();
            } else if (!component.empty() && component != ".") {
                components.push_back(component);
            }
            if (slash == std::string_view::npos) break;
            text.remove_prefix(slash + 1);
        }
    };
    if (!path.starts_with('/')) addComponents(workingFolder);
    addComponents(path);
    std::string result;
    for (const auto component : components) {
        result += '/';
        result += component;
    }
    return FileURL{result.empty() ? std::string{"/"} : std::move(result)};
}

bool FileURL::isContained(const FileURL& folder) const {
    const auto outer = folder.standardized();
    const auto inner = standardized();
    if (outer.path() == "/") return true;
    if (!inner.path().starts_with(outer.path())) return false;
    return inner.path().size() == outer.path().size() || inner.path()[outer.path().size()] == '/';
}

} // namespace kelvara
