#include "UninstallRun/UninstallJournal.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

using std::chrono::microseconds;
using std::chrono::system_clock;

constexpr std::string_view firstLine = "tarvik-uninstall-journal\t1\n";
constexpr std::string_view nothing = "-";
constexpr int lastItemType = static_cast<int>(Files::ItemType::unknown);

/// What is there has a mark before it, which tells it from nothing.
std::string marked(std::string_view text) {
    std::string result(1, '=');
    result.reserve(text.size() + 1);
    for (const char letter : text) {
        switch (letter) {
            case '\\':
                result += "\\\\";
                break;
            case '\t':
                result += "\\t";
                break;
            case '\n':
                result += "\\n";
                break;
            case '\r':
                result += "\\r";
                break;
            default:
                result += letter;
        }
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '\\' || index + 1 == text.size()) {
            result += text[index];
            continue;
        }
        switch (text[++index]) {
            case 't':
                result += '\t';
                break;
            case 'n':
                result += '\n';
                break;
            case 'r':
                result += '\r';
                break;
            default:
                result += text[index];
        }
    }
    return result;
}

std::string written(const std::optional<std::string>& text) {
    return text ? marked(*text) : std::string(nothing);
}
std::string written(const std::optional<fs::path>& path) {
    return path ? marked(path->native()) : std::string(nothing);
}

/// A text with a NUL is none: a system call sees another path than the one that was looked at.
template <typename Text>
std::optional<Text> readText(std::string_view field) {
    if (!field.starts_with('=') || field.find('\0') != std::string_view::npos) return std::nullopt;
    return Text(unescaped(field.substr(1)));
}

template <std::integral Number>
std::optional<Number> readNumber(std::string_view field) {
    Number number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    if (error != std::errc() || end != field.data() + field.size()) return std::nullopt;
    return number;
}

std::string written(const std::optional<ItemIdentity>& identity) {
    if (!identity) return std::string(nothing);
    return fmt::format("{}:{}:{}:{}:{}", static_cast<int>(identity->type), identity->inode, identity->size,
                       identity->changed, identity->born ? std::to_string(*identity->born) : std::string(nothing));
}

/// The first fields of a line. No line has as many as can be held: of one that has, the rest does not matter.
class Fields {
public:
    Fields(std::string_view line, char separator) {
        for (std::size_t begin = 0; begin <= line.size() && m_count < m_fields.size();) {
            const std::size_t end = std::min(line.find(separator, begin), line.size());
            m_fields[m_count++] = line.substr(begin, end - begin);
            begin = end + 1;
        }
    }

    std::size_t size() const { return m_count; }
    std::string_view operator[](std::size_t number) const { return m_fields[number]; }

private:
    std::array<std::string_view, 7> m_fields;
    std::size_t m_count = 0;
};

std::optional<ItemIdentity> readIdentity(std::string_view field) {
    const Fields parts(field, ':');
    if (parts.size() != 5) return std::nullopt;
    const auto type = readNumber<int>(parts[0]);
    const auto inode = readNumber<std::uint64_t>(parts[1]);
    const auto size = readNumber<std::int64_t>(parts[2]);
    const auto changed = readNumber<std::int64_t>(parts[3]);
    if (!type || *type < 0 || *type > lastItemType || !inode || !size || !changed) return std::nullopt;
    return ItemIdentity{.type = static_cast<Files::ItemType>(*type),
                        .inode = *inode,
                        .size = *size,
                        .changed = *changed,
                        .born = readNumber<std::int64_t>(parts[4])};
}

bool isItemPath(const fs::path& path) {
    return path.is_absolute() && path.has_filename() && Files::standardized(path).native() == path.native();
}

std::optional<UninstallJournal::Item> readItem(const Fields& fields) {
    if (fields.size() != 6) return std::nullopt;
    const auto category = uninstallCategoryOf(fields[1]);
    const auto size = readNumber<std::int64_t>(fields[2]);
    const auto identity = readIdentity(fields[3]);
    const auto path = readText<fs::path>(fields[4]);
    const auto place = fields[5] == nothing ? path : readText<fs::path>(fields[5]);
    if (!category || !size || !path || !place || (!identity && fields[3] != nothing)) return std::nullopt;
    // Links on the way change everything but the name.
    if (!isItemPath(*path) || !isItemPath(*place) || path->filename() != place->filename()) return std::nullopt;
    return UninstallJournal::Item{
        .path = *path, .place = *place, .category = *category, .sizeBytes = *size, .identity = identity};
}

void takeEnd(UninstallJournal& journal, const Fields& fields) {
    if (fields.size() != 5) return;
    const auto number = readNumber<std::size_t>(fields[1]);
    if (!number || *number >= journal.items.size()) return;
    journal.items[*number].end = UninstallJournal::End{.succeeded = fields[2] == "true",
                                                       .trashedTo = readText<fs::path>(fields[3]),
                                                       .stashedTo = readText<fs::path>(fields[4])};
}

void takeStay(UninstallJournal& journal, const Fields& fields) {
    if (fields.size() != 3) return;
    const auto number = readNumber<std::size_t>(fields[1]);
    auto reason = readText<std::string>(fields[2]);
    if (number && *number < journal.items.size() && reason) journal.items[*number].reasonToStay = std::move(*reason);
}

/// What a line behind the opening tells.
void takeLater(UninstallJournal& journal, const Fields& fields) {
    if (fields[0] == "went") takeEnd(journal, fields);
    if (fields[0] == "stays") takeStay(journal, fields);
    if (fields.size() != 2) return;
    auto text = readText<std::string>(fields[1]);
    if (text && fields[0] == "forgot")
        journal.forgottenReceipts.push_back(std::move(*text));
    else if (text && fields[0] == "session")
        journal.sessionId = std::move(text);
}

/// False for a line that an opening does not have.
bool takeOpening(UninstallJournal& journal, const Fields& fields) {
    if (fields[0] == "item") {
        auto item = journal.items.size() < UninstallJournal::mostItems ? readItem(fields) : std::nullopt;
        if (item) journal.items.push_back(std::move(*item));
        return item.has_value();
    }
    if (fields[0] != "app" || fields.size() != 5) return false;
    const auto path = readText<fs::path>(fields[1]);
    const auto name = readText<std::string>(fields[2]);
    const auto started = readNumber<std::int64_t>(fields[4]);
    if (!path || !name || !started) return false;
    journal.appPath = *path;
    journal.appName = *name;
    journal.bundleIdentifier = readText<std::string>(fields[3]);
    const auto mostMicroseconds = std::chrono::floor<microseconds>(system_clock::duration::max()).count();
    if (*started > mostMicroseconds || *started < -mostMicroseconds) return false;
    journal.startedAt =
        system_clock::time_point(std::chrono::duration_cast<system_clock::duration>(microseconds(*started)));
    return true;
}

}  // namespace

const UninstallJournal::Item* UninstallJournal::itemAt(const fs::path& path) const {
    const auto found = std::find_if(items.begin(), items.end(), [&](const Item& item) { return item.path == path; });
    return found == items.end() ? nullptr : &*found;
}

std::string UninstallJournal::opening() const {
    std::string text(firstLine);
    const auto started = std::chrono::floor<microseconds>(startedAt.time_since_epoch()).count();
    fmt::format_to(std::back_inserter(text), "app\t{}\t{}\t{}\t{}\n", marked(appPath.native()), marked(appName),
                   written(bundleIdentifier), started);
    for (const Item& item : items)
        fmt::format_to(std::back_inserter(text), "item\t{}\t{}\t{}\t{}\t{}\n", textOf(item.category), item.sizeBytes,
                       written(item.identity), marked(item.path.native()),
                       item.place.native() == item.path.native() ? std::string(nothing) : marked(item.place.native()));
    return text + "begin\n";
}

std::string UninstallJournal::lineOf(std::size_t item, const End& end) {
    return fmt::format("went\t{}\t{}\t{}\t{}\n", item, end.succeeded, written(end.trashedTo), written(end.stashedTo));
}

std::string UninstallJournal::lineOfStay(std::size_t item, std::string_view reason) {
    return fmt::format("stays\t{}\t{}\n", item, marked(reason));
}

std::string UninstallJournal::lineOfReceipt(std::string_view identifier) {
    return fmt::format("forgot\t{}\n", marked(identifier));
}

std::string UninstallJournal::lineOfSession(std::string_view id) {
    return fmt::format("session\t{}\n", marked(id));
}

std::optional<UninstallJournal> UninstallJournal::parsed(std::string_view text) {
    if (!text.starts_with(firstLine)) return std::nullopt;
    text.remove_prefix(firstLine.size());
    UninstallJournal journal;
    bool hasBegun = false;
    bool hasApp = false;
    // A line without its end was being written.
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        const Fields fields(line, '\t');
        if (hasBegun) {
            takeLater(journal, fields);
        } else if (line == "begin") {
            hasBegun = true;
        } else if (takeOpening(journal, fields)) {
            hasApp = hasApp || fields[0] == "app";
        } else {
            return std::nullopt;
        }
    }
    return hasBegun && hasApp ? std::optional(std::move(journal)) : std::nullopt;
}

}  // namespace tarvik
