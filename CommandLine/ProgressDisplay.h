#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::CommandLine {

/// Shows how far an act has come: on a terminal one line that is redrawn, elsewhere a plain line for each new step.
/// Every function may be called from any thread.
class ProgressDisplay {
public:
    using Clock = std::chrono::steady_clock;
    struct Output {
        std::function<void(std::string_view)> write;
        /// The columns of the terminal, asked anew for each drawing; without it, plain lines are written.
        std::function<std::size_t()> columns;
        std::function<Clock::time_point()> now;
    };

    /// Standard error as it is.
    static Output standardError();
    /// An output that shows nothing.
    static Output silent();

    ProgressDisplay(Output output, std::string label);
    /// Takes the line off the screen.
    ~ProgressDisplay();
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    /// A new step begins: "copying". A step that is shown already is not shown anew.
    void step(std::string_view name);
    /// Bytes. Drawn at most ten times a second.
    void progress(std::int64_t copied, std::int64_t total);
    /// Nothing more is shown, and the line is taken off the screen.
    void end();

private:
    void draw();
    void clear();

    std::mutex m_mutex;
    const Output m_output;
    const std::string m_label;
    std::string m_step;
    std::int64_t m_copied = 0;
    std::int64_t m_total = 0;
    std::optional<Clock::time_point> m_drawnAt;
    bool m_isDrawn = false;
    bool m_hasEnded = false;
};

/// The line of a progress display, at most `columns` wide: step, label, a bar, the share and the bytes, of which the
/// less important give way where there is little room. `total` 0 means unknown.
std::string progressLine(std::string_view step, std::string_view label, std::int64_t copied, std::int64_t total,
                         std::size_t columns);

}  // namespace tarvik::CommandLine
