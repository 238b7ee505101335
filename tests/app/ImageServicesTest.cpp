#include "app/ImageServices.h"

#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(ImageServicesTest, mayGoWhilePicturesAreReadAndWaitedFor) {
    const TemporaryFolder folder;
    std::vector<FileURL> photos;
    for (int i = 0; i < 40; ++i)
        photos.push_back(folder.write(std::to_string(i) + ".jpg", std::string(20'000, 'x')));
    LightAdjustments edits;
    edits.set(LightAdjustments::Slider::exposure, 1);
    const auto look = *DevelopPreset::combining(std::nullopt, edits);
    const BitmapPtr thumbnail = Bitmap::create({256, 171}, ColorProfile::sRGB());
    ManualExecutor main;
    for (int round = 0; round < 50; ++round) {
        ImageServices services{main};
        std::vector<ImageRequest> requests;
        for (const auto& photo : photos)
            requests.push_back(services.thumbnails().thumbnail(photo, 256, [](const BitmapPtr&) {}));
        for (const auto& photo : photos)
            requests.push_back(
                services.thumbnailRenderer().render(look, photo, thumbnail, [](const BitmapPtr&) {}));
        requests.push_back(services.previews().fullResolution(photos[0], [](const BitmapPtr&) {}));
        services.thumbnails().prefetch(photos, 512);
        services.previews().prefetch(photos[1]);
        requests.clear();
    }
    main.runAll();
}

} // namespace
} // namespace kelvara
