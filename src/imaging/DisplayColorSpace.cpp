#include "imaging/DisplayColorSpace.h"

#include <mutex>
#include <utility>

namespace kelvara::DisplayColorSpace {
namespace {

struct Shared {
    std::mutex mutex;
    ColorProfilePtr profile = ColorProfile::sRGB();
};

Shared& shared() {
    static Shared value;
    return value;
}

} // namespace

ColorProfilePtr current() {
    auto& value = shared();
    const std::lock_guard lock{value.mutex};
    return value.profile;
}

bool update(ColorProfilePtr profile) {
    if (!profile || profile->model() != ColorProfile::Model::rgb) return false;
    auto& value = shared();
    const std::lock_guard lock{value.mutex};
    if (*value.profile == *profile) return false;
    value.profile = std::move(profile);
    return true;
}

} // namespace kelvara::DisplayColorSpace
