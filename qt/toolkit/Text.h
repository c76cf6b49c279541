#pragma once

#include <QLatin1String>
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
/// For controls that take a letter behind "&" for their key.
inline QString withoutMnemonics(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace quorel::qt
