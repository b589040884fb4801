#pragma once

#include "CommandLine/Output/Records.h"
#include "Copying/ByteProgress.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::CommandLine {

enum class ProgressUnit {
    bytes,  ///< "1.2 MB of 3 MB"
    items,  ///< "12 of 40"
};

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
    /// Where an act shows its progress: nowhere when its results are for a program.
    static Output outputFor(Format format);
    /// The same for a question, which only looks: nothing but a line on a terminal, and nothing into a pipe.
    static Output outputForQuestion(Format format);

    /// `unit` is what the figures of a progress count.
    ProgressDisplay(Output output, const std::string& label, ProgressUnit unit = ProgressUnit::bytes);
    /// Takes the line off the screen.
    ~ProgressDisplay();
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    /// A new step begins: "copying". A step that is shown already is not shown anew.
    void step(std::string_view name);
    /// Drawn at most ten times a second, and not before the first step. The total never shrinks.
    void progress(const ByteProgress& progress);
    /// Nothing more is shown, and the line is taken off the screen.
    void end();

private:
    void draw();
    void clear();

    std::mutex m_mutex;
    const Output m_output;
    const std::string m_label;
    const ProgressUnit m_unit;
    std::string m_step;
    ByteProgress m_progress;
    std::optional<Clock::time_point> m_drawnAt;
    bool m_isDrawn = false;
    bool m_hasEnded = false;
};

/// The line of a progress display, at most `columns` wide: step, label, a bar, the share and the amounts, of which the
/// less important give way where there is little room.
std::string progressLine(std::string_view step, std::string_view label, const ByteProgress& progress,
                         std::size_t columns, ProgressUnit unit = ProgressUnit::bytes);

}  // namespace tarvik::CommandLine
