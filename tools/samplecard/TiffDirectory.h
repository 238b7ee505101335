#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kelvara::samplecard {

/// A directory of a TIFF file under construction: tags with their values, sub-directories and image data.
/// EXIF blocks and DNG files are made of it.
class TiffDirectory {
public:
    using Rational = std::pair<std::int64_t, std::int64_t>;

    void bytes(int tag, const std::vector<int>& values);
    void shorts(int tag, const std::vector<int>& values);
    void longs(int tag, const std::vector<std::uint32_t>& values);
    void text(int tag, const std::string& value);
    void undefined(int tag, std::string value);
    void rationals(int tag, const std::vector<Rational>& values);
    void signedRationals(int tag, const std::vector<Rational>& values);
    /// A tag whose value is the offsets of other directories.
    void directories(int tag, std::vector<TiffDirectory> children);
    /// Two tags for one block of data: where it lies and how long it is.
    void data(int offsetTag, int lengthTag, std::string bytes);

    /// A whole little-endian TIFF. The directories come first and the data after them in the order of the
    /// tree, so that a reader finds everything small at the front. `next` is what follows the first
    /// directory.
    static std::string file(const TiffDirectory& first, const TiffDirectory* next = nullptr);

private:
    struct Entry {
        int tag = 0;
        int type = 0;
        std::uint32_t count = 0;
        std::string value;                   // little-endian
        std::vector<TiffDirectory> children; // with a value of as many offsets
        std::string data;                    // with a value of one offset
    };
    class Writer;

    Entry& add(int tag, int type, std::uint32_t count, std::string value);

    std::vector<Entry> m_entries;
};

} // namespace kelvara::samplecard
