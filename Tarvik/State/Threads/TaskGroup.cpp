#include "State/Threads/TaskGroup.h"

#include "State/Threads/UiThread.h"

#include <QScopeGuard>

#include <stdexcept>
#include <utility>

namespace tarvik {

TaskGroup::TaskGroup(FailureHandler onFailure) : m_onFailure(std::move(onFailure)) {}

TaskGroup::~TaskGroup() {
    waitForAll();
}

void TaskGroup::add(QCoro::Task<> flow) {
    follow(std::move(flow));
}

void TaskGroup::waitForAll() {
    UiThread::runUntil([this] { return isEmpty(); });
}

QCoro::Task<> TaskGroup::follow(QCoro::Task<> flow) {
    ++m_running;
    const auto end = qScopeGuard([this] { --m_running; });
    try {
        co_await flow;
    } catch (const std::exception& failure) {
        m_onFailure(failure);
    } catch (...) {
        m_onFailure(std::runtime_error("Something went wrong without saying what it was."));
    }
}

}  // namespace tarvik
