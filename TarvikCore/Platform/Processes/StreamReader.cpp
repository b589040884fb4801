#include "Platform/Processes/StreamReader.h"

#include "Platform/Basics/Notify.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

/// What takes a descriptor's place at its end: poll passes over it.
constexpr int ended = -1;

}  // namespace

void StreamReader::add(int descriptor, Sink sink) {
    m_streams.push_back({descriptor, POLLIN, 0});
    m_sinks.push_back(std::move(sink));
}

bool StreamReader::hasEnded() const {
    return std::all_of(m_streams.begin(), m_streams.end(), [](const pollfd& stream) { return stream.fd == ended; });
}

void StreamReader::read(std::chrono::milliseconds limit) {
    if (::poll(m_streams.data(), m_streams.size(), static_cast<int>(limit.count())) <= 0) return;
    std::array<char, std::size_t{64} * 1024> buffer;
    for (std::size_t index = 0; index < m_streams.size(); ++index) {
        if (m_streams[index].fd == ended || m_streams[index].revents == 0) continue;
        const ssize_t length = ::read(m_streams[index].fd, buffer.data(), buffer.size());
        if (length > 0) {
            notify(m_sinks[index], std::string_view(buffer.data(), static_cast<std::size_t>(length)));
        } else if (length == 0 || errno != EINTR) {
            m_streams[index].fd = ended;
        }
    }
}

void StreamReader::readToEnd() {
    while (!hasEnded()) read(std::chrono::milliseconds(-1));
}

}  // namespace tarvik
