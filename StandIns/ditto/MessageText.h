#pragma once

#include <string>
#include <string_view>

/// What may be printed of bytes that come from names.
namespace tarvik::ditto::MessageText {

/// `text` as valid UTF-8: other bytes are written as "\xNN". The middle of a very long text is left out, so that
/// whoever reads it only after the program has ended finds all of it in the pipe.
std::string readable(std::string_view text);

}  // namespace tarvik::ditto::MessageText
