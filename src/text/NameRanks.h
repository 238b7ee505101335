#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// Where each of `count` names stands among all of them by `NameOrder`: a smaller rank comes first, and names
/// that compare equal have equal ranks. Comparing names again and again then costs no more than integers.
[[nodiscard]] std::vector<std::uint32_t> nameRanks(std::size_t count,
                                                   const std::function<std::string_view(std::size_t)>& name,
                                                   const std::string& locale);

} // namespace kelvara
