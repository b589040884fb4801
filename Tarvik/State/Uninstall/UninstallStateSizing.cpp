// How `UninstallState` measures the applications.

#include "AppData/SupplementalInstall.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizingService.h"
#include "State/Shared/AppState.h"
#include "State/Threads/Background.h"
#include "State/Uninstall/UninstallState.h"
#include "Uninstall/AppFootprintCalculator.h"

#include <atomic>
#include <chrono>
#include <coroutine>
#include <cstddef>
#include <exception>
#include <unordered_map>
#include <utility>

namespace tarvik {

namespace {

constexpr int walkersAtATime = 6;
constexpr std::size_t batchSize = 8;
/// How long small applications follow each other without a way over the UI thread, which may be drawing.
constexpr std::chrono::milliseconds longestWalkTurn{10};

/// Awaits a place in the queue of a semaphore that stays where it is: GCC 12 copies what a task awaits.
struct PlaceInQueue {
    AsyncSemaphore::Waiting* place;

    bool await_ready() const noexcept { return place->await_ready(); }
    void await_suspend(std::coroutine_handle<> coroutine) const noexcept { place->await_suspend(coroutine); }
    void await_resume() const noexcept {}
};

}  // namespace

struct UninstallState::Sizing {
    Sizing(std::vector<AppRecord> all, Cancellation stopWish) : apps(std::move(all)), stop(std::move(stopWish)) {}
    /// The next one that nobody measures yet, from any thread; null when there is none.
    const AppRecord* takeNext() {
        if (stop.isCancelled()) return nullptr;
        const std::size_t index = next++;
        return index < apps.size() ? &apps[index] : nullptr;
    }
    bool isOver() const { return next >= apps.size() || stop.isCancelled(); }

    const std::vector<AppRecord> apps;
    const Cancellation stop;
    std::atomic<std::size_t> next = 0;
    /// What is measured and not in the list yet. UI thread.
    std::vector<AppRecord> batch;
};

AppRecord UninstallState::measureBundle(const Host& host, const AppRecord& record, const Cancellation& cancellation) {
    return AppFootprintCalculator::measured(host, record, cancellation);
}

void UninstallState::startUninstallSizing(std::vector<AppRecord> apps) {
    m_stopSizing.cancel();
    m_stopSizing = {};
    if (!app().isClosing()) follow(sizeAll(std::move(apps), m_stopSizing));
}

QCoro::Task<> UninstallState::sizeAll(std::vector<AppRecord> apps, Cancellation stop) {
    const auto sizing = std::make_shared<Sizing>(std::move(apps), std::move(stop));
    std::vector<QCoro::Task<>> walkers;
    walkers.reserve(walkersAtATime);
    for (int walker = 0; walker < walkersAtATime; ++walker) walkers.push_back(sizeSome(sizing));
    // Each is waited for, also when one fails: none may go on behind this flow, in an object that is gone.
    std::exception_ptr failure;
    for (auto& walker : walkers) {
        try {
            co_await walker;
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (!sizing->batch.empty()) applySizingBatch(sizing->batch);
    emit sizingEnded();
    if (failure) std::rethrow_exception(failure);
}

QCoro::Task<> UninstallState::sizeSome(std::shared_ptr<Sizing> sizing) {
    const auto measure = [host = host(), sizing, closing = app().stopMeasuring()] {
        std::vector<AppRecord> measured;
        const auto end = std::chrono::steady_clock::now() + longestWalkTurn;
        do {
            const AppRecord* record = sizing->takeNext();
            if (!record) break;
            AppRecord sized = measureBundle(host, *record, closing);
            if (closing.isCancelled()) break;  // The size is only a part.
            measured.push_back(std::move(sized));
        } while (std::chrono::steady_clock::now() < end);
        return measured;
    };
    while (!sizing->isOver()) {
        auto place = m_walks.wait();
        const PlaceInQueue turn{&place};
        co_await turn;
        std::vector<AppRecord> measured;
        std::exception_ptr failure;
        try {
            measured = co_await inBackground(Priority::utility, measure);
        } catch (...) {
            failure = std::current_exception();
        }
        m_walks.signal();
        if (failure) std::rethrow_exception(failure);
        for (AppRecord& record : measured) {
            sizing->batch.push_back(std::move(record));
            if (sizing->batch.size() == batchSize) applySizingBatch(std::exchange(sizing->batch, {}));
        }
    }
}

void UninstallState::applySizingBatch(const std::vector<AppRecord>& batch) {
    std::unordered_map<std::string, AppRecord> measured;
    for (const AppRecord& record : batch) measured.insert_or_assign(record.id, record);
    m_list.takeSizes(measured);
    emit sizingBatchApplied(static_cast<int>(batch.size()));
}

}  // namespace tarvik
