#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kelvara {

/// A sentence of the core in the user's words. `source` is the text as designed; the installed catalogue
/// may know another for this language or desktop. Any thread.
[[nodiscard]] std::string localized(std::string_view source);

/// Installs the catalogue: gives the text for a source text, or the source text itself. Once, at start,
/// before other threads begin.
void installCatalogue(std::function<std::string(std::string_view)> catalogue);

} // namespace kelvara
