#pragma once

#include "Platform/Files/FileDescriptor.h"

#include <memory>
#include <utility>

namespace tarvik {

/// Marks what this process has opened as in use, for as long as one copy of it lives: no other run clears it away. The
/// mark goes with the process, however that ends. It is no part of the value of what bears it.
class OpenedHold {
public:
    OpenedHold() = default;
    /// Takes a descriptor with a lock on it.
    explicit OpenedHold(FileDescriptor lock) : m_lock(std::make_shared<const FileDescriptor>(std::move(lock))) {}

    bool operator==(const OpenedHold&) const { return true; }

private:
    std::shared_ptr<const FileDescriptor> m_lock;
};

}  // namespace tarvik
