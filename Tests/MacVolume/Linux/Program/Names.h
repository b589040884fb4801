#pragma once

#include <string>
#include <string_view>

/// How a Mac's file systems see names. Pure; the names are valid UTF-8.
namespace tarvik::macvolume::Names {

/// As HFS+ keeps it: canonically decomposed, but for the ranges that it leaves alone (Apple's Technical Q&A QA1173).
std::string decomposed(std::string_view name);
/// The same text for all names that are one on a volume that folds case and normal forms.
std::string folded(std::string_view name);

}  // namespace tarvik::macvolume::Names
