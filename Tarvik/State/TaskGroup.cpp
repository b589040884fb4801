#include "State/TaskGroup.h"

#include "State/UiThread.h"

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
    try {
        co_await flow;
    } catch (const std::exception& failure) {
        m_onFailure(failure);
    }
    --m_running;
}

}  // namespace tarvik
