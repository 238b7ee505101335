#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <xxhash.h>

namespace kelvara {

/// 128 bits that tell apart files which are not forged to look alike.
struct ContentHash {
    XXH64_hash_t low = 0;
    XXH64_hash_t high = 0;
    friend bool operator==(const ContentHash&, const ContentHash&) = default;
};

/// Hashes bytes as they come.
class ContentHasher {
public:
    ContentHasher() { XXH3_128bits_reset(m_state.get()); }

    void add(std::string_view bytes) { XXH3_128bits_update(m_state.get(), bytes.data(), bytes.size()); }
    [[nodiscard]] ContentHash hash() const {
        const auto digest = XXH3_128bits_digest(m_state.get());
        return {digest.low64, digest.high64};
    }

private:
    struct Deleter {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Deleter> m_state{XXH3_createState()};
};

} // namespace kelvara
