#include "imaging/ColorTransform.h"

#include "imaging/Lcms.h"
#include "imaging/MatrixTransform.h"
#include "imaging/RowSlices.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <utility>

namespace kelvara {
namespace {

cmsUInt32Number format(ColorTransform::Input input) {
    switch (input) {
    case ColorTransform::Input::bgrx8:
        return TYPE_BGRA_8;
    case ColorTransform::Input::bgrx16:
        return TYPE_BGRA_16;
    case ColorTransform::Input::cmyk:
        return TYPE_CMYK_8;
    case ColorTransform::Input::invertedCmyk:
        return TYPE_CMYK_8_REV;
    }
    return 0;
}

ColorProfile::Model model(ColorTransform::Input input) {
    const bool isInk = input == ColorTransform::Input::cmyk || input == ColorTransform::Input::invertedCmyk;
    return isInk ? ColorProfile::Model::cmyk : ColorProfile::Model::rgb;
}

/// A folder's photos come from one or two cameras, so a handful of transforms serves them all.
struct Kept {
    ColorProfilePtr source;
    ColorTransform::Input input;
    ColorProfilePtr destination;
    PixelFormat output;
    std::shared_ptr<const ColorTransform> transform; // null when there can be none
};
constexpr std::size_t mostKept = 16;

/// The transform leaves them undefined.
void fillFourths(Bitmap& bitmap, int y) {
    if (bitmap.format() == PixelFormat::bgrx8) {
        const auto row = bitmap.row(y);
        for (std::size_t i = 3; i < row.size(); i += 4) row[i] = 0xFF;
    } else {
        const auto row = bitmap.row16(y);
        for (std::size_t i = 3; i < row.size(); i += 4) row[i] = 0xFFFF;
    }
}

} // namespace

std::shared_ptr<const ColorTransform> ColorTransform::between(const ColorProfilePtr& source, Input input,
                                                              const ColorProfilePtr& destination,
                                                              PixelFormat output) {
    static std::mutex mutex;
    static std::list<Kept> all; // most recently used first
    const std::lock_guard lock{mutex};
    const auto found = std::find_if(all.begin(), all.end(), [&](const Kept& kept) {
        return kept.input == input && kept.output == output && *kept.source == *source &&
               *kept.destination == *destination;
    });
    if (found != all.end()) {
        all.splice(all.begin(), all, found);
    } else {
        all.push_front({source, input, destination, output, make(*source, input, *destination, output)});
        if (all.size() > mostKept) all.pop_back();
    }
    return all.front().transform;
}

std::shared_ptr<const ColorTransform> ColorTransform::make(const ColorProfile& source, Input input,
                                                           const ColorProfile& destination,
                                                           PixelFormat output) {
    if (source.model() != model(input) || destination.model() != ColorProfile::Model::rgb) return nullptr;
    if (input == Input::bgrx16) {
        if (auto matrix = MatrixTransform::make(source, destination))
            return std::shared_ptr<const ColorTransform>{
                new ColorTransform{nullptr, std::move(matrix), output}};
    }
    const auto from = openProfile(source);
    const auto to = openProfile(destination);
    if (!from || !to) return nullptr;
    // Without the library's one-pixel memory the transform may be used by several threads. Its shortcuts are
    // exact enough for eight bits only.
    const cmsUInt32Number flags = cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE |
                                  (input == Input::bgrx16 ? cmsFLAGS_NOOPTIMIZE : 0U);
    const auto transform = cmsCreateTransform(from.get(), format(input), to.get(),
                                              output == PixelFormat::bgrx8 ? TYPE_BGRA_8 : TYPE_BGRA_16,
                                              INTENT_RELATIVE_COLORIMETRIC, flags);
    if (!transform) return nullptr;
    return std::shared_ptr<const ColorTransform>{new ColorTransform{transform, nullptr, output}};
}

ColorTransform::ColorTransform(void* transform, std::unique_ptr<const MatrixTransform> matrix,
                               PixelFormat output)
    : m_transform{transform}, m_matrix{std::move(matrix)}, m_output{output} {}

ColorTransform::~ColorTransform() {
    if (m_transform) cmsDeleteTransform(m_transform);
}

void ColorTransform::convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
    if (m_transform) {
        cmsDoTransform(m_transform, from, to, static_cast<cmsUInt32Number>(pixels));
        return;
    }
    const auto* numbers = reinterpret_cast<const std::uint16_t*>(from);
    if (m_output == PixelFormat::bgrx8)
        m_matrix->convert(numbers, to, pixels);
    else
        m_matrix->convert(numbers, reinterpret_cast<std::uint16_t*>(to), pixels);
}

BitmapPtr converted(BitmapPtr bitmap, const ColorProfilePtr& profile, PixelFormat format,
                    const std::stop_token& stop) {
    if (!bitmap || (bitmap->format() == format && *bitmap->profile() == *profile)) return bitmap;
    const auto input =
        bitmap->format() == PixelFormat::bgrx8 ? ColorTransform::Input::bgrx8 : ColorTransform::Input::bgrx16;
    const auto transform = ColorTransform::between(bitmap->profile(), input, profile, format);
    if (!transform) return bitmap->format() == format ? bitmap : nullptr;
    auto result = Bitmap::create(bitmap->size(), profile, format);
    if (!result) return nullptr;
    const auto pixels = static_cast<std::size_t>(bitmap->width());
    forRowSlices(bitmap->height(), bitmap->size().pixels(), [&](int begin, int end) {
        for (int y = begin; y < end && !stop.stop_requested(); ++y) {
            transform->convert(bitmap->row(y).data(), result->row(y).data(), pixels);
            fillFourths(*result, y);
        }
    });
    if (stop.stop_requested()) return nullptr;
    return result;
}

} // namespace kelvara
