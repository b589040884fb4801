#include "Table.h"

#include <fmt/format.h>

#include <iostream>

namespace tarvik::Table {

namespace {

/// What several rounds of one act cost.
struct Rounds {
    void add(const Measure::Cost& cost) {
        seconds.push_back(cost.seconds);
        processorSeconds.push_back(cost.processorSeconds);
    }

    std::vector<double> seconds;
    std::vector<double> processorSeconds;
};

std::string ratioOf(const std::vector<double>& ours, const std::vector<double>& theirs) {
    return fmt::format("{:.2f}", Measure::median(ours) / Measure::median(theirs));
}

std::string text(const std::vector<double>& seconds) {
    const double median = Measure::median(seconds);
    return median < 0.1 ? fmt::format("{:.1f} ms", median * 1000) : fmt::format("{:.3f} s", median);
}

}  // namespace

void heading(const std::string& text) {
    fmt::print("{}\n\n", text);
    line("figure", "Tarvik", "peer", "", "ratio", "aim", "processor");
}

void line(const std::string& figure, const std::string& ours, const std::string& peer, const std::string& theirs,
          const std::string& ratio, const std::string& aim, const std::string& processorRatio) {
    fmt::print("{:<38} {:>10}   {:<22} {:>10} {:>7} {:>9} {:>10}\n", figure, ours, peer, theirs, ratio, aim,
               processorRatio);
    std::cout.flush();
}

void ratio(const std::string& figure, const std::vector<double>& ours, const std::string& peer,
           const std::vector<double>& theirs, const std::string& aim) {
    line(figure, text(ours), peer, text(theirs), ratioOf(ours, theirs), aim);
}

void compare(const std::string& figure, const std::function<void()>& ours, const std::string& peer,
             const std::function<void()>& theirs, int rounds, const std::string& aim) {
    Rounds us;
    Rounds them;
    for (int round = 0; round <= rounds; ++round) {
        const Measure::Cost our = Measure::cost(ours);
        const Measure::Cost their = Measure::cost(theirs);
        if (round == 0) continue;
        us.add(our);
        them.add(their);
    }
    line(figure, text(us.seconds), peer, text(them.seconds), ratioOf(us.seconds, them.seconds), aim,
         ratioOf(us.processorSeconds, them.processorSeconds));
}

void milliseconds(const std::string& figure, const std::function<void()>& act, int rounds, const std::string& aim) {
    Rounds us;
    for (int round = 0; round <= rounds; ++round) {
        const Measure::Cost cost = Measure::cost(act);
        if (round > 0) us.add(cost);
    }
    line(figure, fmt::format("{:.0f} ms", Measure::median(us.seconds) * 1000), "of processor time",
         fmt::format("{:.0f} ms", Measure::median(us.processorSeconds) * 1000), "", aim);
}

}  // namespace tarvik::Table
