#pragma once

#include <QCoroTask>

#include <exception>
#include <functional>

namespace tarvik {

/// The flows that are under way in one object. UI thread only.
///
/// A coroutine of an object holds the object's `this`, so the object must stay until the coroutine has ended. Flows
/// that are started through a group are counted; the object's destructor calls `waitForAll` first, while every member
/// is still whole, and so no flow ever goes on in a dead object. A flow that throws tells the group's owner and nobody
/// else.
class TaskGroup {
public:
    /// Called on the UI thread with what a flow has thrown.
    using FailureHandler = std::function<void(const std::exception&)>;

    explicit TaskGroup(FailureHandler onFailure);
    ~TaskGroup();
    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;

    /// Takes over a flow that has been started.
    void add(QCoro::Task<> flow);
    bool isEmpty() const { return m_running == 0; }
    /// Lets every flow run to its end; blocks while background work is under way. Nothing of the event loop runs but
    /// what that work hands back. A flow that waits for the user must have got an answer before.
    void waitForAll();

private:
    QCoro::Task<> follow(QCoro::Task<> flow);

    FailureHandler m_onFailure;
    int m_running = 0;
};

}  // namespace tarvik
