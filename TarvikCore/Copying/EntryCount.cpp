#include "Copying/EntryCount.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tarvik::EntryCount {

namespace {

/// Counts the non-empty lines of a text that comes in pieces. Line breaks in the path of the root, with which every
/// entry begins, make no lines: the two trees that are compared stand in folders of different names.
class LineCounter {
public:
    explicit LineCounter(std::string root) : m_root(std::move(root)) {}

    void add(std::string_view piece) {
        m_pending += piece;
        std::string_view rest = m_pending;
        while (!rest.empty()) {
            if (!m_lineHasText && rest.starts_with(m_root)) {
                rest.remove_prefix(m_root.size());
                m_lineHasText = true;
                continue;
            }
            if (!m_lineHasText && m_root.starts_with(rest)) break;  // The rest of the path may be in the next piece.
            const std::size_t end = rest.find('\n');
            m_lineHasText = m_lineHasText || end != 0;
            if (end == std::string_view::npos) {
                rest = {};
                break;
            }
            m_lines += m_lineHasText ? 1 : 0;
            m_lineHasText = false;
            rest.remove_prefix(end + 1);
        }
        m_pending.erase(0, m_pending.size() - rest.size());
    }
    std::int64_t total() const { return m_lines + (m_lineHasText || !m_pending.empty() ? 1 : 0); }

private:
    std::string m_root;
    std::string m_pending;
    std::int64_t m_lines = 0;
    bool m_lineHasText = false;
};

/// One run of the tool.
class Count {
public:
    Count(const Host& host, const fs::path& root) : m_lines(root.native()) {
        ignoringFailure([&] { m_find.emplace(ChildProcess::start(host.tools.find, {root.native()})); });
    }

    /// Standard error is read too, and dropped: a full pipe would block the tool.
    void joinReader(StreamReader& reader) {
        if (!m_find) return;
        reader.add(m_find->standardOutput(), [this](std::string_view piece) { m_lines.add(piece); });
        reader.add(m_find->standardError(), [](std::string_view) {});
    }

    std::optional<std::int64_t> result() {
        if (!m_find || m_find->wait() != 0) return std::nullopt;
        return m_lines.total();
    }

private:
    std::optional<ChildProcess> m_find;
    LineCounter m_lines;
};

}  // namespace

Counts count(const Host& host, const fs::path& source, const fs::path& destination) {
    Count ofSource(host, source);
    Count ofDestination(host, destination);
    StreamReader reader;
    ofSource.joinReader(reader);
    ofDestination.joinReader(reader);
    reader.readToEnd();
    return {ofSource.result(), ofDestination.result()};
}

}  // namespace tarvik::EntryCount
