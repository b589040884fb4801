#include "Support/MacVolume.h"

#include <stdexcept>

namespace tarvik::test {

namespace {

[[noreturn]] void failWithoutNeed() {
    throw std::logic_error("a Mac needs no such volume");
}

}  // namespace

struct MacVolume::Program {};

MacVolume::MacVolume(const fs::path&, std::initializer_list<Habit>) {
    failWithoutNeed();
}

MacVolume::MacVolume(const fs::path&, const fs::path&, std::initializer_list<Habit>) {
    failWithoutNeed();
}

MacVolume::~MacVolume() = default;

void MacVolume::set(Habit, bool) {
    failWithoutNeed();
}

std::vector<std::string> MacVolume::journal() const {
    failWithoutNeed();
    return {};
}

std::optional<std::string> MacVolume::unavailableReason() {
    return "A Mac's own volumes have these habits.";
}

void setMacFlags(const fs::path&, std::uint32_t) {
    failWithoutNeed();
}

void denyDelete(const fs::path&, bool) {
    failWithoutNeed();
}

void denyDeleteInside(const fs::path&, bool) {
    failWithoutNeed();
}

void keepPrivate(const fs::path&, bool) {
    failWithoutNeed();
}

void breakListing(const fs::path&, bool) {
    failWithoutNeed();
}

}  // namespace tarvik::test
