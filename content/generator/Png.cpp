#include "Png.h"

#include "Srgb.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include <zlib.h>

namespace Kx::Content {

namespace {

constexpr int s_textureSize = 64;

void appendBigEndian(std::vector<std::uint8_t>& bytes, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

void appendChunk(std::vector<std::uint8_t>& png, std::string_view type, const std::vector<std::uint8_t>& data)
{
    appendBigEndian(png, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = png.size();
    png.insert(png.end(), type.begin(), type.end());
    png.insert(png.end(), data.begin(), data.end());
    const uLong crc = crc32(crc32(0L, Z_NULL, 0), png.data() + start, static_cast<uInt>(png.size() - start));
    appendBigEndian(png, static_cast<std::uint32_t>(crc));
}

// The image data as one zlib stream at the strongest level. zlib's output depends only on its input,
// level and version, and the build uses the one zlib of the distribution, so the bytes are stable.
std::vector<std::uint8_t> deflated(const std::vector<std::uint8_t>& raw)
{
    uLongf size = compressBound(static_cast<uLong>(raw.size()));
    std::vector<std::uint8_t> out(size);
    if (compress2(out.data(), &size, raw.data(), static_cast<uLong>(raw.size()), Z_BEST_COMPRESSION) != Z_OK) {
        throw std::runtime_error("zlib could not compress a texture");
    }
    out.resize(size);
    return out;
}

// A repeatable pseudo-random number in [0, 1) for integer coordinates.
double hash01(int x, int y, int seed)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 374761393U + static_cast<std::uint32_t>(y) * 668265263U +
                      static_cast<std::uint32_t>(seed) * 2246822519U;
    h = (h ^ (h >> 13)) * 1274126177U;
    h ^= h >> 16;
    return (h & 0xFFFFFFU) / static_cast<double>(0x1000000);
}

Rgb scaled(const Rgb& colour, double factor)
{
    return {colour.r * factor, colour.g * factor, colour.b * factor};
}

} // namespace

void Image::set(int x, int y, const Rgb& linear)
{
    const std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 3;
    rgb[at] = srgbByte(linear.r);
    rgb[at + 1] = srgbByte(linear.g);
    rgb[at + 2] = srgbByte(linear.b);
}

std::vector<std::uint8_t> encodePng(const Image& image)
{
    std::vector<std::uint8_t> png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<std::uint8_t> header;
    appendBigEndian(header, static_cast<std::uint32_t>(image.width));
    appendBigEndian(header, static_cast<std::uint32_t>(image.height));
    header.insert(header.end(), {8, 2, 0, 0, 0}); // 8 bits, RGB, deflate, no filter, no interlace
    appendChunk(png, "IHDR", header);
    appendChunk(png, "sRGB", {0}); // perceptual rendering intent
    std::vector<std::uint8_t> raw;
    const std::size_t rowBytes = static_cast<std::size_t>(image.width) * 3;
    for (int y = 0; y < image.height; ++y) {
        raw.push_back(0); // filter: none
        const auto row = image.rgb.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * rowBytes);
        raw.insert(raw.end(), row, row + static_cast<std::ptrdiff_t>(rowBytes));
    }
    appendChunk(png, "IDAT", deflated(raw));
    appendChunk(png, "IEND", {});
    return png;
}

namespace {

Image blank(int size)
{
    Image image;
    image.width = size;
    image.height = size;
    image.rgb.assign(static_cast<std::size_t>(size * size * 3), 0);
    return image;
}

} // namespace

Image swatch(const Rgb& linear, int size)
{
    Image image = blank(size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            image.set(x, y, linear);
        }
    }
    return image;
}

Image brickTexture(const Rgb& brick, const Rgb& mortar)
{
    // Four courses of two bricks, every other course shifted by half a brick.
    constexpr int s_courseHeight = s_textureSize / 4;
    constexpr int s_brickLength = s_textureSize / 2;
    Image image = blank(s_textureSize);
    for (int y = 0; y < s_textureSize; ++y) {
        const int course = y / s_courseHeight;
        for (int x = 0; x < s_textureSize; ++x) {
            const int shifted = x + (course % 2) * (s_brickLength / 2);
            const int brickIndex = (shifted / s_brickLength) % 2;
            const bool joint = y % s_courseHeight < 2 || shifted % s_brickLength < 2;
            const double variation = 0.85 + 0.3 * hash01(brickIndex, course, 1) + 0.06 * (hash01(x, y, 2) - 0.5);
            image.set(x, y, joint ? mortar : scaled(brick, variation));
        }
    }
    return image;
}

Image tileTexture(const Rgb& tile, const Rgb& grout)
{
    constexpr int s_tileSize = s_textureSize / 4;
    Image image = blank(s_textureSize);
    for (int y = 0; y < s_textureSize; ++y) {
        for (int x = 0; x < s_textureSize; ++x) {
            const bool joint = x % s_tileSize == 0 || y % s_tileSize == 0;
            image.set(x, y, joint ? grout : scaled(tile, 0.97 + 0.06 * hash01(x / s_tileSize, y / s_tileSize, 3)));
        }
    }
    return image;
}

Image noiseTexture(const Rgb& base)
{
    constexpr int s_cell = 8;
    Image image = blank(s_textureSize);
    const auto smooth = [](double t) { return t * t * (3.0 - 2.0 * t); };
    for (int y = 0; y < s_textureSize; ++y) {
        for (int x = 0; x < s_textureSize; ++x) {
            // Lattice values wrap at the texture's edge, so the texture tiles without seams.
            const int cells = s_textureSize / s_cell;
            const int cx = x / s_cell;
            const int cy = y / s_cell;
            const double fx = smooth((x % s_cell) / static_cast<double>(s_cell));
            const double fy = smooth((y % s_cell) / static_cast<double>(s_cell));
            const auto lattice = [&](int i, int j) { return hash01(i % cells, j % cells, 4); };
            const double top = lattice(cx, cy) * (1 - fx) + lattice(cx + 1, cy) * fx;
            const double bottom = lattice(cx, cy + 1) * (1 - fx) + lattice(cx + 1, cy + 1) * fx;
            const double value = top * (1 - fy) + bottom * fy;
            image.set(x, y, scaled(base, 0.8 + 0.4 * value + 0.08 * (hash01(x, y, 5) - 0.5)));
        }
    }
    return image;
}

} // namespace Kx::Content
