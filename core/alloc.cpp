/*
 * alloc.cpp - aligned blocks on top of the system allocator, omnsFree, and
 * the test seam (see alloc.h).
 */
#include "core/alloc.h"

#include <stdlib.h>

#include <atomic>

#include "core/variants.h"

namespace omn {

namespace {

/* Seam state.  gArmed is nonzero only while a test tracks or has a failure
   armed: the one word the normal path reads. */
enum : uint32_t { kArmTrack = 1, kArmFail = 2 };
std::atomic<uint32_t> gArmed{0};
std::atomic<uint32_t> gFailCountdown{0};
std::atomic<bool>     gFailInjected{false};
std::atomic<uint64_t> gAllocated{0};
std::atomic<uint64_t> gFreed{0};
std::atomic<uint64_t> gSystemCalls{0};
std::atomic<uint32_t> gLastRequest{0};

/* True when this allocation is the one a test asked to fail. */
bool failureDue()
{
    uint32_t n = gFailCountdown.load(std::memory_order_relaxed);
    while (n != 0) {
        if (gFailCountdown.compare_exchange_weak(n, n - 1, std::memory_order_relaxed)) {
            if (n != 1)
                return false;
            gArmed.fetch_and(~uint32_t(kArmFail), std::memory_order_relaxed);
            gFailInjected.store(true, std::memory_order_relaxed);
            return true;
        }
    }
    return false;
}

/* The seam's slow path around the system allocator. */
__attribute__((noinline)) void* systemAllocTracked(uint32_t bytes)
{
    const uint32_t armed = gArmed.load(std::memory_order_relaxed);
    if ((armed & kArmFail) != 0 && failureDue())
        return nullptr;
    void* raw = malloc(bytes);
    if ((armed & kArmTrack) != 0) {
        gSystemCalls.fetch_add(1, std::memory_order_relaxed);
        gLastRequest.store(bytes, std::memory_order_relaxed);
        if (raw != nullptr)
            gAllocated.fetch_add(1, std::memory_order_relaxed);
    }
    return raw;
}

inline void* systemAlloc(uint32_t bytes)
{
    if (__builtin_expect(gArmed.load(std::memory_order_relaxed) != 0, 0))
        return systemAllocTracked(bytes);
    return malloc(bytes);
}

/* bytes already includes the overhead. */
void* alignedBlock(uint32_t bytes)
{
    void* raw = systemAlloc(bytes);
    if (raw == nullptr)
        return nullptr;
    const uintptr_t user = (reinterpret_cast<uintptr_t>(raw) + kAllocOverhead - 1) & ~uintptr_t(kAllocAlign - 1);
    reinterpret_cast<void**>(user)[-1] = raw;
    return reinterpret_cast<void*>(user);
}

} // namespace

void* omnAllocBytes(int size)
{
    if (size < 1)
        return nullptr;
    return alignedBlock(static_cast<uint32_t>(size) + kAllocOverhead);
}

void* omnAllocElements(int len, uint32_t elemSize)
{
    if (len < 1)
        return nullptr;
    /* Modulo 2^32, unchecked: a count that wraps asks for a small block. */
    const uint32_t bytes = static_cast<uint32_t>(len) * elemSize + kAllocOverhead;
    /* A wrapped count that can't even hold the back-pointer past the
       alignment shift would put the bookkeeping outside the block. */
    if (bytes < kAllocOverhead)
        return nullptr;
    return alignedBlock(bytes);
}

bool omnAllocTestFailAt(unsigned n)
{
    const bool injected = gFailInjected.exchange(false, std::memory_order_relaxed);
    gFailCountdown.store(n, std::memory_order_relaxed);
    if (n != 0)
        gArmed.fetch_or(kArmFail, std::memory_order_relaxed);
    else
        gArmed.fetch_and(~uint32_t(kArmFail), std::memory_order_relaxed);
    return injected;
}

void omnAllocTestTrack(bool on)
{
    if (on)
        gArmed.fetch_or(kArmTrack, std::memory_order_relaxed);
    else
        gArmed.fetch_and(~uint32_t(kArmTrack), std::memory_order_relaxed);
}

OmnAllocStats omnAllocTestStats()
{
    return OmnAllocStats{ gAllocated.load(std::memory_order_relaxed), gFreed.load(std::memory_order_relaxed),
                          gSystemCalls.load(std::memory_order_relaxed), gLastRequest.load(std::memory_order_relaxed) };
}

namespace common {

/* One routine for every column and every allocator of the library. */
void omnsFree(void* ptr)
{
    if (ptr == nullptr)
        return;
    if (__builtin_expect((gArmed.load(std::memory_order_relaxed) & kArmTrack) != 0, 0))
        gFreed.fetch_add(1, std::memory_order_relaxed);
    free(static_cast<void**>(ptr)[-1]);
}

} // namespace common

} // namespace omn
