#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvara::xmp {

/// The sidecar with the property `name` of the XMP basic namespace set to `value`: where it stands, or else
/// as a new attribute of the first rdf:Description. Every other byte stays as it is, and the encoding too.
/// `value` is ASCII that needs no escapes. Empty where the bytes are no sidecar (see `SidecarScanner`) or
/// can't be edited safely.
[[nodiscard]] std::optional<std::string> settingProperty(std::string_view bytes, std::string_view name,
                                                         std::string_view value);

} // namespace kelvara::xmp
