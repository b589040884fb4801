#pragma once

#include <array>
#include <string_view>

/// The scripts by which a shell completes the command: what the verb `completion` prints.
///
/// A script knows no verb and no option. It hands what has been typed to `tarvik --complete` (see `CompletionActs`) and
/// gives the shell what that answers, so that the command completes what it understands. Pure; safe on every thread.
namespace tarvik::CommandLine::CompletionScripts {

inline constexpr std::array<std::string_view, 3> shells = {"bash", "zsh", "fish"};

/// To be read by the shell when it starts, or by its own loader of completions. `shell` is one of `shells`.
std::string_view scriptFor(std::string_view shell);

}  // namespace tarvik::CommandLine::CompletionScripts
