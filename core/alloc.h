/*
 * alloc.h - the library's one source of heap memory.
 *
 * Every block the library hands out, to a caller or to itself, comes from
 * omnAllocBytes or omnAllocElements and goes back through omnsFree, so that
 * any block can be freed by one routine whatever made it.
 *
 * Block layout (8-byte pointers):
 *   raw   what the system allocator returned, for count + kAllocOverhead bytes
 *   user  (raw + kAllocOverhead - 1) & ~31: a multiple of 32, at least one
 *         pointer above raw, and what the caller sees
 *   ((void**)user)[-1] holds raw: the only bookkeeping, no size, no guard.
 * The overhead is 32 bytes for the worst alignment shift plus one pointer.
 *
 * Test seam.  Tests of every allocating function prove two things: each
 * allocation that fails gives -9, and nothing leaks on the way out.  A test
 * arms the seam around a call:
 *
 *     omn::omnAllocTestTrack(true);
 *     for (unsigned k = 1;; ++k) {
 *         const omn::OmnAllocStats before = omn::omnAllocTestStats();
 *         omn::omnAllocTestFailAt(k);          // the k-th allocation fails
 *         const OmnStatus st = someInitAlloc(...);
 *         const bool injected = omn::omnAllocTestFailAt(0);   // disarm; true if it fired
 *         ... free what a success returned ...
 *         const omn::OmnAllocStats after = omn::omnAllocTestStats();
 *         EXPECT_EQ(after.allocated - before.allocated, after.freed - before.freed);
 *         if (!injected) break;                 // every allocation point was reached
 *         EXPECT_EQ(st, -9);
 *     }
 *     omn::omnAllocTestTrack(false);
 *
 * tests/alloc_faults.h wraps exactly this loop as omn::test::expectNoMemoryPaths.
 * Disarmed, the seam costs one relaxed load and a branch per allocation and
 * per free.  The counters are atomics, so a test may allocate from several
 * threads, but the fail-at countdown is one global: arm it from one thread.
 */
#ifndef OMN_CORE_ALLOC_H
#define OMN_CORE_ALLOC_H

#include <stdint.h>

#include "omns.h"

namespace omn {

/* Alignment of every block, and what it costs on top of the bytes asked. */
constexpr uint32_t kAllocAlign    = 32;
constexpr uint32_t kAllocOverhead = kAllocAlign + sizeof(void*);   /* 40 with 8-byte pointers */

/* An aligned block of size bytes; null for a size below 1 (the system
   allocator isn't asked) and when the system allocator fails. */
void* omnAllocBytes(int size);

/* An aligned block of len elements of elemSize bytes: what the typed
   omnsMalloc_* exports use.  The byte count len * elemSize + overhead is
   formed modulo 2^32 and not checked for overflow, so a huge len may get a
   small block.  Null for a len below 1. */
void* omnAllocElements(int len, uint32_t elemSize);

/* ---- test seam --------------------------------------------------------- */

struct OmnAllocStats {
    uint64_t allocated;     /* blocks handed out while tracking */
    uint64_t freed;         /* non-null blocks given to omnsFree while tracking */
    uint64_t systemCalls;   /* calls of the system allocator while tracking */
    uint32_t lastRequest;   /* byte count of the last call of the system allocator */
};

/* n > 0: the n-th allocation from now (counting only those that would call
   the system allocator) returns null without calling it; later ones succeed.
   n == 0 disarms.  Returns true when an armed failure had been injected
   since the previous call. */
bool omnAllocTestFailAt(unsigned n);

/* Counting on or off; the counters keep their values in between. */
void omnAllocTestTrack(bool on);

OmnAllocStats omnAllocTestStats();

} // namespace omn

#endif /* OMN_CORE_ALLOC_H */
