#include "CommandLine/Output/ProgressDisplay.h"

#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Terminal.h"
#include "Platform/Text/Text.h"

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

std::string amount(std::int64_t count, ProgressUnit unit) {
    return unit == ProgressUnit::bytes ? Text::byteCount(count) : fmt::to_string(count);
}

}  // namespace

std::string progressLine(std::string_view step, std::string_view label, const ByteProgress& progress,
                         std::size_t columns, ProgressUnit unit) {
    const auto words = fmt::format("{} {}", step, label);
    if (!progress.isKnown()) return Columns::cut(words, columns);
    const double fraction = progress.fraction();
    const auto share = fmt::format("{:3} %", static_cast<int>(fraction * 100));
    const auto amounts = fmt::format("  {} of {}", amount(std::min(progress.copied, progress.total), unit),
                                     amount(progress.total, unit));

    // "  [" and "] " stand around the bar; a label keeps a third of the line before the amounts may stand.
    const auto room = [&](std::size_t used) { return columns > used ? columns - used : 0; };
    const auto shownAmounts =
        room(amounts.size() + share.size() + narrowestBar + 5) >= columns / 3 ? amounts : std::string();
    const auto fixed = share.size() + shownAmounts.size();
    if (room(fixed + narrowestBar + 5) < 8)
        return Columns::cut(fmt::format("{} {}", Text::trimmed(share), words), columns);
    const auto shownWords = Columns::cut(words, room(fixed + narrowestBar + 5));
    const auto cells = std::min(widestBar, room(fixed + Columns::width(shownWords) + 5));
    return fmt::format("{}  {} {}{}", shownWords, bar(fraction, cells), share, shownAmounts);
}

ProgressDisplay::Output ProgressDisplay::standardError() {
    Output output{Terminal::writeMessage, {}, Clock::now};
    if (Terminal::showsMessages()) output.columns = Terminal::columns;
    return output;
}

ProgressDisplay::Output ProgressDisplay::silent() {
    return {[](std::string_view) {}, {}, Clock::now};
}

ProgressDisplay::Output ProgressDisplay::outputFor(Format format) {
    return format == Format::human ? standardError() : silent();
}

ProgressDisplay::Output ProgressDisplay::outputForQuestion(Format format) {
    return Terminal::showsMessages() ? outputFor(format) : silent();
}

ProgressDisplay::ProgressDisplay(Output output, const std::string& label, ProgressUnit unit)
    : m_output(std::move(output)), m_label(Columns::oneLine(label)), m_unit(unit) {}

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

void ProgressDisplay::progress(const ByteProgress& progress) {
    const std::lock_guard lock(m_mutex);
    if (m_hasEnded) return;
    m_progress = {progress.copied, std::max(m_progress.total, progress.total)};
    if (m_output.columns && !m_step.empty() && (!m_drawnAt || m_output.now() - *m_drawnAt >= shortestInterval)) draw();
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
    m_output.write(std::string(clearLine) + progressLine(m_step, m_label, m_progress, columns, m_unit));
    m_drawnAt = m_output.now();
    m_isDrawn = true;
}

void ProgressDisplay::clear() {
    if (m_isDrawn) m_output.write(clearLine);
    m_isDrawn = false;
}

}  // namespace tarvik::CommandLine
