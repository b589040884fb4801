#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace tarvik::test {

/// What a program left when it had ended.
struct Finished {
    /// The exit status; 128 and the signal's number when a signal ended it.
    int status = -1;
    std::string output;
    std::string errors;
};

/// A program that a test has started, in a process group of its own. Ended with its group at the end of the object's
/// life.
class RunningProgram {
public:
    enum class Streams {
        pipes,        ///< nothing to read, what it writes is gathered
        terminal,     ///< a terminal of 80 columns for all three; everything is gathered as output
        closedPipes,  ///< as `pipes`, but nobody reads what it writes
        none,         ///< all three closed from the start
        fullDisk,     ///< as `pipes`, but its results go to a device that is always full
    };

    RunningProgram(const fs::path& program, const std::vector<std::string>& arguments,
                   Streams streams = Streams::pipes);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t process() const { return m_process; }
    /// Types on its terminal.
    void type(const std::string& text) const;
    /// Gathers output until `text` is in it. False when the program ended, or a minute passed, without it.
    bool waitForOutput(const std::string& text);
    /// Sends a signal to all of its group, as a terminal does on Ctrl-C.
    void signalGroup(int signal) const;
    /// Gathers output until its end and waits.
    Finished finish();

private:
    /// Waits for output and gathers it. False at the end of both streams, or after a minute of silence.
    bool gather();

    pid_t m_process = -1;
    FileDescriptor m_output;
    FileDescriptor m_errors;
    Finished m_finished;
};

/// Runs a program to its end.
Finished runProgram(const fs::path& program, const std::vector<std::string>& arguments,
                    RunningProgram::Streams streams = RunningProgram::Streams::pipes);

}  // namespace tarvik::test
