// Writes a small PNG of every kind into a folder, for PngFuzz to begin with.

#include "imaging/PngMaker.h"

#include <fstream>

using namespace kelvara;

int main(int argumentCount, char** argumentValues) {
    if (argumentCount < 2) return 1;
    struct Kind {
        int colorType, depth;
    };
    for (const auto& [colorType, depth] :
         {Kind{PNG_COLOR_TYPE_GRAY, 1}, Kind{PNG_COLOR_TYPE_GRAY, 8}, Kind{PNG_COLOR_TYPE_GRAY, 16},
          Kind{PNG_COLOR_TYPE_GRAY_ALPHA, 8}, Kind{PNG_COLOR_TYPE_PALETTE, 4}, Kind{PNG_COLOR_TYPE_RGB, 8},
          Kind{PNG_COLOR_TYPE_RGB, 16}, Kind{PNG_COLOR_TYPE_RGB_ALPHA, 16}}) {
        for (const bool isInterlaced : {false, true}) {
            PngRecipe recipe{
                .size = {13, 9}, .colorType = colorType, .depth = depth, .isInterlaced = isInterlaced};
            recipe.paint = [](int x, int y) {
                const auto level = [](int value) { return static_cast<std::uint16_t>(value); };
                return PngRecipe::Pixel{level(x * 5000), level(y * 7000), level(x * y * 500),
                                        level(65535 - x * 900)};
            };
            recipe.describe = [&](png_structp png, png_infop info) {
                const png_color colors[4]{{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {9, 9, 9}};
                if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, colors, 4);
                png_set_gAMA(png, info, 0.45455);
            };
            const auto bytes = makePng(recipe);
            const auto name =
                std::to_string(colorType) + '-' + std::to_string(depth) + (isInterlaced ? "i" : "");
            std::ofstream{argumentValues[1] + ('/' + name) + ".png", std::ios::binary}.write(
                reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
    }
}
