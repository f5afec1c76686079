#include "PngWriter.h"

#include "Failure.h"

#include <png.h>

#include <csetjmp>
#include <exception>
#include <string>

namespace lys::cli {

namespace {

/** What libpng's calls back need, and what they leave behind. */
struct Target {
    Output& output;
    std::exception_ptr failure;
    std::string message;
};

Target& targetOf(png_structp png) {
    return *static_cast<Target*>(png_get_io_ptr(png));
}

// No exception may pass through libpng: it is kept, and libpng told to give up.
void writeBytes(png_structp png, png_bytep bytes, png_size_t count) {
    bool written = false;
    try {
        targetOf(png).output.write(std::as_bytes(std::span(bytes, count)));
        written = true;
    } catch (...) {
        targetOf(png).failure = std::current_exception();
    }
    if (!written) {
        png_error(png, "cannot be written");
    }
}

void flushBytes(png_structp) {}

void keepError(png_structp png, png_const_charp text) {
    try {
        static_cast<Target*>(png_get_error_ptr(png))->message = text;
    } catch (...) {
        // Without memory for the text the failure still counts.
    }
    std::longjmp(png_jmpbuf(png), 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

/** The part that libpng leaves by a jump: it owns nothing. */
bool encode(png_structp png, png_infop info, const std::uint8_t* pixels, png_uint_32 width, png_uint_32 height) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (png_uint_32 row = 0; row < height; ++row) {
        png_write_row(png, pixels + std::size_t{4} * width * row);
    }
    png_write_end(png, info);
    return true;
}

std::uint8_t toByte(float channel) {
    const float scaled = channel * 255.0F;
    if (!(scaled > 0.0F)) {
        return 0;
    }
    return scaled < 255.0F ? static_cast<std::uint8_t>(scaled) : std::uint8_t{255};
}

}  // namespace

std::array<std::uint8_t, 4> toBytes(const LyrRGBA<float>& color) {
    return {toByte(color.red), toByte(color.green), toByte(color.blue), toByte(color.alpha)};
}

void writePng(Output& output, std::span<const std::uint8_t> pixels, std::int64_t width, std::int64_t height) {
    if (width > PNG_UINT_31_MAX / 4 || height > PNG_UINT_31_MAX) {
        throwFailed("a slice of " + std::to_string(width) + " x " + std::to_string(height) +
                    " is too large for a PNG picture");
    }
    Target target{output, nullptr, {}};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &target, keepError, ignoreWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool done = false;
    if (info) {
        png_set_write_fn(png, &target, writeBytes, flushBytes);
        done = encode(png, info, pixels.data(), static_cast<png_uint_32>(width), static_cast<png_uint_32>(height));
    }
    png_destroy_write_struct(&png, &info);
    if (target.failure) {
        std::rethrow_exception(target.failure);
    }
    if (!done) {
        throwFailed("the picture could not be made: " +
                    (target.message.empty() ? "not enough memory" : target.message));
    }
}

}  // namespace lys::cli
