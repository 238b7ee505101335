// Exporting camera JPEGs against the programs that photographers script, everything on one core: smaller
// JPEGs with a look against ffmpeg's "scale" and "lut3d" and against vipsthumbnail without any, full-size
// ones against djpeg and cjpeg. Then the memory that one export takes.

#include "bench/Compare.h"
#include "bench/Photos.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/PhotoExport.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kelvara;

namespace {

constexpr int longEdge = 2048;
constexpr double decodedMegabytes = 6000 * 4000 * 4 / 1e6;

DevelopPreset look() {
    auto preset = DevelopPreset::read("s = { value = { settings = { Exposure2012 = 0.35, Contrast2012 = 12,"
                                      " Saturation = 15, Shadows2012 = 20 } }, type = \"Develop\" }",
                                      FileURL{"/look.lrtemplate"});
    if (!preset) std::abort();
    return *preset;
}

class Exports {
public:
    explicit Exports(std::filesystem::path folder) : m_folder{std::move(folder)} {
        std::filesystem::create_directories(m_folder);
    }
    ~Exports() { std::filesystem::remove_all(m_folder); }
    Exports(const Exports&) = delete;
    Exports& operator=(const Exports&) = delete;

    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / name).string(); }
    void run(const FileURL& photo, const ExportSettings& settings) {
        PhotoExport job{photo, FileURL{path(fmt::format("{}.jpg", m_count++))}, m_look, settings};
        const auto written = job.run(m_files, {});
        if (!written) std::printf("%s\n", message(written.error()).c_str());
        std::filesystem::remove(job.destination.path());
    }
    /// A table of colours as ffmpeg reads it; what is in it costs the same.
    [[nodiscard]] std::string cube() const {
        constexpr int steps = 33;
        std::ofstream file{path("look.cube")};
        file << "LUT_3D_SIZE " << steps << '\n';
        for (int i = 0; i < steps * steps * steps; ++i) {
            const auto part = [](int step) { return static_cast<double>(step) / (steps - 1); };
            const double red = part(i % steps), green = part(i / steps % steps),
                         blue = part(i / steps / steps);
            file << red * red << ' ' << green << ' ' << blue * (2 - blue) << '\n';
        }
        return path("look.cube");
    }

private:
    std::filesystem::path m_folder;
    LinuxFileSystem m_files;
    DevelopPreset m_look = look();
    int m_count = 0;
};

void shell(const std::string& command) {
    if (std::system(command.c_str()) != 0) std::printf("failed: %s\n", command.c_str());
}

void compareWith(const std::string& title, const std::vector<FileURL>& photos, Exports& exports,
                 const ExportSettings& settings, const std::string& peer, double leastSpeed,
                 const std::string& command) {
    bench::compare(
        title, 3, static_cast<double>(photos.size()), "images",
        [&] {
            for (const auto& photo : photos) exports.run(photo, settings);
        },
        peer,
        [&] {
            for (const auto& photo : photos)
                shell(fmt::format(fmt::runtime(command), fmt::arg("photo", photo.path()),
                                  fmt::arg("out", exports.path("peer.jpg")), fmt::arg("edge", longEdge),
                                  fmt::arg("cube", exports.cube())));
        },
        {bench::Clock::processor, leastSpeed});
}

/// Each in a process of its own, which tells the most that it ever had.
void measureMemory(const FileURL& photo, Exports& exports, const std::string& title,
                   const ExportSettings& settings) {
    const auto child = ::fork();
    if (child == 0) {
        exports.run(photo, settings);
        ::_exit(0);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    const double megabytes = static_cast<double>(usage.ru_maxrss) / 1e3;
    std::printf("%-44s %9.0f MB   decoded %.0f MB   ratio %.2f, wanted 6 at most\n", title.c_str(), megabytes,
                decodedMegabytes, megabytes / decodedMegabytes);
    std::fflush(stdout);
}

} // namespace

int main() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(0, &one);
    ::sched_setaffinity(0, sizeof one, &one); // what is started inherits it
    const auto photos = bench::photos(bench::PhotoKind::jpeg, 6);
    Exports exports{std::filesystem::temp_directory_path() / fmt::format("kelvara-exports-{}", ::getpid())};
    ExportSettings small, full;
    small.longEdge = longEdge;
    for (const auto format : ExportSettings::formats) {
        for (const bool isDeep : {false, true}) {
            ExportSettings settings;
            settings.format = format;
            settings.uses16Bit = isDeep;
            measureMemory(
                photos.front(), exports,
                fmt::format("memory: {}, {} bits", ExportSettings::displayName(format), isDeep ? 16 : 8),
                settings);
        }
    }
    compareWith("JPEG of 2048 pixels with a look", photos, exports, small, "ffmpeg", 3,
                "ffmpeg -v error -y -threads 1 -filter_threads 1 -i '{photo}' -vf "
                "'scale={edge}:-1,lut3d={cube}' -pix_fmt yuvj444p -q:v 2 '{out}'");
    compareWith("JPEG of 2048 pixels with a look", photos, exports, small, "vipsthumbnail, no look", 1.8,
                "VIPS_CONCURRENCY=1 vipsthumbnail --size {edge} -o '{out}[Q=92]' '{photo}'");
    compareWith("full-size JPEG with a look", photos, exports, full, "djpeg | cjpeg, no look", 1 / 1.3,
                "djpeg '{photo}' | cjpeg -quality 92 -sample 1x1 -outfile '{out}'");
}
