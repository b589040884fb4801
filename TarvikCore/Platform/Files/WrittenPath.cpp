#include "Platform/Files/WrittenPath.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/Firmlinks.h"
#include "Platform/Files/StoredSpelling.h"

#include <fmt/format.h>

#include <string>
#include <system_error>
#include <utility>

namespace tarvik::WrittenPath {

namespace {

Failure refusal(std::string sentence) {
    return {"WrittenPath", 0, std::move(sentence)};
}

bool leadsNowhere(const fs::path& path) {
    return Files::isSymbolicLink(path) && !Files::exists(path);
}

/// With links resolved, and from the first name on that is not there as the text says.
fs::path resolvedAsFarAsItGoes(const fs::path& path) {
    std::error_code error;
    const fs::path result = fs::weakly_canonical(path, error);
    return Files::standardized(error ? path : result);
}

}  // namespace

fs::path meant(const fs::path& written) {
    const fs::path plain = Files::standardized(written);
    fs::path through, behind;
    for (const fs::path& component : written) {
        if (component == "..") {
            if (leadsNowhere(through / behind)) throw refusal(fmt::format("Nothing stands at {}.", written.native()));
            through /= behind / component;
            behind.clear();
        } else {
            behind /= component;
        }
    }
    if (through.empty()) return asStored(plain);
    const fs::path real = resolvedAsFarAsItGoes(through);
    if (real == resolvedAsFarAsItGoes(Files::standardized(through))) return asStored(plain);
    throw refusal(fmt::format("With \"..\" behind a symlink, {} may mean {} or {}. Name the one that is meant.",
                              written.native(), Files::standardized(real / behind).native(), plain.native()));
}

fs::path asStored(const fs::path& path) {
    return StoredSpelling::of(Firmlinks::shortFormHere(path));
}

}  // namespace tarvik::WrittenPath
