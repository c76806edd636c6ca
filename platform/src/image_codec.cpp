#include "platform/image_codec.hpp"

#include <png.h>
// jpeglib.h needs FILE and size_t declared first.
#include <cstdio>
#include <csetjmp>
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace platform {

namespace {

bool looksLikePNG(std::string_view bytes) {
    return bytes.size() >= 8 && png_sig_cmp(reinterpret_cast<png_const_bytep>(bytes.data()), 0, 8) == 0;
}

bool looksLikeJPEG(std::string_view bytes) {
    return bytes.size() >= 3 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
           static_cast<unsigned char>(bytes[1]) == 0xD8 && static_cast<unsigned char>(bytes[2]) == 0xFF;
}

// Refuses pictures whose pixel buffer alone would pass this many bytes (damaged headers).
constexpr std::size_t maximumPixelBytes = std::size_t{1} << 30;

ImagePtr decodePNG(std::string_view bytes) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&png, bytes.data(), bytes.size())) return nullptr;
    png.format = PNG_FORMAT_RGBA;
    const std::size_t length = PNG_IMAGE_SIZE(png);
    if (png.width == 0 || png.height == 0 || length > maximumPixelBytes) {
        png_image_free(&png);
        return nullptr;
    }
    auto image = std::make_shared<Image>();
    image->width = static_cast<int>(png.width);
    image->height = static_cast<int>(png.height);
    image->rgba.resize(length);
    if (!png_image_finish_read(&png, nullptr, image->rgba.data(), 0, nullptr)) {
        png_image_free(&png);
        return nullptr;
    }
    return image;
}

struct JpegError {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
};

[[noreturn]] void jumpOut(j_common_ptr info) {
    std::longjmp(reinterpret_cast<JpegError*>(info->err)->jump, 1);
}

void ignoreMessage(j_common_ptr) {}

// Only plain C objects live between setjmp and longjmp here.
bool decodeJPEGInto(std::string_view bytes, Image& image) {
    jpeg_decompress_struct info{};
    JpegError error{};
    info.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = jumpOut;
    error.manager.output_message = ignoreMessage;
    if (setjmp(error.jump)) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned long>(bytes.size()));
    if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    info.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&info);
    const std::size_t row = static_cast<std::size_t>(info.output_width) * 4;
    if (info.output_width == 0 || info.output_height == 0 || row * info.output_height > maximumPixelBytes) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    image.width = static_cast<int>(info.output_width);
    image.height = static_cast<int>(info.output_height);
    image.rgba.resize(row * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW line = image.rgba.data() + row * info.output_scanline;
        jpeg_read_scanlines(&info, &line, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return true;
}

bool encodeJPEGInto(const Image& image, int quality, unsigned char** buffer, unsigned long* length) {
    jpeg_compress_struct info{};
    JpegError error{};
    info.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = jumpOut;
    error.manager.output_message = ignoreMessage;
    if (setjmp(error.jump)) {
        jpeg_destroy_compress(&info);
        return false;
    }
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, buffer, length);
    info.image_width = static_cast<JDIMENSION>(image.width);
    info.image_height = static_cast<JDIMENSION>(image.height);
    info.input_components = 4;
    info.in_color_space = JCS_EXT_RGBA;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    const std::size_t row = static_cast<std::size_t>(image.width) * 4;
    while (info.next_scanline < info.image_height) {
        // libjpeg takes rows as non-const but does not write to them.
        auto line = const_cast<JSAMPROW>(image.rgba.data() + row * info.next_scanline);
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    return true;
}

bool isWhole(const Image& image) {
    return image.width > 0 && image.height > 0 &&
           image.rgba.size() == static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 4;
}

} // namespace

ImagePtr decodeImage(std::string_view bytes) {
    if (looksLikePNG(bytes)) return decodePNG(bytes);
    if (!looksLikeJPEG(bytes)) return nullptr;
    auto image = std::make_shared<Image>();
    if (!decodeJPEGInto(bytes, *image)) return nullptr;
    return image;
}

std::optional<std::string> encodePNG(const Image& image) {
    if (!isWhole(image)) return std::nullopt;
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    png.format = PNG_FORMAT_RGBA;
    png_alloc_size_t length = 0;
    if (!png_image_write_to_memory(&png, nullptr, &length, 0, image.rgba.data(), 0, nullptr)) return std::nullopt;
    std::string bytes(length, '\0');
    if (!png_image_write_to_memory(&png, bytes.data(), &length, 0, image.rgba.data(), 0, nullptr))
        return std::nullopt;
    bytes.resize(length);
    return bytes;
}

std::optional<std::string> encodeJPEG(const Image& image, double quality) {
    if (!isWhole(image)) return std::nullopt;
    const int percent = static_cast<int>(std::lround(std::clamp(quality, 0.0, 1.0) * 100));
    unsigned char* buffer = nullptr;
    unsigned long length = 0;
    const bool encoded = encodeJPEGInto(image, std::max(percent, 1), &buffer, &length);
    if (!encoded || !buffer) {
        std::free(buffer);
        return std::nullopt;
    }
    std::string bytes(reinterpret_cast<const char*>(buffer), length);
    std::free(buffer);
    return bytes;
}

} // namespace platform
