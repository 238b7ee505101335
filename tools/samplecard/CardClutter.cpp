#include "samplecard/CardClutter.h"

#include "samplecard/CardPhotos.h"
#include "samplecard/JPEG.h"
#include "samplecard/Noise.h"
#include "samplecard/Sidecar.h"

#include <algorithm>
#include <fmt/format.h>

namespace kelvara::samplecard {
namespace {

constexpr std::int64_t cardTime = 1715443200; // 2024-05-11 16:00:00 UTC

CardFile text(std::string path, std::string content) {
    return {std::move(path), std::move(content), cardTime, false};
}

std::string randomBytes(std::size_t count) {
    Random random{99};
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random.next() & 0xFF); });
    return bytes;
}

std::string smallJPEG(Scene scene, std::uint32_t seed, double scale) {
    const auto side = [&](int pixels) { return std::max(48, static_cast<int>(pixels * scale)); };
    return photoJPEG(paint(scene, side(900), side(600), seed), plausibleShot(scene, seed, cardTime), {});
}

std::vector<CardFile> sidecars() {
    return {
        text("DCIM/100KELVA/KEL_0412.xmp", sidecarWithAttribute(4)),
        text("DCIM/100KELVA/KEL_0414.xmp", sidecarWithElement("3")),
        text("DCIM/100KELVA/KEL_0419.xmp", sidecarWithElement("-1")),
        text("DCIM/100KELVA/KEL_0428.xmp", sidecarWithoutRating()),
        text("DCIM/100KELVA/KEL_0430.xmp", sidecarWithAttribute(5)),
    };
}

std::vector<CardFile> brokenFiles(double scale) {
    const std::string whole = smallJPEG(Scene::hills, 51, scale);
    return {
        text("DCIM/101KELVA/truncated.JPG", whole.substr(0, whole.size() * 2 / 5)),
        text("DCIM/101KELVA/empty.NEF", {}),
        text("DCIM/101KELVA/noise.CR3", randomBytes(40000)),
        text("DCIM/101KELVA/text.ARW", "This is no photograph.\n"),
    };
}

std::vector<CardFile> recordsOfTheCamera() {
    return {
        text("DCIM/100KELVA/KEL_0420.THM", randomBytes(2000)),
        text("DCIM/100KELVA/notes.txt", "Battery 2 is weak.\n"),
        text("MISC/100KELVA.CTG", randomBytes(4000)),
        text("MISC/AUTPRINT.MRK", "[HDR]\nGEN REV = 01.10\n"),
        text("KELVA.DAT", randomBytes(512)),
        text("PRIVATE/M4ROOT/MEDIAPRO.XML",
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<MediaProfile version=\"2.2\"/>\n"),
        text("PRIVATE/M4ROOT/CLIP/C0001M01.XML",
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NonRealTimeMeta/>\n"),
    };
}

std::vector<CardFile> hiddenAndBundled(double scale) {
    const std::string photo = smallJPEG(Scene::lake, 52, scale);
    return {
        text(".Trashes/501/KEL_0399.JPG", photo),
        text(".fseventsd/0000000000a1b2c3", randomBytes(300)),
        text("DCIM/100KELVA/._KEL_0412.JPG", randomBytes(4096)),
        text("DCIM/._101KELVA", randomBytes(4096)),
        text("Old Library.photoslibrary/originals/0/01.jpg", photo),
        text("Old Library.photoslibrary/database/Photos.sqlite", randomBytes(2048)),
    };
}

} // namespace

std::vector<CardJob> clutterJobs(double scale) {
    return {sidecars, [scale] { return brokenFiles(scale); }, recordsOfTheCamera,
            [scale] { return hiddenAndBundled(scale); }};
}

} // namespace kelvara::samplecard
