#include "presets/PresetImport.h"

#include "platform/FileSystem.h"
#include "presets/DevelopPreset.h"
#include "presets/PresetFolder.h"
#include "presets/ZipArchive.h"
#include "text/CaseFolding.h"
#include "text/Localized.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <ranges>
#include <string_view>

namespace kelvara {

namespace {

// Far above what photographers have, far below what hurts.
constexpr std::int64_t maximumArchiveBytes = 128 << 20;
constexpr std::size_t maximumUnpackedBytes = 512 << 20;
constexpr std::size_t maximumFiles = 20'000;
constexpr std::size_t maximumFolders = 16; // one within the other; what lies deeper comes into the last

using Path = std::vector<std::string>; // names of folders, from the outermost

std::string isNoPreset(std::string_view name) {
    return message(DevelopPreset::LoadError{DevelopPreset::LoadError::Kind::unreadable, std::string{name}});
}

/// A name that is nothing but a name wherever it comes from: no path, not hidden, nothing that does not
/// print. Empty where nothing is left.
std::string plainName(std::string_view name) {
    std::string plain{name.substr(std::min(name.find_first_not_of('.'), name.size()))};
    const auto isOdd = [](char c) { return c == '/' || c == '\x7f' || (c >= '\0' && c < ' '); };
    std::replace_if(plain.begin(), plain.end(), isOdd, '_');
    return plain;
}

/// The parts of a path; archives of some programs have "\" between them. Nothing leads up or to a root.
Path parts(std::string_view path) {
    Path result;
    while (!path.empty()) {
        const auto length = std::min(path.find_first_of("/\\"), path.size());
        const auto part = path.substr(0, length);
        if (!part.empty() && part != "." && part != "..") result.emplace_back(part);
        path.remove_prefix(std::min(length + 1, path.size()));
    }
    return result;
}

/// "Warm.xmp" for 0, then "Warm-1.xmp" and so on.
std::string numbered(const FileURL& file, unsigned number) {
    if (number == 0) return std::string{file.name()};
    return fmt::format("{}-{}.{}", file.stem(), number, file.extension());
}

class Import {
public:
    Import(FileSystem& files, const FileURL& folder, const std::stop_token& stop)
        : m_files{files}, m_folder{folder}, m_stop{stop} {}

    void add(const FileURL& source) {
        const auto status = m_files.status(source);
        if (!status) return complain(message(status.error()));
        if (status->kind == FileStatus::Kind::folder) return addFolder(source);
        if (caseFolded(source.extension()) == "zip") return addArchive(source);
        if (!isPresetFile(source)) return complain(isNoPreset(source.name()));
        addFile(source, {});
    }

    [[nodiscard]] bool goesOn() const { return !m_stop.stop_requested() && m_report.failure.empty(); }
    PresetImportReport takeReport() {
        m_report.wasCancelled = m_stop.stop_requested();
        return std::move(m_report);
    }

private:
    /// Whether to go on with one more file of a folder or an archive.
    bool admitsOne() {
        if (++m_fileCount > maximumFiles || m_unpackedBytes > maximumUnpackedBytes) {
            fail(localized("These are too many presets to import at once."));
        }
        return goesOn();
    }

    void addFolder(const FileURL& folder) {
        const auto found = presetFiles(m_files, folder, m_stop);
        if (!found) return complain(message(found.error()));
        const auto top = folder.standardized();
        for (const auto& file : *found) {
            if (!admitsOne()) return;
            auto path = parts(file.parent().standardized().path().substr(top.path().size()));
            path.insert(path.begin(), std::string{top.name()});
            addFile(file, path);
        }
    }

    void addFile(const FileURL& file, const Path& path) {
        if (file.isContained(m_folder)) {
            ++m_report.alreadyThere;
            return;
        }
        auto bytes = m_files.readFile(file, DevelopPreset::maximumFileSize);
        if (bytes) return addPreset(path, file.name(), *bytes);
        const auto isTooLarge = bytes.error().code == std::errc::file_too_large;
        complain(isTooLarge ? isNoPreset(file.name()) : message(bytes.error()));
    }

    void addArchive(const FileURL& url) {
        auto bytes = m_files.readFile(url, maximumArchiveBytes);
        if (!bytes) return complain(message(bytes.error()));
        const auto archive = ZipArchive::open(std::move(*bytes));
        if (!archive) return complain(isNoPreset(url.name()));

        struct Found {
            std::size_t entry;
            Path path;
            std::string name;
        };
        std::vector<Found> found;
        for (std::size_t entry = 0; entry < archive->names().size(); ++entry) {
            auto path = parts(archive->names()[entry]);
            if (archive->names()[entry].ends_with('/') || path.empty()) continue;
            const auto isHidden = [](const auto& part) {
                return part.starts_with('.') || part == "__MACOSX";
            };
            if (std::any_of(path.begin(), path.end(), isHidden)) continue;
            auto name = std::move(path.back());
            path.pop_back();
            if (isPresetFile(FileURL{"/" + name})) found.push_back({entry, std::move(path), std::move(name)});
        }
        // Most archives hold one folder, whose name is the better one.
        const auto isInTheFirstFolder = [&](const Found& file) {
            return !file.path.empty() && !found[0].path.empty() && file.path[0] == found[0].path[0];
        };
        const auto hasTop = std::all_of(found.begin(), found.end(), isInTheFirstFolder);
        for (auto& file : found) {
            if (!admitsOne()) return;
            if (!hasTop) file.path.insert(file.path.begin(), std::string{url.stem()});
            const auto unpacked = archive->read(file.entry, DevelopPreset::maximumFileSize);
            m_unpackedBytes += unpacked ? unpacked->size() : DevelopPreset::maximumFileSize;
            if (unpacked) {
                addPreset(file.path, file.name, *unpacked);
            } else if (unpacked.error() == ZipArchive::Problem::encrypted) {
                complain(fmt::format(fmt::runtime(localized("{} is protected by a password.")), file.name));
            } else {
                complain(isNoPreset(file.name));
            }
        }
    }

    void addPreset(const Path& path, std::string_view fileName, std::string_view bytes) {
        auto folder = m_folder;
        for (const auto& part : path | std::views::take(maximumFolders)) {
            if (const auto name = plainName(part); !name.empty()) folder = folder.child(name);
        }
        const auto wanted = folder.child(plainName(fileName));
        const auto number = firstFree(wanted, bytes);
        if (!number) {
            ++m_report.alreadyThere;
            return;
        }
        const auto preset = DevelopPreset::read(bytes, wanted);
        if (!preset) {
            complain(message(DevelopPreset::LoadError{preset.error().kind, std::string{fileName}}));
        } else {
            write(bytes, wanted, *number);
        }
    }

    /// The first number whose name is free; none where the same preset has one of the names before it.
    [[nodiscard]] std::optional<unsigned> firstFree(const FileURL& wanted, std::string_view bytes) const {
        for (unsigned number = 0;; ++number) {
            const auto candidate = wanted.parent().child(numbered(wanted, number));
            if (!m_files.status(candidate)) return number;
            const auto existing = m_files.readFile(candidate, DevelopPreset::maximumFileSize);
            if (existing && *existing == bytes) return std::nullopt;
        }
    }

    /// Writes a hidden file first, which takes the preset's name once it is whole.
    void write(std::string_view bytes, const FileURL& wanted, unsigned number) {
        const auto hidden = m_folder.child(fmt::format(".incoming-{:016x}", PresetRevision::make().high));
        auto done = m_files.createFolders(m_folder);
        if (done) done = m_files.writeFileAtomically(hidden, bytes);
        // No other preset would fare better.
        if (!done) return fail(message({m_folder, done.error().code}));

        done = m_files.createFolders(wanted.parent());
        for (; done; ++number) {
            const auto url = wanted.parent().child(numbered(wanted, number));
            done = m_files.moveFile(hidden, url);
            if (done) return m_report.imported.push_back(presetID(url, m_folder));
            if (done.error().code == std::errc::file_exists) done = {}; // taken in the meantime
        }
        (void)m_files.removeFile(hidden);
        complain(message({wanted, done.error().code}));
    }

    void fail(std::string failure) { m_report.failure = std::move(failure); }
    void complain(std::string problem) { m_report.problems.push_back(std::move(problem)); }

    FileSystem& m_files;
    const FileURL& m_folder;
    const std::stop_token& m_stop;
    PresetImportReport m_report;
    std::size_t m_fileCount = 0;
    std::size_t m_unpackedBytes = 0;
};

} // namespace

void PresetImportReport::add(PresetImportReport later) {
    imported.insert(imported.end(), later.imported.begin(), later.imported.end());
    alreadyThere += later.alreadyThere;
    problems.insert(problems.end(), later.problems.begin(), later.problems.end());
    if (!later.failure.empty()) failure = std::move(later.failure);
    wasCancelled |= later.wasCancelled;
}

PresetImportReport importPresets(FileSystem& files, const std::vector<FileURL>& sources,
                                 const FileURL& folder, const std::stop_token& stop) {
    Import import{files, folder, stop};
    for (const auto& source : sources) {
        if (!import.goesOn()) break;
        import.add(source);
    }
    return import.takeReport();
}

} // namespace kelvara
