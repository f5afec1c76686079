#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// A PNG file, decoded for a test.
struct Picture {
    using Pixel = std::array<std::uint8_t, 4>;

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int bitDepth = 0;    ///< as the file says
    int colorType = -1;  ///< as the file says; 6 is RGBA
    std::vector<Pixel> pixels;

    /// Without pixels if the bytes are no PNG file.
    static Picture decode(const std::string& bytes);

    const Pixel& at(std::uint32_t x, std::uint32_t y) const { return pixels.at(x + std::size_t{width} * y); }
};
