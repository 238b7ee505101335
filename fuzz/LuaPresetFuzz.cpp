// Any bytes as a Lua preset, whole or as the inside of its settings.

#include "fuzz/LoadPreset.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kelvara::fuzz::loadPreset("/a.lrtemplate", data, size);
    const std::string inside{reinterpret_cast<const char*>(data), size};
    const auto whole = "s={value={settings={" + inside + "}}}";
    kelvara::fuzz::loadPreset("/a.lrtemplate", reinterpret_cast<const std::uint8_t*>(whole.data()),
                              whole.size());
    return 0;
}
