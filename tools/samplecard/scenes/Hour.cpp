#include "samplecard/scenes/Hour.h"

namespace kelvara::samplecard {

Hour hourOf(Random& random) {
    Hour hour;
    const float side = random.chance(0.5F) ? 1.0F : -1.0F;
    switch (random.integer(0, 6)) {
    case 0: // low warm sun from the side
        hour.sky.sun = {side * 0.85F, random.uniform(0.22F, 0.34F), random.uniform(-0.1F, 0.35F)};
        hour.sky.zenith = {0.10F, 0.19F, 0.42F};
        hour.sky.horizon = {0.86F, 0.66F, 0.50F};
        hour.sky.glow = {0.8F, 0.42F, 0.16F};
        hour.sky.sunlight = {2.2F, 1.45F, 0.95F};
        hour.sky.cloudShade = {0.38F, 0.33F, 0.38F};
        hour.sunlight = {3.6F, 2.3F, 1.35F};
        hour.skylight = {0.26F, 0.33F, 0.50F};
        hour.haze = random.uniform(0.028F, 0.05F);
        break;
    case 1: // against the light, misty
        hour.sky.sun = {side * 0.35F, random.uniform(0.20F, 0.3F), 0.9F};
        hour.sky.zenith = {0.22F, 0.32F, 0.50F};
        hour.sky.horizon = {0.95F, 0.83F, 0.70F};
        hour.sky.glow = {1.3F, 0.85F, 0.45F};
        hour.sky.glowWidth = 0.5F;
        hour.sky.sunlight = {2.2F, 1.8F, 1.35F};
        hour.sunlight = {3.4F, 2.5F, 1.7F};
        hour.skylight = {0.34F, 0.39F, 0.50F};
        hour.haze = random.uniform(0.018F, 0.032F);
        break;
    case 2: // pink dusk
        hour.sky.sun = {side * 0.7F, 0.26F, -0.5F};
        hour.sky.zenith = {0.16F, 0.20F, 0.40F};
        hour.sky.horizon = {0.72F, 0.52F, 0.58F};
        hour.sky.glow = {0.3F, 0.15F, 0.2F};
        hour.sky.sunlight = {1.7F, 1.15F, 1.05F};
        hour.sky.cloudShade = {0.36F, 0.30F, 0.40F};
        hour.sunlight = {2.9F, 1.65F, 1.25F};
        hour.skylight = {0.30F, 0.33F, 0.50F};
        hour.haze = random.uniform(0.03F, 0.05F);
        break;
    default: // clear day
        hour.sky.sun = {side * random.uniform(0.5F, 0.8F), random.uniform(0.45F, 0.75F),
                        random.uniform(-0.5F, 0.3F)};
        hour.sky.zenith = {0.085F, 0.20F, 0.50F};
        hour.sky.horizon = {0.56F, 0.70F, 0.86F};
        hour.sky.glow = {0.25F, 0.22F, 0.18F};
        hour.sky.sunlight = {1.75F, 1.68F, 1.58F};
        hour.sunlight = {2.7F, 2.5F, 2.2F};
        hour.skylight = {0.28F, 0.37F, 0.54F};
        hour.haze = random.uniform(0.014F, 0.03F);
        break;
    }
    hour.sky.cover = random.uniform(0.15F, 0.75F);
    hour.sky.cloudSize = random.uniform(0.7F, 1.5F);
    hour.sky.streaks = random.chance(0.3F) ? 2.2F : 1.2F;
    return hour;
}

} // namespace kelvara::samplecard
