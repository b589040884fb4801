#include "Support/Linux/KeptItems.h"

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/fanotify.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

FileDescriptor newRefusals() {
    return FileDescriptor(::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC | FAN_NONBLOCK, O_RDONLY | O_CLOEXEC));
}

}  // namespace

bool KeptItems::isPossible() {
    return bool(newRefusals());
}

KeptItems::KeptItems(const std::vector<fs::path>& items) : m_events(newRefusals()) {
    for (const fs::path& item : items)
        if (::fanotify_mark(m_events.get(), FAN_MARK_ADD, FAN_OPEN_PERM | FAN_ONDIR, AT_FDCWD, item.c_str()) != 0)
            throw std::runtime_error("cannot keep " + item.native());
    m_thread = std::thread([this] {
        while (!m_isOver) refuse();
    });
}

KeptItems::~KeptItems() {
    m_isOver = true;
    m_thread.join();
}

void KeptItems::refuse() const {
    pollfd waiting{m_events.get(), POLLIN, 0};
    constexpr int turnMilliseconds = 10;
    if (::poll(&waiting, 1, turnMilliseconds) <= 0) return;
    alignas(fanotify_event_metadata) std::array<char, 4096> buffer{};
    ssize_t left = ::read(m_events.get(), buffer.data(), buffer.size());
    for (auto* event = reinterpret_cast<fanotify_event_metadata*>(buffer.data()); left > 0 && FAN_EVENT_OK(event, left);
         event = FAN_EVENT_NEXT(event, left)) {
        const FileDescriptor item(event->fd);
        const fanotify_response answer{event->fd, FAN_DENY};
        if (::write(m_events.get(), &answer, sizeof answer) != sizeof answer) return;
    }
}

}  // namespace tarvik::test
