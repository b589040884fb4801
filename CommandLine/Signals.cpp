#include "CommandLine/Signals.h"

#include <atomic>
#include <cerrno>
#include <unistd.h>

namespace tarvik::CommandLine {

namespace {

/// A signal may be taken by any thread.
std::atomic<bool> hasCome = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void passOn(int signal, siginfo_t* information, void*) {
    const int error = errno;
    hasCome = true;
    const bool fromAnotherProcess = information->si_code == SI_USER && information->si_pid != ::getpid();
    if (fromAnotherProcess && ::getpgrp() == ::getpid()) ::kill(0, signal);
    errno = error;
}

}  // namespace

SignalGuard::SignalGuard() {
    hasCome = false;
    struct sigaction action {};
    action.sa_sigaction = passOn;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t at = 0; at < guarded.size(); ++at) {
        ::sigaction(guarded[at], nullptr, &m_before[at]);
        // Ignored on purpose, as nohup does: left so, for the tools too.
        if (m_before[at].sa_handler != SIG_IGN) ::sigaction(guarded[at], &action, nullptr);
    }
}

SignalGuard::~SignalGuard() {
    for (std::size_t at = 0; at < guarded.size(); ++at) ::sigaction(guarded[at], &m_before[at], nullptr);
}

bool SignalGuard::isAskedToEnd() {
    return hasCome;
}

Cancellation SignalGuard::request() {
    return Cancellation::sharing(hasCome);
}

void surviveClosedPipes() {
    ::signal(SIGPIPE, SIG_IGN);
}

}  // namespace tarvik::CommandLine
