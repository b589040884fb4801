#pragma once

#include <cstddef>
#include <string_view>

/// Looks at a property list before it is decoded. Its bytes may come from anywhere, and few of them can stand for very
/// much: a binary one may name one object many times over, and both forms may nest without end, which the decoder and
/// whoever walks the result do by recursion. Pure; the work is in proportion to the number of bytes.
namespace tarvik::PropertyListCheck {

/// How deep a list may nest. What applications and tools write stays below twenty.
inline constexpr std::size_t deepestNesting = 128;
/// What a list may take once it is decoded, in bytes, by a rough count.
inline constexpr std::size_t largestCost = std::size_t{256} << 20;
/// What one decoded value counts beside its own bytes.
inline constexpr std::size_t costOfValue = 128;

/// Whether the bytes claim to be the binary form.
bool isBinary(std::string_view bytes);
/// Whether the bytes are a whole list of the binary form: every reference leads to an object of a known kind that lies
/// in the file, none leads back to itself, keys are texts, no text holds a NUL, and the limits are kept.
bool isSoundBinary(std::string_view bytes);
/// Whether the bytes are marked up as a list of the XML form: known elements alone, each closed in its turn, nothing
/// cut off, no NUL and no entities of its own, and the limits are kept.
bool isSoundXml(std::string_view bytes);

}  // namespace tarvik::PropertyListCheck
