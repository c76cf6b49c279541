#include "agent/tray/TrayIcon.h"

#include <png.h>

#include "TrayIconFile.h"

namespace quorel {

TrayIcon trayIcon() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    TrayIcon icon;
    if (!png_image_begin_read_from_memory(&image, kTrayIconFile, sizeof kTrayIconFile)) return icon;
    image.format = PNG_FORMAT_ARGB;
    icon.dots.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, icon.dots.data(), 0, nullptr)) return {};
    icon.width = static_cast<std::int32_t>(image.width);
    icon.height = static_cast<std::int32_t>(image.height);
    return icon;
}

}  // namespace quorel
