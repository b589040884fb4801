#pragma once

#include "Platform/Basics/Path.h"
#include "Practice/Dice.h"
#include "Practice/PracticeMachine.h"

#include <cstdint>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tarvik::Practice {

/// Writes files, folders and links whose bytes, permissions and times come from the dice alone: neither the clock nor
/// the user's file mask leaves a trace. Belongs to one thread; every operation throws `FileError`.
class TreeWriter {
public:
    TreeWriter(Dice dice, Machine& machine) : m_dice(dice), m_machine(machine) {}

    /// Makes the folder and those above it that are missing below the machine's root.
    void folder(const fs::path& path);
    /// A file with the given bytes.
    void file(const fs::path& path, std::string_view content, mode_t mode = 0644);
    /// A file of `size` bytes that do not compress, behind `head`.
    void noise(const fs::path& path, std::int64_t size, std::string_view head = {}, mode_t mode = 0644);
    /// A sound file in the WAVE format that plays as noise, about `size` bytes long.
    void sound(const fs::path& path, std::int64_t size);
    void link(const fs::path& path, const fs::path& target);
    /// Changes one byte of a file that holds some, as a worn drive does: its size and time stay.
    void damage(const fs::path& path);
    /// Gives every folder its time, which the making of its entries has changed. Called once, at the end.
    void finish();

private:
    struct timespec time();

    Dice m_dice;
    Machine& m_machine;
    std::vector<fs::path> m_folders;
};

}  // namespace tarvik::Practice
