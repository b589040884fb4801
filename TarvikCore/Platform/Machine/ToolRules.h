#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/ToolTable.h"

#include <span>
#include <string_view>

namespace tarvik {

/// What is known of a tool.
struct ToolRule {
    /// What a machine in a folder gets. It must never reach the machine that runs, on a Mac neither.
    enum class InFolder {
        /// The system's own tool: it changes nothing but the items that it is given.
        itself,
        /// The program of its name among the stand-ins, on a Mac too: it knows which machine it works for.
        standIn,
        /// No tool at all.
        none
    };

    fs::path ToolTable::*tool;
    std::string_view name;
    /// Empty for a program of this one's own, which lies beside it.
    std::string_view pathOnMac;
    InFolder inFolder;
    std::string_view reason;
};

/// Where each tool is, and what a machine in a folder gets of it.
namespace ToolRules {

/// One rule for each tool of the table.
std::span<const ToolRule> all();
/// The tools of a Mac, told on every system.
ToolTable ofMac();
/// What is left of a system's tools for a machine in a folder. Pure.
ToolTable inFolder(const ToolTable& ofSystem, const fs::path& standIns);
/// The folder of the programs that answer as tools do: it lies beside the running program.
fs::path standIns();

}  // namespace ToolRules

}  // namespace tarvik
