#include "Measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik::Measure {

namespace {

cpu_set_t allCores() {
    static const cpu_set_t cores = [] {
        cpu_set_t set;
        ::sched_getaffinity(0, sizeof set, &set);
        return set;
    }();
    return cores;
}

/// Of this program and of all programs that it has waited for, since its start.
double processorSeconds() {
    double sum = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        struct rusage usage {};
        ::getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            sum += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
    return sum;
}

/// Runs a program to its end. @returns what it used.
struct rusage spawn(const std::vector<std::string>& command, const posix_spawn_file_actions_t* actions) {
    std::vector<char*> words;
    for (const auto& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    int status = -1;
    struct rusage usage {};
    pid_t child = 0;
    if (::posix_spawnp(&child, words[0], actions, nullptr, words.data(), environ) == 0)
        ::wait4(child, &status, 0, &usage);
    if (status != 0) throw std::runtime_error("failed: " + command.front());
    return usage;
}

/// A file that is gone when it is closed.
class Scratch {
public:
    Scratch() : m_file(std::tmpfile()) {
        if (!m_file) throw std::runtime_error("There is no room for a temporary file.");
    }
    ~Scratch() { std::fclose(m_file); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    int descriptor() const { return ::fileno(m_file); }
    std::string content() const {
        std::rewind(m_file);
        std::string text;
        for (int byte = std::getc(m_file); byte != EOF; byte = std::getc(m_file)) text += static_cast<char>(byte);
        return text;
    }

private:
    std::FILE* m_file;
};

}  // namespace

Run program(const std::vector<std::string>& command) {
    const Scratch output;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output.descriptor(), STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    Run run;
    struct rusage usage {};
    run.seconds = seconds([&] { usage = spawn(command, &actions); });
    ::posix_spawn_file_actions_destroy(&actions);
    run.peakMemory = static_cast<std::int64_t>(usage.ru_maxrss) * 1024;
    run.output = output.content();
    return run;
}

void part(const std::vector<std::string>& command) {
    spawn(command, nullptr);
}

double seconds(const std::function<void()>& act) {
    const auto start = std::chrono::steady_clock::now();
    act();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Cost cost(const std::function<void()>& act) {
    const double before = processorSeconds();
    const double bySeconds = seconds(act);
    return {bySeconds, processorSeconds() - before};
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

OneCore::OneCore() {
    const cpu_set_t all = allCores();
    cpu_set_t one;
    CPU_ZERO(&one);
    for (int core = 0; core < CPU_SETSIZE; ++core) {
        if (!CPU_ISSET(core, &all)) continue;
        CPU_SET(core, &one);
        break;
    }
    ::sched_setaffinity(0, sizeof one, &one);
}

OneCore::~OneCore() {
    const cpu_set_t all = allCores();
    ::sched_setaffinity(0, sizeof all, &all);
}

}  // namespace tarvik::Measure
