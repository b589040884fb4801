#pragma once

/// Lets one request for memory fail, in the program that uses it: every `new` of that program goes through here.
namespace tarvik::test {

/// While it lives, the calling thread's request number `ordinal`, counted from 1, throws std::bad_alloc. One at a time
/// on each thread.
class ScarceMemory {
public:
    explicit ScarceMemory(int ordinal);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    /// Whether the request has been made, and failed.
    static bool hasStruck();
};

}  // namespace tarvik::test
