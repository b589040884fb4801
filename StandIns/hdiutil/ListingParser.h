#pragma once

#include "hdiutil/Entry.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::hdiutil {

/// Reads what `7zz l -slt -sns` prints, in pieces of any size. It takes everything, and believes nothing of it but its
/// form: whoever uses entries looks at them.
class ListingParser {
public:
    using Sink = std::function<void(const Entry&)>;

    explicit ListingParser(Sink sink) : m_sink(std::move(sink)) {}

    void take(std::string_view piece);
    /// Called once, behind the last piece.
    void end();

    /// What was opened, from the outside in: "Dmg", "HFS".
    const std::vector<std::string>& types() const { return m_types; }
    /// What an APFS container says its volume is called; empty where nothing says so.
    const std::string& volumeName() const { return m_volumeName; }

private:
    void takeLine(std::string_view line);
    void takeHeader(std::string_view line);
    void takeField(std::string_view key, std::string_view value);
    void give();

    Sink m_sink;
    std::string m_line;  // what has come of a line that has not ended
    std::vector<std::string> m_types;
    std::string m_volumeName;
    bool m_isInEntries = false;
    std::optional<Entry> m_entry;
    bool m_isFolder = false;
    bool m_isAttribute = false;
    std::string m_mode;
};

}  // namespace tarvik::hdiutil
