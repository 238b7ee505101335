#pragma once

#include <string>

namespace kelvara::samplecard {

/// A rating as an attribute, as small as a sidecar gets.
std::string sidecarWithAttribute(int stars);

/// A rating as an element amid the develop settings, keywords, comments and odd white space of another
/// program. `rating` stands there as it is given, so it may be "-1" (rejected) or no number at all.
std::string sidecarWithElement(const std::string& rating);

/// Develop settings and no rating.
std::string sidecarWithoutRating();

} // namespace kelvara::samplecard
