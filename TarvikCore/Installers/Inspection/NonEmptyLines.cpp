#include "Installers/Inspection/NonEmptyLines.h"

#include <cstddef>

namespace tarvik::NonEmptyLines {

namespace {

/// The bytes of the line break that stands at `place`, 0 where none does.
std::size_t lineBreakAt(std::string_view text, std::size_t place) {
    if (text[place] >= '\n' && text[place] <= '\r') return 1;
    const std::string_view rest = text.substr(place, 3);
    if (rest.starts_with("\xC2\x85")) return 2;
    return rest == "\xE2\x80\xA8" || rest == "\xE2\x80\xA9" ? 3 : 0;
}

}  // namespace

void forEach(std::string_view text, const std::function<void(std::string_view line)>& use) {
    std::size_t begin = 0;
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t length = lineBreakAt(text, place);
        if (length == 0) {
            ++place;
            continue;
        }
        if (place > begin) use(text.substr(begin, place - begin));
        place += length;
        begin = place;
    }
    if (begin < text.size()) use(text.substr(begin));
}

}  // namespace tarvik::NonEmptyLines
