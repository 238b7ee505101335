#include "services/XMPService.h"

#include "services/xmp/NamespaceScope.h"
#include "services/xmp/SidecarEdit.h"
#include "services/xmp/SidecarScan.h"
#include "text/Localized.h"

#include <atomic>
#include <charconv>
#include <fmt/format.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace kelvara {

namespace {

constexpr std::string_view ratingProperty = "Rating";
constexpr std::string_view dateProperty = "MetadataDate";
constexpr std::size_t worthASecondThread = 64;
constexpr auto maximumBytes = static_cast<std::int64_t>(xmp::maximumSidecarSize);

std::string newSidecar() {
    return fmt::format("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Kelvara\">\n"
                       " <rdf:RDF xmlns:rdf=\"{}\">\n"
                       "  <rdf:Description rdf:about=\"\" xmlns:xmp=\"{}\"/>\n"
                       " </rdf:RDF>\n"
                       "</x:xmpmeta>\n",
                       xmp::rdfNamespace, xmp::xmpNamespace);
}

/// "2024-05-01T09:30:12Z"
std::string iso8601(std::chrono::system_clock::time_point time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{seconds - day};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count());
}

std::optional<Rating> parseRating(std::string_view text) {
    constexpr std::string_view spaces = " \t";
    const auto first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(spaces) - first + 1);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    long long value = 0;
    const auto* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc{} || parsed.ptr != end) return std::nullopt;
    return Rating::fromRawValue(value);
}

/// Whether the property's name stands anywhere; as names have no escapes, there is no rating without it.
bool mentionsRating(std::string_view bytes) {
    constexpr std::string_view wide{"R\0a\0t\0i\0n\0g", 11}; // the part that both byte orders share
    return bytes.find(ratingProperty) != std::string_view::npos || bytes.find(wide) != std::string_view::npos;
}

std::optional<Rating> scannedRating(xmp::SidecarScanner& scanner, std::string_view bytes) {
    if (!mentionsRating(bytes)) return std::nullopt;
    const auto scan = scanner.scan(bytes, ratingProperty);
    return scan && scan->hasProperty() ? parseRating(scan->value) : std::nullopt;
}

/// The sidecar with both properties set; empty where it can't be done so that the rating reads back.
std::optional<std::string> settingRating(std::string_view bytes, Rating rating, std::string_view date) {
    // One after the other: the first edit may take away the place where the second property stood.
    const auto rated = xmp::settingProperty(bytes, ratingProperty, std::to_string(rating.rawValue()));
    if (!rated) return std::nullopt;
    auto dated = xmp::settingProperty(*rated, dateProperty, date);
    if (!dated || XMPService::rating(*dated) != rating) return std::nullopt;
    return dated;
}

} // namespace

std::string message(const XMPError& error) {
    if (const auto* fileError = std::get_if<FileError>(&error)) return message(*fileError);
    return fmt::format(fmt::runtime(localized("{} exists but isn't valid XMP, so it was left untouched.")),
                       std::get<UnreadableSidecar>(error).url.name());
}

XMPService::XMPService(FileSystem& files, Clock now) : m_files{files}, m_now{std::move(now)} {}

std::unordered_map<FileURL, Rating> XMPService::readRatings(std::span<const FileURL> sidecars,
                                                            std::stop_token stop) const {
    std::vector<std::optional<Rating>> found(sidecars.size());
    std::atomic<std::size_t> next = 0;
    const auto readNext = [&] {
        xmp::SidecarScanner scanner;
        for (auto i = next++; i < sidecars.size() && !stop.stop_requested(); i = next++) {
            if (const auto bytes = m_files.readFile(sidecars[i], maximumBytes)) {
                found[i] = scannedRating(scanner, *bytes);
            }
        }
    };
    {
        const std::scoped_lock lock{m_oneCallAtATime};
        // Two, because a memory card serves no more reads at once well, and parsing takes longer than
        // reading.
        std::jthread second;
        try {
            if (sidecars.size() >= worthASecondThread) second = std::jthread{readNext};
        } catch (const std::system_error&) {
            // No thread to be had: this one reads them all.
        }
        readNext();
    }
    std::unordered_map<FileURL, Rating> ratings;
    for (std::size_t i = 0; i < sidecars.size(); ++i) {
        if (found[i]) ratings.emplace(sidecars[i], *found[i]);
    }
    return ratings;
}

std::optional<Rating> XMPService::rating(std::string_view bytes) {
    xmp::SidecarScanner scanner;
    return scannedRating(scanner, bytes);
}

Result<void, XMPError> XMPService::setRating(Rating rating, const FileURL& sidecar) {
    const std::scoped_lock lock{m_oneCallAtATime};
    const auto existing = m_files.readFile(sidecar, maximumBytes);
    // Only a missing sidecar may be replaced by a new one; what merely can't be read may hold a day's work.
    const bool isMissing = !existing && existing.error().code == std::errc::no_such_file_or_directory;
    if (!existing && !isMissing) {
        if (existing.error().code == std::errc::file_too_large) return Failure{UnreadableSidecar{sidecar}};
        return Failure{existing.error()};
    }
    const auto edited = settingRating(isMissing ? newSidecar() : *existing, rating, iso8601(m_now()));
    if (!edited) return Failure{UnreadableSidecar{sidecar}};
    const auto written = m_files.writeFileAtomically(sidecar, *edited);
    if (!written) return Failure{written.error()};
    return {};
}

} // namespace kelvara
