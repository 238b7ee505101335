#pragma once

#include "imaging/codecs/ImageSource.h"
#include "model/FileURL.h"

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace kelvara::fuzz {

/// Bytes as a file that has no name on any disk.
class MemoryFile {
public:
    explicit MemoryFile(std::span<const std::uint8_t> bytes)
        : m_descriptor{::memfd_create("fuzz", MFD_CLOEXEC)} {
        const auto written = ::write(m_descriptor, bytes.data(), bytes.size());
        if (written != static_cast<ssize_t>(bytes.size())) std::abort();
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(m_descriptor); }

    [[nodiscard]] FileURL url() const { return FileURL{"/proc/self/fd/" + std::to_string(m_descriptor)}; }

private:
    int m_descriptor;
};

/// A bitmap is what was asked for, or none.
inline void check(const BitmapPtr& bitmap, int maximum) {
    if (!bitmap) return;
    const bool isSound = !bitmap->size().isEmpty() && bitmap->size().longestSide() <= maximum &&
                         bitmap->profile() && bitmap->profile()->model() == ColorProfile::Model::rgb;
    if (!isSound) std::abort();
    // Its memory is all there.
    unsigned sum = 0;
    for (int y = 0; y < bitmap->height(); ++y) sum += bitmap->row(y).front() + bitmap->row(y).back();
    volatile unsigned result = sum;
    static_cast<void>(result);
}

/// All that is ever asked of an opened file.
inline void decode(ImageSource* source) {
    if (!source) return;
    constexpr int thumbnail = 256, any = 1 << 20;
    static_cast<void>(source->pixelSize());
    static_cast<void>(source->orientation());
    check(source->storedPreview(thumbnail, {}), thumbnail);
    check(source->image(thumbnail, {}), thumbnail);
    check(source->storedPreview({}, {}), any);
    check(source->image({}, {}), any);
    check(source->deepImage(thumbnail, {}), thumbnail);
}

} // namespace kelvara::fuzz
