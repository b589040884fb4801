#include "Support/ScarceMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace tarvik::test {

namespace {

/// How many requests there are until the one that fails; 0 when none is to fail.
thread_local int remaining = 0;

void* memoryOf(std::size_t size) {
    if (remaining > 0 && --remaining == 0) throw std::bad_alloc();
    if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

ScarceMemory::ScarceMemory(int ordinal) {
    remaining = ordinal;
}

ScarceMemory::~ScarceMemory() {
    remaining = 0;
}

bool ScarceMemory::hasStruck() {
    return remaining == 0;
}

}  // namespace tarvik::test

// All of them, so that no other library's half of a pair meets ours.
void* operator new(std::size_t size) {
    return tarvik::test::memoryOf(size);
}
void* operator new[](std::size_t size) {
    return tarvik::test::memoryOf(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size > 0 ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
