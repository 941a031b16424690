#pragma once

#include "MaterialData.h"

#include <cstdint>
#include <vector>

// Small images embedded in the libraries: swatch thumbnails and the procedural textures of the
// authored textured presets. Compressed and checksummed by zlib; the bytes depend on nothing but
// the pixels (and the distribution's zlib).
namespace Kx::Content {

struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb; // 8-bit sRGB, row by row

    void set(int x, int y, const Rgb& linear);
};

[[nodiscard]] std::vector<std::uint8_t> encodePng(const Image& image);

// A flat swatch of a linear colour (clamped to [0, 1]).
[[nodiscard]] Image swatch(const Rgb& linear, int size = 16);
// Running-bond brickwork: bricks varying around `brick`, mortar joints of `mortar`.
[[nodiscard]] Image brickTexture(const Rgb& brick, const Rgb& mortar);
// Square tiles of `tile` with grout lines of `grout`.
[[nodiscard]] Image tileTexture(const Rgb& tile, const Rgb& grout);
// Value noise around `base`, the look of a cast surface.
[[nodiscard]] Image noiseTexture(const Rgb& base);

} // namespace Kx::Content
