#include "Copying/MoverError.h"

#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <utility>

namespace tarvik {

MoverError::MoverError(Case kind, std::string description)
    : Failure("MoverEngine", static_cast<int>(kind), std::move(description)) {}

MoverError MoverError::insufficientSpace(std::int64_t needed, std::int64_t available) {
    return {Case::insufficientSpace,
            fmt::format("Not enough space. Need {}, have {}.", Text::byteCount(needed), Text::byteCount(available))};
}

MoverError MoverError::copyFailed(const std::string& reason) {
    return {Case::copyFailed, "Copy failed: " + reason};
}

MoverError MoverError::verifyFailed(const std::string& reason) {
    return {Case::verifyFailed, "Verification failed: " + reason};
}

MoverError MoverError::symlinkFailed(const std::string& reason) {
    return {Case::symlinkFailed, "Symlink creation failed: " + reason};
}

MoverError MoverError::sourceRemoveFailed(const std::string& reason) {
    return {Case::sourceRemoveFailed, "Could not remove original after copy: " + reason};
}

MoverError MoverError::appIsRunning(const std::string& name) {
    return {Case::appIsRunning, fmt::format("App is running: {}. Quit it first, or pass --quit-running.", name)};
}

MoverError MoverError::sourceMissing() {
    return {Case::sourceMissing, "Source path no longer exists."};
}

MoverError MoverError::destinationExists() {
    return {Case::destinationExists, "Destination already exists."};
}

MoverError MoverError::retold(const MoverError& error, std::string description) {
    return {error.kind(), std::move(description)};
}

}  // namespace tarvik
