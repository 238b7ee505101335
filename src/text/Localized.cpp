#include "text/Localized.h"

#include <utility>

namespace kelvara {

namespace {
std::function<std::string(std::string_view)>& installed() {
    static std::function<std::string(std::string_view)> catalogue;
    return catalogue;
}
} // namespace

std::string localized(std::string_view source) {
    const auto& catalogue = installed();
    return catalogue ? catalogue(source) : std::string{source};
}

void installCatalogue(std::function<std::string(std::string_view)> catalogue) {
    installed() = std::move(catalogue);
}

} // namespace kelvara
