#include "CommandLine/ProgressDisplay.h"

#include "CommandLine/Columns.h"
#include "CommandLine/Terminal.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tarvik::CommandLine {

namespace {

constexpr auto shortestInterval = std::chrono::milliseconds(100);
constexpr std::size_t narrowestBar = 10;
constexpr std::size_t widestBar = 40;
/// Back to the first column, and everything behind the cursor erased.
constexpr std::string_view clearLine = "\r\x1B[K";

std::string bar(double fraction, std::size_t cells) {
    const auto full = static_cast<std::size_t>(fraction * static_cast<double>(cells));
    return "[" + std::string(full, '#') + std::string(cells - full, '-') + "]";
}

}  // namespace

std::string progressLine(std::string_view step, std::string_view label, std::int64_t copied, std::int64_t total,
                         std::size_t columns) {
    const double fraction =
        total < 1 ? 0 : std::clamp(static_cast<double>(copied) / static_cast<double>(total), 0.0, 1.0);
    const auto share = total < 1 ? std::string() : fmt::format("{:3} %", static_cast<int>(fraction * 100));
    const auto bytes =
        total < 1 ? std::string()
                  : fmt::format("  {} of {}", Text::byteCount(std::min(copied, total)), Text::byteCount(total));
    const auto words = fmt::format("{} {}", step, label);
    if (share.empty()) return Columns::cut(words, columns);

    // "  [" and "] " stand around the bar; a label keeps a third of the line before the bytes may stand.
    const auto room = [&](std::size_t used) { return columns > used ? columns - used : 0; };
    const auto shownBytes = room(bytes.size() + share.size() + narrowestBar + 5) >= columns / 3 ? bytes : std::string();
    const auto fixed = share.size() + shownBytes.size();
    if (room(fixed + narrowestBar + 5) < 8)
        return Columns::cut(fmt::format("{} {}", Text::trimmed(share), words), columns);
    const auto shownWords = Columns::cut(words, room(fixed + narrowestBar + 5));
    const auto cells = std::min(widestBar, room(fixed + Columns::width(shownWords) + 5));
    return fmt::format("{}  {} {}{}", shownWords, bar(fraction, cells), share, shownBytes);
}

ProgressDisplay::Output ProgressDisplay::standardError() {
    Output output{Terminal::writeMessage, {}, Clock::now};
    if (Terminal::showsMessages()) output.columns = Terminal::columns;
    return output;
}

ProgressDisplay::Output ProgressDisplay::silent() {
    return {[](std::string_view) {}, {}, Clock::now};
}

ProgressDisplay::ProgressDisplay(Output output, std::string label)
    : m_output(std::move(output)), m_label(Columns::oneLine(label)) {}

ProgressDisplay::~ProgressDisplay() {
    end();
}

void ProgressDisplay::step(std::string_view name) {
    const std::lock_guard lock(m_mutex);
    if (m_hasEnded || m_step == name) return;
    m_step = name;
    if (m_output.columns)
        draw();
    else
        m_output.write(m_step + "\n");
}

void ProgressDisplay::progress(std::int64_t copied, std::int64_t total) {
    const std::lock_guard lock(m_mutex);
    if (m_hasEnded) return;
    m_copied = copied;
    m_total = std::max(m_total, total);
    if (m_output.columns && (!m_drawnAt || m_output.now() - *m_drawnAt >= shortestInterval)) draw();
}

void ProgressDisplay::end() {
    const std::lock_guard lock(m_mutex);
    if (m_hasEnded) return;
    m_hasEnded = true;
    clear();
}

void ProgressDisplay::draw() {
    // The last column stays empty: some terminals break the line when it is filled.
    const auto columns = std::max<std::size_t>(m_output.columns(), 2) - 1;
    m_output.write(std::string(clearLine) + progressLine(m_step, m_label, m_copied, m_total, columns));
    m_drawnAt = m_output.now();
    m_isDrawn = true;
}

void ProgressDisplay::clear() {
    if (m_isDrawn) m_output.write(clearLine);
    m_isDrawn = false;
}

}  // namespace tarvik::CommandLine
