#include "Window.h"

#include "ManyApps.h"
#include "Measure.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Table.h"
#include "UninstallTab.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::WindowSpeed {

namespace {

/// What the window tells of its first refresh, a value a round for each name. Milliseconds.
class Refreshes {
public:
    Refreshes(const ManyApps& apps, std::string option)
        : m_command({(ProgramLocation::folder() / "tarvik-window").native(), "--root", apps.machine().root,
                     std::move(option)}) {}

    void run() {
        const Measure::Run run = Measure::program(m_command);
        m_peakMemory = std::max(m_peakMemory, run.peakMemory);
        std::istringstream lines(run.output);
        std::string name;
        for (double value = 0; lines >> name >> value;) m_values[name].push_back(value);
    }
    /// What was there before does not count.
    void forget() { m_values.clear(); }

    double median(const std::string& name) const { return Measure::median(m_values.at(name)); }
    double most(const std::string& name) const {
        const auto& values = m_values.at(name);
        return *std::max_element(values.begin(), values.end());
    }
    /// In bytes, of all rounds.
    std::int64_t peakMemory() const { return m_peakMemory; }

private:
    std::vector<std::string> m_command;
    std::map<std::string, std::vector<double>> m_values;
    std::int64_t m_peakMemory = 0;
};

std::string milliseconds(double value) {
    return fmt::format("{:.0f} ms", value);
}

void printSizes(const std::string& figure, const Refreshes& refreshes, const Measure::Cost& du,
                const std::string& aim) {
    Table::line(figure, milliseconds(refreshes.median("sizes")), "du -s", milliseconds(du.seconds * 1e3),
                fmt::format("{:.2f}", refreshes.median("sizes") / du.seconds / 1e3), aim,
                fmt::format("{:.2f}", refreshes.median("processor") / du.processorSeconds / 1e3));
}

void printTurns(const std::string& figure, const Refreshes& refreshes, const std::string& aim) {
    Table::line(figure, milliseconds(refreshes.median("gap")), "the worst of all", milliseconds(refreshes.most("gap")),
                "", aim);
    Table::line("  its thread worked in one turn", milliseconds(refreshes.median("work")), "the worst of all",
                milliseconds(refreshes.most("work")), "", "");
}

}  // namespace

void measure(int rounds) {
    const ManyApps apps;
    apps.makeIcons();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_QUICK_BACKEND", "software", 1);
    Table::heading(apps.heading(rounds));

    Refreshes still(apps, "--measure-refresh");
    Refreshes scrolling(apps, "--measure-scrolling");
    std::vector<double> firstFrames;
    std::vector<double> duSeconds;
    std::vector<double> duProcessorSeconds;
    for (int round = 0; round <= rounds; ++round) {
        const Measure::Cost du = Measure::cost([&] { Measure::program(apps.du()); });
        still.run();
        scrolling.run();
        const auto firstFrame = Measure::program({(ProgramLocation::folder() / "tarvik-window").native(), "--root",
                                                  apps.machine().root, "--time-to-first-frame"});
        if (round == 0) {
            still.forget();
            scrolling.forget();
            continue;
        }
        duSeconds.push_back(du.seconds);
        duProcessorSeconds.push_back(du.processorSeconds);
        firstFrames.push_back(std::strtod(firstFrame.output.c_str(), nullptr));
    }
    const Measure::Cost du{Measure::median(duSeconds), Measure::median(duProcessorSeconds)};

    Table::line("window, start to first frame", milliseconds(Measure::median(firstFrames)), "", "", "", "400 ms");
    Table::line("refresh to the list on the screen", milliseconds(still.median("list")), "", "", "", "250 ms");
    printSizes("refresh to all sizes", still, du, "<= 1.20");
    printSizes("the same, scrolled all the time", scrolling, du, "");
    printTurns("event loop stood still", still, "50 ms");
    printTurns("the same, scrolled all the time", scrolling, "50 ms");
    Table::line(
        "peak memory of the window",
        fmt::format("{:.0f} MB", static_cast<double>(std::max(still.peakMemory(), scrolling.peakMemory())) / 1e6), "",
        "", "", "200 MB");
    UninstallTab::measure(apps, rounds);
}

}  // namespace tarvik::WindowSpeed
