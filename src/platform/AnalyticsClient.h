#pragma once

#include <cstdint>
#include <variant>

namespace kelvara {

/// What is counted, and all that is told of it beside the versions of application and system: no field of
/// these can hold a name.
struct AppStarted {
    friend bool operator==(const AppStarted&, const AppStarted&) = default;
};
struct PhotosCopied {
    std::int64_t count = 0;
    bool withPreset = false; ///< They were exported as pictures rather than copied.
    friend bool operator==(const PhotosCopied&, const PhotosCopied&) = default;
};
struct PhotosShared {
    std::int64_t count = 0;
    bool byAirDrop = false;
    bool withPreset = false;
    bool withEdits = false;
    friend bool operator==(const PhotosShared&, const PhotosShared&) = default;
};
using UsageEvent = std::variant<AppStarted, PhotosCopied, PhotosShared>;

/// Takes usage events to whoever counts them. Main thread; never waits, never fails loudly.
class AnalyticsClient {
public:
    virtual ~AnalyticsClient() = default;

    virtual void record(const UsageEvent& event) = 0;
    /// Drops what was recorded and has not been sent.
    virtual void forget() = 0;
};

} // namespace kelvara
