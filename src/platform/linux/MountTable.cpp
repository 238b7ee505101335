#include "platform/linux/MountTable.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>

namespace kelvara {

namespace {

bool isOctal(char c) { return c >= '0' && c <= '7'; }

/// The kernel writes spaces, tabs, line ends and backslashes as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
    std::string bytes;
    bytes.reserve(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
        const auto digits = field.substr(i + 1, 3);
        const bool isEscape = field[i] == '\\' && digits.size() == 3 && digits[0] <= '3' &&
                              std::all_of(digits.begin(), digits.end(), isOctal);
        if (!isEscape) {
            bytes += field[i];
            continue;
        }
        bytes += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
        i += digits.size();
    }
    return bytes;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

bool parse(std::string_view text, unsigned& number) {
    const auto* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && rest == end;
}

/// "36 35 98:0 / /mnt/card rw,noatime master:1 - ext4 /dev/sdb1 rw"; any number of optional fields before
/// the dash.
std::optional<MountEntry> parsedLine(std::string_view line) {
    constexpr std::ptrdiff_t firstOptional = 6;
    const auto fields = split(line, ' ');
    if (fields.size() < 10) return std::nullopt;
    const auto dash = std::find(fields.begin() + firstOptional, fields.end(), "-");
    if (fields.end() - dash < 3) return std::nullopt;
    MountEntry entry{.root = unescaped(fields[3]),
                     .mountPoint = unescaped(fields[4]),
                     .type = unescaped(dash[1]),
                     .source = unescaped(dash[2])};
    const auto device = split(fields[2], ':');
    if (device.size() != 2 || !parse(device[0], entry.major) || !parse(device[1], entry.minor)) {
        return std::nullopt;
    }
    if (!entry.mountPoint.starts_with('/')) return std::nullopt;
    return entry;
}

} // namespace

std::vector<MountEntry> parsedMountTable(std::string_view text) {
    std::vector<MountEntry> entries;
    for (const auto line : split(text, '\n')) {
        auto entry = parsedLine(line);
        if (!entry) continue;
        std::erase_if(entries,
                      [&](const MountEntry& covered) { return covered.mountPoint == entry->mountPoint; });
        entries.push_back(*std::move(entry));
    }
    return entries;
}

std::vector<MountEntry> readMountTable(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    return parsedMountTable(text);
}

} // namespace kelvara
