#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace quorel::qt {

/// UTF-8 on one side, the toolkit's text on the other.
inline QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}
inline std::string stdString(const QString& text) {
    return text.toStdString();
}

}  // namespace quorel::qt
