#pragma once

#include <string>
#include <string_view>

namespace kelvara {

/// The sentence for people when ejecting fails on `volumeName` with the D-Bus error `error`, of which
/// UDisks says `message` ("Error unmounting /dev/sdb1: target is busy").
[[nodiscard]] std::string ejectProblem(std::string_view error, std::string_view message,
                                       std::string_view volumeName);

/// Why nothing can be ejected where UDisks does not run.
[[nodiscard]] std::string diskServiceIsMissing();

} // namespace kelvara
