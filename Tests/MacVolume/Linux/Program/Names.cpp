#include "Program/Names.h"

#include "Program/Refusal.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringoptions.h>
#include <unicode/uniset.h>

namespace tarvik::macvolume::Names {

namespace {

bool isAscii(std::string_view text) {
    for (const char byte : text)
        if ((static_cast<unsigned char>(byte) & 0x80U) != 0) return false;
    return true;
}

void requireSuccess(UErrorCode status) {
    if (U_FAILURE(status)) refuse(EILSEQ);
}

const icu::Normalizer2& canonical() {
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFDInstance(status);
    requireSuccess(status);
    return *normalizer;
}

const icu::Normalizer2& hfsPlus() {
    static const icu::UnicodeSet decomposes = [] {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeSet set(u"[^\\u2000-\\u2FFF\\uF900-\\uFAFF\\U0002F800-\\U0002FAFF]", status);
        requireSuccess(status);
        set.freeze();
        return set;
    }();
    static const icu::FilteredNormalizer2 normalizer(canonical(), decomposes);
    return normalizer;
}

std::string normalized(const icu::Normalizer2& normalizer, std::string_view name) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    normalizer.normalizeUTF8(0, {name.data(), static_cast<int32_t>(name.size())}, sink, nullptr, status);
    requireSuccess(status);
    return result;
}

std::string caseFolded(std::string_view name) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT, {name.data(), static_cast<int32_t>(name.size())}, sink, nullptr,
                           status);
    requireSuccess(status);
    return result;
}

}  // namespace

std::string decomposed(std::string_view name) {
    return isAscii(name) ? std::string(name) : normalized(hfsPlus(), name);
}

std::string folded(std::string_view name) {
    if (!isAscii(name)) return normalized(canonical(), caseFolded(normalized(canonical(), name)));
    std::string lower(name);
    for (char& byte : lower)
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    return lower;
}

}  // namespace tarvik::macvolume::Names
