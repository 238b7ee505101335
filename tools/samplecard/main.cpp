#include "samplecard/Card.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <unistd.h>

namespace {

using namespace kelvara;
using namespace kelvara::samplecard;

int failed(const std::string& message) {
    fmt::print(stderr, "kelvara-samplecard: {}\n", message);
    return 1;
}

void showProgress(std::size_t done, std::size_t all) {
    if (::isatty(STDOUT_FILENO) == 0) return;
    fmt::print("\r{} of {}", done, all);
    if (done == all) fmt::print("\n");
    std::fflush(stdout);
}

template <typename Write>
int make(const std::string& folder, const std::string& description, bool force, Write write) {
    switch (stateOf(folder, description)) {
    case FolderState::complete:
        fmt::print("{} is complete already.\n", folder);
        return 0;
    case FolderState::foreign:
        if (!force)
            return failed(fmt::format(
                "{} is not empty and no sample card; --force writes into it all the same.", folder));
        break;
    case FolderState::free:
    case FolderState::own:
        break;
    }
    fmt::print("Writing {} ...\n", folder);
    std::fflush(stdout);
    const Result<CardSummary, CardError> result = write();
    if (!result) return failed(result.error().message);
    fmt::print("Wrote {} files, {:.1f} MB.\n", result->files, static_cast<double>(result->bytes) / 1e6);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Writes a folder that looks like a photographer's memory card."};
    std::string folder;
    bool force = false;
    CardOptions card;
    BenchmarkOptions benchmark;
    app.add_option("folder", folder, "Where to write")->required();
    app.add_flag("--force", force, "Write even if the folder holds something else");
    app.add_option("--scale", card.scale, "Shrink the photos' sides by this factor")
        ->check(CLI::Range(0.02, 1.0));
    auto* photos =
        app.add_option("--photos", benchmark.photos, "Instead write this many photos for benchmarks")
            ->check(CLI::Range(1, 100000));
    app.add_option("--megapixels", benchmark.megapixels, "Their size")
        ->check(CLI::Range(0.01, 200.0))
        ->needs(photos);
    const std::map<std::string, BenchmarkOptions::Kind> kinds{{"jpeg", BenchmarkOptions::Kind::jpeg},
                                                              {"dng", BenchmarkOptions::Kind::dng},
                                                              {"heic", BenchmarkOptions::Kind::heic}};
    app.add_option("--kind", benchmark.kind, "jpeg, dng or heic")
        ->transform(CLI::CheckedTransformer(kinds))
        ->needs(photos);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 1;
    }
    if (photos->count() > 0)
        return make(folder, describe(benchmark), force,
                    [&] { return writeBenchmarkCard(folder, benchmark, showProgress); });
    return make(folder, describe(card), force, [&] { return writeCard(folder, card, showProgress); });
}
