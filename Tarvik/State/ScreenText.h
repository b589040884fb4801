#pragma once

#include "Platform/Path.h"

#include <QString>

#include <string_view>

namespace tarvik {

/// Text of the core as the window shows it. Bytes that are no valid UTF-8 become U+FFFD.
inline QString screenText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QString screenPath(const fs::path& path) {
    return screenText(std::string_view(path.native()));
}

}  // namespace tarvik
