#include "Support/Linux/FolderGate.h"

#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <sys/fanotify.h>
#include <unistd.h>
#include <utility>

namespace tarvik::test {

namespace {

FileDescriptor newEvents() {
    return FileDescriptor(::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_CLOEXEC));
}

}  // namespace

bool FolderGate::isPossible() {
    return bool(newEvents());
}

FolderGate::FolderGate(std::vector<fs::path> folders, Act act)
    : m_folders(std::move(folders)), m_act(std::move(act)), m_events(newEvents()) {
    for (const fs::path& folder : m_folders)
        if (::fanotify_mark(m_events.get(), FAN_MARK_ADD, FAN_OPEN_PERM | FAN_ONDIR, AT_FDCWD, folder.c_str()) != 0)
            throw std::runtime_error("cannot guard " + folder.native());
    m_thread = std::thread([this] { guard(); });
}

FolderGate::~FolderGate() {
    // The thread waits for one opening of each folder.
    m_isOver = true;
    for (const fs::path& folder : m_folders) FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    m_thread.join();
}

void FolderGate::guard() {
    for (std::size_t opened = 1; opened <= m_folders.size();) {
        alignas(fanotify_event_metadata) std::array<char, 4096> buffer{};
        ssize_t left = ::read(m_events.get(), buffer.data(), buffer.size());
        if (left <= 0) break;
        for (auto* event = reinterpret_cast<fanotify_event_metadata*>(buffer.data()); FAN_EVENT_OK(event, left);
             event = FAN_EVENT_NEXT(event, left)) {
            const FileDescriptor folder(event->fd);
            if (!m_isOver) m_act(opened);
            ++opened;
            const fanotify_response answer{event->fd, FAN_ALLOW};
            if (::write(m_events.get(), &answer, sizeof answer) != sizeof answer) return;
        }
    }
    m_events.close();  // Everyone passes from now on.
}

}  // namespace tarvik::test
