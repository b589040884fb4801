#include "Copying/HiddenName.h"

#include "Copying/MoverError.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/ClashNames.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <climits>
#include <cstddef>

namespace tarvik::HiddenName {

namespace {

constexpr std::size_t identifierLength = 8;

std::string_view prefixOf(Purpose purpose) {
    switch (purpose) {
        case Purpose::copy:
            return ".tarvik-moving-";
        case Purpose::removal:
            return ".tarvik-removing-";
        case Purpose::exchange:
            break;
    }
    return ".tarvik-exchanging-";
}

/// How much of a name comes before the item's own: the prefix, an identifier and a dash.
std::size_t frontOf(Purpose purpose) {
    return prefixOf(purpose).size() + identifierLength + 1;
}

/// The item's own name as far as there is room behind the front.
std::string shortened(const fs::path& item, Purpose purpose) {
    return ClashNames::suffixed(item.filename().native(), "", NAME_MAX - frontOf(purpose));
}

fs::path nameFor(const fs::path& item, Purpose purpose) {
    return item.parent_path() / fmt::format("{}{}-{}", prefixOf(purpose), newIdentifier().substr(0, identifierLength),
                                            shortened(item, purpose));
}

}  // namespace

fs::path forCopyTo(const fs::path& goal) {
    return nameFor(goal, Purpose::copy);
}
fs::path forRemovalOf(const fs::path& original) {
    return nameFor(original, Purpose::removal);
}
fs::path forExchangeOf(const fs::path& item) {
    return nameFor(item, Purpose::exchange);
}

std::optional<Reading> read(std::string_view name) {
    for (const Purpose purpose : {Purpose::copy, Purpose::removal, Purpose::exchange}) {
        const std::size_t front = frontOf(purpose);
        if (!name.starts_with(prefixOf(purpose)) || name.size() <= front || name[front - 1] != '-') continue;
        const auto identifier = name.substr(prefixOf(purpose).size(), identifierLength);
        if (identifier.find_first_not_of("0123456789ABCDEF") == std::string_view::npos)
            return Reading{purpose, std::string(name.substr(front))};
    }
    return std::nullopt;
}

bool isFor(std::string_view name, Purpose purpose, const fs::path& item) {
    const auto reading = read(name);
    return reading && reading->purpose == purpose &&
           Text::nameKey(reading->ownName) == Text::nameKey(shortened(item, purpose));
}

std::string inOwnName(std::string text, const fs::path& hidden, const fs::path& item) {
    const std::string name = hidden.lexically_relative(item.parent_path());
    text = Text::replacing(text, name, item.filename().native());
    // A message may spell the item's own name in another way.
    if (const auto reading = read(name)) text = Text::replacing(text, name.substr(0, frontOf(reading->purpose)), "");
    return text;
}

void rethrowInOwnName(const fs::path& hidden, const fs::path& item) {
    try {
        throw;
    } catch (const MoverError& error) {
        throw MoverError::retold(error, inOwnName(error.description(), hidden, item));
    } catch (const Failure& failure) {
        throw Failure(failure.domain(), failure.code(), inOwnName(failure.description(), hidden, item));
    }
}

}  // namespace tarvik::HiddenName
