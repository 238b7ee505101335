#pragma once

#include "model/Result.h"
#include "samplecard/CardFile.h"

#include <filesystem>
#include <string>

namespace kelvara::samplecard {

struct CardOptions {
    double scale = 1;     ///< of the photos' sides; tests take a small one
    unsigned threads = 0; ///< 0: one a core
};

/// Fast to make and all alike but for the EXIF dates: for measuring.
struct BenchmarkOptions {
    enum class Kind { jpeg, dng, heic };

    int photos = 100;
    double megapixels = 24;
    Kind kind = Kind::jpeg;
    unsigned threads = 0;
};

struct CardError {
    std::string message; ///< a sentence for the terminal
};

enum class FolderState {
    free,     ///< missing or empty
    complete, ///< holds what was asked for already
    own,      ///< holds another or an unfinished sample card
    foreign,  ///< holds something else
};

/// `description` is that of the card wanted, see `describe`.
FolderState stateOf(const std::filesystem::path& folder, const std::string& description);

/// What a marker file in the card's root says once the card is complete.
std::string describe(const CardOptions& options);
std::string describe(const BenchmarkOptions& options);

/// Writes into the folder, over files of the same names; nothing else in it is touched. Same options, same
/// card.
Result<CardSummary, CardError> writeCard(const std::filesystem::path& folder, const CardOptions& options,
                                         const CardProgress& progress = {});
Result<CardSummary, CardError> writeBenchmarkCard(const std::filesystem::path& folder,
                                                  const BenchmarkOptions& options,
                                                  const CardProgress& progress = {});

} // namespace kelvara::samplecard
