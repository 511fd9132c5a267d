#include "engine/view/png.h"

#include <png.h>

namespace qn::view {

std::string EncodePng(const Raster& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.Width());
    image.height = static_cast<png_uint_32>(picture.Height());
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.Bytes().data(), 0, nullptr))
        size = 0;
    bytes.resize(size);
    png_image_free(&image);
    return bytes;
}

}  // namespace qn::view
