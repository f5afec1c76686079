#include "Picture.h"

#include <png.h>

#include <cstring>

Picture Picture::decode(const std::string& bytes) {
    Picture picture;
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()))
        return picture;
    // Bit depth and colour type stand behind the signature, the first chunk's head, width and height.
    picture.bitDepth = bytes.at(24);
    picture.colorType = bytes.at(25);
    picture.width = image.width;
    picture.height = image.height;
    image.format = PNG_FORMAT_RGBA;
    picture.pixels.resize(std::size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr))
        picture.pixels.clear();
    return picture;
}
