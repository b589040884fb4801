#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <atomic>
#include <thread>
#include <vector>

namespace tarvik::test {

/// Lets nobody open some items, with EPERM and whatever their permissions are, as the privacy rules of a Mac do; until
/// the end of its life.
class KeptItems {
public:
    explicit KeptItems(const std::vector<fs::path>& items);
    ~KeptItems();
    KeptItems(const KeptItems&) = delete;
    KeptItems& operator=(const KeptItems&) = delete;

    /// Whether the system lets this user keep items from others.
    static bool isPossible();

private:
    void refuse() const;

    FileDescriptor m_events;
    std::thread m_thread;
    std::atomic<bool> m_isOver = false;
};

}  // namespace tarvik::test

/// First line of a test that keeps items. Where the kernel does not let even the administrator do that, no set-up
/// would: such a skip is never forbidden.
#define TARVIK_NEEDS_KEPT_ITEMS() \
    if (!::tarvik::test::KeptItems::isPossible()) GTEST_SKIP() << "This system lets nobody keep items from others."
