#pragma once

#include <QCoroTask>

#include <coroutine>
#include <exception>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace tarvik {

/// How urgent a piece of background work is.
enum class Priority {
    /// The user waits for it: drive scans, planning, moves, restores.
    userInitiated,
    /// It may take its time: sizes, checks. It steps back behind the window.
    utility,
    /// Pictures for what is on the screen, which do not wait for sizes; they step back too.
    pictures,
};

/// The pools of threads behind `inBackground`, one for each priority.
namespace Background {

/// Runs `work` on a thread of the pool of its priority. Any thread; never blocks. `work` must not throw.
void run(Priority priority, std::function<void()> work);

/// Blocks until no work is left, then lets the coroutines go on that waited for it. UI thread, at the end of a program.
void finish();

/// Awaited on the UI thread: runs `work` in the background and resumes the coroutine on the UI thread afterwards.
struct Hop {
    Priority priority;
    std::function<void()> work;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> awaiting);
    void await_resume() const noexcept {}
};

}  // namespace Background

namespace Background {

/// What `inBackground` does, with a copy of the function in the coroutine's frame.
template <typename Function>
QCoro::Task<std::invoke_result_t<Function&>> perform(Priority priority, Function function) {
    using Result = std::invoke_result_t<Function&>;

    // The work writes into this frame. The frame stays where it is until the coroutine is resumed, and the two queues
    // that the work and the resumption go through order the writing before the reading.
    std::exception_ptr failure;
    std::conditional_t<std::is_void_v<Result>, std::monostate, std::optional<Result>> value;

    Hop hop{priority, [&] {
                try {
                    if constexpr (std::is_void_v<Result>) {
                        function();
                    } else {
                        value.emplace(function());
                    }
                } catch (...) {
                    failure = std::current_exception();
                }
            }};
    co_await hop;

    if (failure) std::rethrow_exception(failure);
    if constexpr (!std::is_void_v<Result>) co_return std::move(*value);
}

}  // namespace Background

/// Runs a blocking function off the UI thread and gives what it gives; what it throws comes out of the `co_await`.
///
/// Called and awaited on the UI thread, on which the awaiting coroutine goes on. A function that shall be able to end
/// early takes a `Cancellation` along in its captures; captures are values, as the caller may be gone while it runs.
template <typename Function>
QCoro::Task<std::invoke_result_t<Function&>> inBackground(Priority priority, const Function& function) {
    return Background::perform<Function>(priority, function);
}

/// The function needs a name: GCC before version 13 destroys a lambda twice that is a temporary of a `co_await`.
template <typename Function>
void inBackground(Priority priority, const Function&& function) = delete;

}  // namespace tarvik
