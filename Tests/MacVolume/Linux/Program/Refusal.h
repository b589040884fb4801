#pragma once

#include <cerrno>
#include <system_error>

/// How a call on the volume fails: by an exception with the errno value that its caller gets.
namespace tarvik::macvolume {

[[noreturn]] inline void refuse(int error) {
    throw std::system_error(error, std::generic_category());
}

/// Fails with an errno value, unless that is 0.
inline void require(int error) {
    if (error != 0) refuse(error);
}

/// Passes on what a system call has returned, and fails as that has.
template <typename Result>
Result requireCall(Result result) {
    if (result < 0) refuse(errno);
    return result;
}

}  // namespace tarvik::macvolume
