#pragma once

/// How pictures of high dynamic range look on a screen that knows no brighter white than paper's: below about
/// half of diffuse white as they are, above it compressed more and more.
namespace kelvara::HighDynamicRange {

/// The light of a signal from 0 to 1, relative to the screen's white, by the transfer function of
/// SMPTE ST 2084 (ITU-R BT.2100, "PQ").
[[nodiscard]] double screenLightOfPQ(double signal);
/// The same by the hybrid log-gamma of ITU-R BT.2100, as a reference monitor of 1000 cd/m2 shows it.
[[nodiscard]] double screenLightOfHLG(double signal);

} // namespace kelvara::HighDynamicRange
