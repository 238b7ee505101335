#pragma once

#include <cstdint>

/// Tags of TIFF 6.0, TIFF/EP, EXIF 2.3 and DNG that the decoders read.
namespace kelvara::TiffTag {

inline constexpr std::uint16_t interoperabilityIndex = 0x0001;
inline constexpr std::uint16_t panasonicPreview = 0x002E;
inline constexpr std::uint16_t imageWidth = 0x0100;
inline constexpr std::uint16_t imageLength = 0x0101;
inline constexpr std::uint16_t compression = 0x0103;
inline constexpr std::uint16_t photometricInterpretation = 0x0106;
inline constexpr std::uint16_t stripOffsets = 0x0111;
inline constexpr std::uint16_t orientation = 0x0112;
inline constexpr std::uint16_t stripByteCounts = 0x0117;
inline constexpr std::uint16_t tileOffsets = 0x0144;
inline constexpr std::uint16_t tileByteCounts = 0x0145;
inline constexpr std::uint16_t subDirectories = 0x014A;
inline constexpr std::uint16_t jpegOffset = 0x0201;
inline constexpr std::uint16_t jpegLength = 0x0202;
inline constexpr std::uint16_t exifDirectory = 0x8769;
inline constexpr std::uint16_t colorSpace = 0xA001;
inline constexpr std::uint16_t pixelWidth = 0xA002;
inline constexpr std::uint16_t pixelHeight = 0xA003;
inline constexpr std::uint16_t interoperabilityDirectory = 0xA005;
inline constexpr std::uint16_t multiPictureEntries = 0xB002; // of CIPA DC-007
inline constexpr std::uint16_t cr2Slices = 0xC640;           // stands with the sensor data of CR2 files
inline constexpr std::uint16_t previewColorSpace = 0xC71A;

} // namespace kelvara::TiffTag
