#include "Move/EntryCount.h"

#include "Platform/ChildProcess.h"
#include "Platform/Failure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace tarvik::EntryCount {

namespace {

/// Counts the non-empty lines of a text that comes in pieces.
class LineCounter {
public:
    void add(std::string_view piece) {
        while (!piece.empty()) {
            const std::size_t end = piece.find('\n');
            m_lineHasText = m_lineHasText || end != 0;
            if (end == std::string_view::npos) return;
            m_lines += m_lineHasText ? 1 : 0;
            m_lineHasText = false;
            piece.remove_prefix(end + 1);
        }
    }
    std::int64_t total() const { return m_lines + (m_lineHasText ? 1 : 0); }

private:
    std::int64_t m_lines = 0;
    bool m_lineHasText = false;
};

/// One run of the tool.
class Count {
public:
    Count(const Host& host, const fs::path& root) {
        ignoringFailure([&] { m_find.emplace(ChildProcess::start(host.tools.find, {root.native()})); });
    }

    int standardOutput() const { return m_find ? m_find->standardOutput() : -1; }
    int standardError() const { return m_find ? m_find->standardError() : -1; }
    void takeOutput(std::string_view piece) { m_lines.add(piece); }

    std::optional<std::int64_t> result() {
        if (!m_find || m_find->wait() != 0) return std::nullopt;
        return m_lines.total();
    }

private:
    std::optional<ChildProcess> m_find;
    LineCounter m_lines;
};

/// Reads everything that both runs print. Standard error is read too, and dropped: a full pipe would block the tool.
void drain(Count& source, Count& destination) {
    std::array<pollfd, 4> streams{{{source.standardOutput(), POLLIN, 0},
                                   {destination.standardOutput(), POLLIN, 0},
                                   {source.standardError(), POLLIN, 0},
                                   {destination.standardError(), POLLIN, 0}}};
    static constexpr std::size_t bufferSize = 64 * 1024;
    char buffer[bufferSize];
    while (std::any_of(streams.begin(), streams.end(), [](const pollfd& stream) { return stream.fd >= 0; })) {
        if (::poll(streams.data(), streams.size(), -1) < 0 && errno != EINTR) return;
        for (std::size_t index = 0; index < streams.size(); ++index) {
            pollfd& stream = streams[index];
            if (stream.fd < 0 || stream.revents == 0) continue;
            const ssize_t length = ::read(stream.fd, buffer, bufferSize);
            if (length < 0 && errno == EINTR) continue;
            if (length <= 0) {
                stream.fd = -1;  // poll passes over it from here on.
                continue;
            }
            const std::string_view piece(buffer, static_cast<std::size_t>(length));
            if (index == 0) source.takeOutput(piece);
            if (index == 1) destination.takeOutput(piece);
        }
    }
}

}  // namespace

Counts count(const Host& host, const fs::path& source, const fs::path& destination) {
    Count ofSource(host, source);
    Count ofDestination(host, destination);
    drain(ofSource, ofDestination);
    return {ofSource.result(), ofDestination.result()};
}

}  // namespace tarvik::EntryCount
