#include "imaging/Bitmap.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <sys/mman.h>
#include <utility>

namespace kelvara {
namespace {

/// Where pixels lie. The kernel clears the pages of every fresh block, which for a full-size picture takes a
/// fifth of the time that decoding does; so the last large block given back waits for the next such picture.
class PixelBlocks {
public:
    /// Null when memory is short.
    void* take(std::size_t bytes) {
        if (bytes < smallestKept) return std::malloc(bytes);
        {
            const std::lock_guard lock{m_mutex};
            if (m_spare && m_spareBytes == rounded(bytes)) return std::exchange(m_spare, nullptr);
        }
        auto* block = std::aligned_alloc(largePage, rounded(bytes));
        if (block) ::madvise(block, rounded(bytes), MADV_HUGEPAGE); // a wish: fewer faults
        return block;
    }

    void giveBack(void* block, std::size_t bytes) {
        if (!block) return;
        if (bytes >= smallestKept && bytes <= largestKept) {
            // Its pages may be taken away when memory is short, but need not be cleared until then.
            ::madvise(block, rounded(bytes), MADV_FREE);
            const std::lock_guard lock{m_mutex};
            m_spareBytes = rounded(bytes);
            std::swap(m_spare, block);
        }
        std::free(block);
    }

    void dropSpare() {
        const std::lock_guard lock{m_mutex};
        std::free(std::exchange(m_spare, nullptr));
    }

private:
    static constexpr std::size_t largePage = std::size_t{2} << 20;
    static constexpr std::size_t smallestKept = 4 * largePage;
    static constexpr std::size_t largestKept = 64 * largePage;
    static std::size_t rounded(std::size_t bytes) { return (bytes + largePage - 1) / largePage * largePage; }

    std::mutex m_mutex;
    void* m_spare = nullptr;
    std::size_t m_spareBytes = 0;
};

PixelBlocks& pixelBlocks() {
    static auto& blocks = *new PixelBlocks; // bitmaps may outlive the program's other statics
    return blocks;
}

} // namespace

PixelSize PixelSize::fittedTo(int maximum) const {
    const int longest = longestSide();
    if (longest <= maximum) return *this;
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(static_cast<double>(side) * maximum / longest)));
    };
    return {scaled(width), scaled(height)};
}

Bitmap::Bitmap(PixelSize size, ColorProfilePtr profile, PixelFormat format)
    : m_size{size}, m_format{format},
      m_rowBytes{static_cast<std::size_t>(size.width) * bytesPerPixel(format)}, m_profile{
                                                                                    std::move(profile)} {}

Bitmap::~Bitmap() { pixelBlocks().giveBack(m_data, byteCount()); }

void Bitmap::dropSpareMemory() { pixelBlocks().dropSpare(); }

std::unique_ptr<Bitmap> Bitmap::create(PixelSize size, ColorProfilePtr profile, PixelFormat format) {
    if (size.isEmpty() || size.pixels() > maximumPixels) return nullptr;
    std::unique_ptr<Bitmap> bitmap{new Bitmap{size, std::move(profile), format}};
    bitmap->m_data = static_cast<std::uint8_t*>(pixelBlocks().take(bitmap->byteCount()));
    if (!bitmap->m_data) return nullptr;
    return bitmap;
}

BitmapPtr widened(BitmapPtr bitmap) {
    if (!bitmap || bitmap->format() == PixelFormat::bgrx16) return bitmap;
    auto result = Bitmap::create(bitmap->size(), bitmap->profile(), PixelFormat::bgrx16);
    if (!result) return nullptr;
    for (int y = 0; y < bitmap->height(); ++y) {
        // 257 takes 255 to 65535.
        std::ranges::transform(bitmap->row(y), result->row16(y).begin(),
                               [](unsigned value) { return static_cast<std::uint16_t>(value * 257); });
    }
    return result;
}

} // namespace kelvara
