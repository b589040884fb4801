#include "Move/StaleRootRetarget.h"

#include "Platform/AppStorageNames.h"
#include "Platform/Files.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>

namespace tarvik::StaleRootRetarget {

namespace {

std::string replaced(std::string text, const std::string& word, const std::string& by) {
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + by.size()))
        text.replace(at, word.size(), by);
    return text;
}

}  // namespace

std::optional<fs::path> candidate(const Host&, const fs::path& path) {
    const std::string present = fmt::format("/{}/", AppStorageNames::externalRoot);
    std::string text = path;
    for (const auto legacy : AppStorageNames::legacyExternalRoots)
        text = replaced(std::move(text), fmt::format("/{}/", legacy), present);
    if (text == path.native() || !Files::exists(text)) return std::nullopt;
    return text;
}

}  // namespace tarvik::StaleRootRetarget
