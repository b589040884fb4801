#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Processes/EnvironmentChange.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tarvik {

/// One running tool, with a pipe on its standard output and one on its standard error. It inherits the environment,
/// changed where the caller says so, the working directory and standard input, and no other descriptor. There is no
/// shell in between and no search of PATH.
///
/// Belongs to one thread, except that the two pipes may be read by others. Whoever starts it waits for it: a child that
/// is still running at the end of the object's life is killed and waited for.
class ChildProcess {
public:
    /// @throws FileError with the verb "start" when the program cannot be run.
    static ChildProcess start(const fs::path& program, const std::vector<std::string>& arguments,
                              const EnvironmentChange& change = {});
    /// The same with `output` as its standard output, which it has open for as long as it runs, also when this process
    /// ends before it. There is no pipe on that then.
    static ChildProcess startWritingTo(const FileDescriptor& output, const fs::path& program,
                                       const std::vector<std::string>& arguments);
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) noexcept;
    ~ChildProcess();

    /// By which the system knows it. Once the child has been waited for, it may be another process's.
    pid_t identifier() const { return m_process; }
    /// -1 where there is no pipe.
    int standardOutput() const { return m_standardOutput.get(); }
    int standardError() const { return m_standardError.get(); }

    /// Waits until the child has ended. @returns its exit status, or the number of the signal that ended it.
    int wait();
    /// The same as `wait` if the child has ended by now, else nothing, at once.
    std::optional<int> poll();
    /// Asks it to end (SIGTERM).
    void terminate();
    /// Ends it (SIGKILL).
    void kill();

private:
    static ChildProcess spawn(const fs::path& program, const std::vector<std::string>& arguments,
                              const EnvironmentChange& change, FileDescriptor output, FileDescriptor readEnd);
    ChildProcess(pid_t process, FileDescriptor standardOutput, FileDescriptor standardError);
    void end() noexcept;

    pid_t m_process = -1;
    std::optional<int> m_status;
    FileDescriptor m_standardOutput;
    FileDescriptor m_standardError;
};

}  // namespace tarvik
