#pragma once

#include "Platform/Files/FileDescriptor.h"

namespace tarvik {

/// The two ends of a pipe. No program that this one starts inherits them: it would hold the pipe open as long as it
/// runs, and whoever reads to the end would wait for it.
struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;

    /// A new one; both ends are closed, and errno tells why, when there is none. Any thread. On a Mac, which has no one
    /// call for it, a program that another thread starts at the same moment may inherit the ends all the same.
    static Pipe make() noexcept;
};

}  // namespace tarvik
