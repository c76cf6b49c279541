// icon_dots PICTURE HEADER: makes the header TrayIconDots.h of a picture, while the product is built.
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

int main(int count, char** arguments) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (count != 3 || !png_image_begin_read_from_file(&image, arguments[1])) return EXIT_FAILURE;
    image.format = PNG_FORMAT_ARGB;
    std::vector<unsigned char> dots(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, dots.data(), 0, nullptr)) return EXIT_FAILURE;
    std::ofstream header(arguments[2]);
    header << "#pragma once\n\n#include <cstdint>\n\nnamespace quorel {\n\n"
           << "/// The product's icon as panels take it: rows from the top, each dot alpha, red, green, blue.\n"
           << "inline constexpr std::int32_t kIconWidth = " << image.width << ", kIconHeight = " << image.height
           << ";\n"
           << "inline constexpr unsigned char kIconDots[] = {";
    for (const unsigned dot : dots) header << dot << ',';
    header << "};\n\n}  // namespace quorel\n";
    return header.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
