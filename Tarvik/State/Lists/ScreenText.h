#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Text/Text.h"

#include <QString>

#include <string_view>

namespace tarvik {

/// Text of the core as the window shows it. Bytes that are no valid UTF-8 become U+FFFD.
inline QString screenText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text that is told apart from every other's, also where they look the same on the screen: a valid one is itself,
/// and another one begins with a NUL, which no path holds.
inline QString uniqueText(std::string_view bytes) {
    if (Text::isValidUtf8(bytes)) return screenText(bytes);
    return QChar(QChar::Null) + QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

inline QString screenPath(const fs::path& path) {
    return screenText(std::string_view(path.native()));
}

}  // namespace tarvik
