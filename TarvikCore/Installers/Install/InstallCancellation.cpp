#include "Installers/Install/InstallCancellation.h"

#include "Platform/Basics/Failure.h"

#include <cerrno>

namespace tarvik::InstallCancellation {

void throwIfAsked(const Cancellation& cancellation) {
    if (cancellation.isCancelled()) throw Failure("install", ECANCELED, "The install was stopped.");
}

}  // namespace tarvik::InstallCancellation
