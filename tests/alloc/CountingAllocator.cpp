#include "CountingAllocator.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local bool t_counting = false;
std::atomic<std::uint64_t> g_counted{0};

void Count() {
    if (t_counting)
        g_counted.fetch_add(1, std::memory_order_relaxed);
}

void* Allocate(std::size_t size) {
    Count();
    void* p = std::malloc(size == 0 ? 1 : size);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

void* AllocateAligned(std::size_t size, std::align_val_t align) {
    Count();
    const auto a = static_cast<std::size_t>(align);
    // aligned_alloc wants a size that is a whole number of alignments.
    const std::size_t rounded = (size == 0 ? a : (size + a - 1) / a * a);
    void* p = std::aligned_alloc(a, rounded);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

}  // namespace

namespace alloctest {

AllocationCounting::AllocationCounting() {
    t_counting = true;
}

AllocationCounting::~AllocationCounting() {
    t_counting = false;
}

std::uint64_t CountedAllocations() {
    return g_counted.load(std::memory_order_relaxed);
}

}  // namespace alloctest

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new(std::size_t size, std::align_val_t align) {
    return AllocateAligned(size, align);
}
void* operator new[](std::size_t size, std::align_val_t align) {
    return AllocateAligned(size, align);
}
void* operator new(std::size_t size, std::align_val_t align, const std::nothrow_t&) noexcept {
    try {
        return AllocateAligned(size, align);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, std::align_val_t align, const std::nothrow_t&) noexcept {
    try {
        return AllocateAligned(size, align);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(p);
}
