#pragma once

#include <functional>
#include <utility>

namespace tarvik {

/// Calls a callback that its owner may have left empty: nobody needs to listen.
template <typename... Parameters, typename... Arguments>
void notify(const std::function<void(Parameters...)>& callback, Arguments&&... arguments) {
    if (callback) callback(std::forward<Arguments>(arguments)...);
}

}  // namespace tarvik
