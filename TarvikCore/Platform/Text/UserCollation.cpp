#include "Platform/Text/UserCollation.h"

#include "Platform/Text/UnicodeFailure.h"
#include "Platform/Text/UserLocale.h"

#include <unicode/coleitr.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/stsearch.h>
#include <unicode/tblcoll.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>

#include <algorithm>
#include <memory>
#include <string>

namespace tarvik {

namespace {

constexpr UChar32 firstBeyondAscii = 0x80;

/// The user's locale, or English where there is none that ICU knows.
icu::Locale userLocale() {
    const std::string name = UserLocale::name();
    auto locale = icu::Locale::createCanonical(name.c_str());
    return name.empty() || locale.isBogus() || !*locale.getLanguage() ? icu::Locale::getEnglish() : locale;
}

std::unique_ptr<icu::Collator> makeCollator(icu::Collator::ECollationStrength strength) {
    static const icu::Locale locale = userLocale();
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    throwUnicodeFailure(status);
    collator->setStrength(strength);
    return collator;
}

/// Sees accents, but not case. Never changed once made, so that threads may share it.
const icu::Collator& caseIgnoringCollator() {
    static const auto collator = makeCollator(icu::Collator::SECONDARY);
    return *collator;
}

/// Sees neither case nor accents. A search takes a collator that it might change, so each thread has its own.
icu::RuleBasedCollator& baseLetterCollator() {
    thread_local const auto collator = makeCollator(icu::Collator::PRIMARY);
    auto* const ruleBased = dynamic_cast<icu::RuleBasedCollator*>(collator.get());
    if (!ruleBased) throwUnicodeFailure(U_UNSUPPORTED_ERROR);
    return *ruleBased;
}

/// Whether the language has letters of its own that are written with ASCII alone, as "ch" in Czech. Where it has none,
/// ASCII texts can be searched byte by byte.
bool tailorsAscii() {
    static const bool tailors = [] {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::UnicodeSet> tailored(caseIgnoringCollator().getTailoredSet(status));
        throwUnicodeFailure(status);
        const icu::UnicodeSet ascii(0, firstBeyondAscii - 1);
        icu::UnicodeSetIterator item(*tailored);
        while (item.next())
            if (item.isString() ? ascii.containsAll(item.getString()) : item.getCodepoint() < firstBeyondAscii)
                return true;
        return false;
    }();
    return tailors;
}

bool isPrintableAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
}

char lowerAscii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// Whether the collator passes over all of `text`, as it does over a lone accent.
bool isIgnored(const icu::RuleBasedCollator& collator, const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::CollationElementIterator> elements(collator.createCollationElementIterator(text));
    for (auto element = elements->next(status); element != icu::CollationElementIterator::NULLORDER;
         element = elements->next(status)) {
        if (icu::CollationElementIterator::primaryOrder(element) != 0) return false;
    }
    throwUnicodeFailure(status);
    return true;
}

}  // namespace

int UserCollation::compare(std::string_view left, std::string_view right) {
    if (left == right) return 0;
    UErrorCode status = U_ZERO_ERROR;
    const int order = caseIgnoringCollator().compareUTF8(piece(left), piece(right), status);
    throwUnicodeFailure(status);
    return order;
}

bool UserCollation::contains(std::string_view text, std::string_view needle) {
    if (isPrintableAscii(text) && isPrintableAscii(needle) && !tailorsAscii()) {
        const auto sameLetter = [](char left, char right) { return lowerAscii(left) == lowerAscii(right); };
        return std::search(text.begin(), text.end(), needle.begin(), needle.end(), sameLetter) != text.end() ||
               needle.empty();
    }
    auto& collator = baseLetterCollator();
    const auto pattern = icu::UnicodeString::fromUTF8(piece(needle));
    if (isIgnored(collator, pattern)) return true;
    if (text.empty()) return false;
    UErrorCode status = U_ZERO_ERROR;
    icu::StringSearch search(pattern, icu::UnicodeString::fromUTF8(piece(text)), &collator, nullptr, status);
    const auto position = search.first(status);
    throwUnicodeFailure(status);
    return position != USEARCH_DONE;
}

}  // namespace tarvik
