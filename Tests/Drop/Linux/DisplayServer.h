#pragma once

#include <string>
#include <sys/types.h>

namespace tarvik::test {

/// A display of its own, without a screen, for what only a real one can show: something that one program drags to
/// another. It ends with the object, and when its last program has gone.
class DisplayServer {
public:
    /// Starts one, and makes it the display of this program and of those that it starts.
    DisplayServer();
    ~DisplayServer();
    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;

    bool isRunning() const { return !m_display.empty(); }

private:
    pid_t m_process = 0;
    std::string m_display;
};

}  // namespace tarvik::test
