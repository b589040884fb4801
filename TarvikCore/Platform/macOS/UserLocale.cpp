#include "Platform/Text/UserLocale.h"

#include <CoreFoundation/CoreFoundation.h>
#include <array>

namespace tarvik {

std::string UserLocale::inSystemSettings() {
    // A program that the Finder starts has no LANG. The identifiers are those of ICU (CFLocaleGetIdentifier).
    CFLocaleRef locale = ::CFLocaleCopyCurrent();
    if (!locale) return {};
    std::array<char, 256> name{};
    const bool isWhole = ::CFStringGetCString(::CFLocaleGetIdentifier(locale), name.data(),
                                              static_cast<CFIndex>(name.size()), kCFStringEncodingUTF8);
    ::CFRelease(locale);
    return isWhole ? std::string(name.data()) : std::string();
}

}  // namespace tarvik
