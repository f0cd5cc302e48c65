#pragma once

#include <cstdio> // before the library's header, which needs it
#include <cstdlib>
#include <span>
#include <string>

#include <jpeglib.h>

#include <gs/picture.h>

/// @p picture as a JPEG, in colours or in shades of grey.
inline std::string jpegBytes(const gs::Picture& picture, bool isGray = false)
{
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(picture.width);
    info.image_height = static_cast<JDIMENSION>(picture.height);
    info.input_components = isGray ? 1 : 3;
    info.in_color_space = isGray ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    jpeg_start_compress(&info, TRUE);
    for (int y = 0; y < picture.height; ++y) {
        std::vector<unsigned char> row;
        for (int x = 0; x < picture.width; ++x)
            for (const int shift : {16, 8, 0})
                if (!isGray || shift == 8)
                    row.push_back(static_cast<unsigned char>(picture.at(x, y) >> shift & 0xFF));
        unsigned char* first = row.data();
        jpeg_write_scanlines(&info, &first, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string out(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return out;
}

/// Upper half red, lower half blue; sides of a multiple of 16 keep the colours apart.
inline gs::Picture redOverBlue(int side = 32)
{
    gs::Picture picture;
    picture.width = picture.height = side;
    for (int i = 0; i < side * side; ++i)
        picture.pixels.push_back(i < side * side / 2 ? 0xFFFF0000 : 0xFF0000FF);
    return picture;
}
