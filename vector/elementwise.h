/*
 * elementwise.h - the loop engine of the element-wise double functions.
 *
 * An operation is a small object that says how many source streams it reads
 * (kIn, one to three, in argument order), how many doubles one element has
 * (kStep: 1 real, 2 complex), and how to compute one element: `one` on plain
 * doubles (real operations) and `pair` on a Pd (two real elements, or one
 * complex element).  The engine owns everything else: lengths, alignment,
 * prefetch, head and tail.
 *
 * Column point, kPackedKernels: px and a6 run the scalar loop, unrolled by
 * four (a6 has no packed double arithmetic, so its double kernels are the
 * same loops as px).  w7 and t7 run the packed loop:
 *   - fewer than 5 doubles: the scalar loop;
 *   - a real destination 8 bytes past a 16-byte boundary: one scalar element
 *     first, so that the blocks store aligned;
 *   - blocks of four doubles, prefetching 64 bytes ahead on every source
 *     (from kPrefetchFrom doubles on: shorter runs are in cache), two
 *     blocks (one cache line of each source) to a turn of the loop,
 *     with one instance for each combination of source alignments (aligned
 *     or unaligned loads) so that no block tests alignment;
 *   - a 16-aligned destination of kStreamFromBytes or more that no source
 *     shares (not the in-place forms) is written with streaming stores;
 *   - a destination that isn't 16-aligned after the head stores unaligned
 *     (complex), or with two 8-byte stores when it isn't even 8-aligned;
 *   - up to three doubles of tail, one element at a time.
 */
#ifndef OMN_VECTOR_ELEMENTWISE_H
#define OMN_VECTOR_ELEMENTWISE_H

#include <stddef.h>
#include <stdint.h>

#include "core/column.h"
#include "vector/f64x2.h"

/* The pieces of a loop body must fold into the loop: with many instances
   about, the compiler may otherwise leave a call per block. */
#define OMN_EW_INLINE inline __attribute__((always_inline))

OMN_COLUMN_BEGIN
namespace ew {

using pd::Pd;

constexpr bool kPackedKernels = OMN_COLUMN_INDEX >= 2;

/* One element at double offset i. */
template <class Op>
OMN_EW_INLINE void step(const Op& op, const double* const* in, double* out, size_t i)
{
    if constexpr (Op::kStep == 1) {
        double v[Op::kIn];
        for (int k = 0; k < Op::kIn; ++k)
            v[k] = pd::ld(in[k] + i);
        pd::st(out + i, op.one(v));
    } else {
        Pd v[Op::kIn];
        for (int k = 0; k < Op::kIn; ++k)
            v[k] = pd::loadU(in[k] + i);
        pd::storeHalves(out + i, op.pair(v));
    }
}

/* The plain loop, unrolled by four elements. */
template <class Op>
inline void runScalar(const Op& op, const double* const* in, double* out, size_t nd)
{
    constexpr size_t s = Op::kStep;
    size_t i = 0;
    for (; i + 4 * s <= nd; i += 4 * s) {
        step(op, in, out, i);
        step(op, in, out, i + s);
        step(op, in, out, i + 2 * s);
        step(op, in, out, i + 3 * s);
    }
    for (; i < nd; i += s)
        step(op, in, out, i);
}

enum StoreKind { kStoreAligned, kStoreStream, kStoreUnaligned, kStoreHalves };

template <bool kAligned>
OMN_EW_INLINE Pd load(const double* p) { return kAligned ? pd::loadA(p) : pd::loadU(p); }

template <StoreKind kStore>
OMN_EW_INLINE void store(double* p, Pd v)
{
    if constexpr (kStore == kStoreAligned)
        pd::storeA(p, v);
    else if constexpr (kStore == kStoreStream)
        pd::storeStream(p, v);
    else if constexpr (kStore == kStoreUnaligned)
        pd::storeU(p, v);
    else
        pd::storeHalves(p, v);
}

/* Four doubles of every source from k on, as two pairs each. */
template <unsigned kAlignedIn, int kN, int k = 0>
OMN_EW_INLINE void loadSources(Pd* a, Pd* b, const double* const* in, size_t i)
{
    if constexpr (k < kN) {
        constexpr bool kAligned = ((kAlignedIn >> k) & 1) != 0;
        a[k] = load<kAligned>(in[k] + i);
        b[k] = load<kAligned>(in[k] + i + 2);
        loadSources<kAlignedIn, kN, k + 1>(a, b, in, i);
    }
}

template <int kN, int k = 0>
OMN_EW_INLINE void prefetchSources(const double* const* in, size_t i)
{
    if constexpr (k < kN) {
        pd::prefetch(in[k] + i);
        prefetchSources<kN, k + 1>(in, i);
    }
}

template <class Op, unsigned kAlignedIn, StoreKind kStore>
OMN_EW_INLINE void block(const Op& op, const double* const* in, double* out, size_t i)
{
    Pd a[Op::kIn], b[Op::kIn];
    loadSources<kAlignedIn, Op::kIn>(a, b, in, i);
    store<kStore>(out + i, op.pair(a));
    store<kStore>(out + i + 2, op.pair(b));
}

/* Blocks of four doubles.  Bit k of kAlignedIn says that source k is
   16-aligned; nd is a multiple of four.  Two blocks make one 64-byte line of
   each source, so the loop takes two at a time and prefetches once a line,
   64 bytes ahead. */
template <class Op, unsigned kAlignedIn, StoreKind kStore, bool kPrefetch>
void blocks(const Op& op, const double* const* inArg, double* out, size_t nd)
{
    /* The source pointers as locals: vector stores may alias anything, and
       would otherwise make the loop reload them from the caller's array. */
    const double* in[Op::kIn];
    for (int k = 0; k < Op::kIn; ++k)
        in[k] = inArg[k];
    size_t i = 0;
    for (; i + 8 <= nd; i += 8) {
        if (kPrefetch)
            prefetchSources<Op::kIn>(in, i + 8);
        block<Op, kAlignedIn, kStore>(op, in, out, i);
        block<Op, kAlignedIn, kStore>(op, in, out, i + 4);
    }
    if (i < nd)
        block<Op, kAlignedIn, kStore>(op, in, out, i);
}

/* From this many bytes of result a run with a 16-aligned destination stores
   past the caches: a result that size would not stay in them anyway, and
   it spares the reads that ordinary stores make of every destination line. */
constexpr size_t kStreamFromBytes = 1024 * 1024;

/* From this many doubles a run prefetches.  Shorter runs are in the first
   level cache, or about to be, and a prefetch there only takes a load slot
   from the loop. */
constexpr size_t kPrefetchFrom = 8192;

/* Picks the instance for the sources' alignments, given as a bit mask, and
   for prefetching. */
template <class Op, StoreKind kStore, unsigned kMask = 0>
inline void blocksFor(unsigned mask, const Op& op, const double* const* in, double* out, size_t nd)
{
    if constexpr (kMask + 1 < (1u << Op::kIn)) {
        if (mask != kMask) {
            blocksFor<Op, kStore, kMask + 1>(mask, op, in, out, nd);
            return;
        }
    }
    if (nd >= kPrefetchFrom)
        blocks<Op, kMask, kStore, true>(op, in, out, nd);
    else
        blocks<Op, kMask, kStore, false>(op, in, out, nd);
}

template <class Op>
void runPacked(const Op& op, const double* const* in, double* out, size_t nd)
{
    if (nd < 5) {
        runScalar(op, in, out, nd);
        return;
    }
    size_t i = 0;
    const uintptr_t d = reinterpret_cast<uintptr_t>(out);
    if (Op::kStep == 1 && d % 16 == 8) {
        step(op, in, out, 0);
        i = 1;
    }
    const size_t body = (nd - i) & ~size_t(3);
    const double* at[Op::kIn];
    unsigned mask = 0;
    for (int k = 0; k < Op::kIn; ++k) {
        at[k] = in[k] + i;
        mask |= (reinterpret_cast<uintptr_t>(at[k]) % 16 == 0 ? 1u : 0u) << k;
    }
    const uintptr_t dd = reinterpret_cast<uintptr_t>(out + i);
    /* A destination that is also a source has its lines read anyway:
       streaming would save nothing there, and would evict what it reads. */
    bool readsDestination = false;
    for (int k = 0; k < Op::kIn; ++k)
        readsDestination = readsDestination || in[k] == out;
    if (dd % 16 == 0 && !readsDestination && body * sizeof(double) >= kStreamFromBytes) {
        blocksFor<Op, kStoreStream>(mask, op, at, out + i, body);
        pd::endStreaming();
    } else if (dd % 16 == 0) {
        blocksFor<Op, kStoreAligned>(mask, op, at, out + i, body);
    }
    else if (dd % 8 == 0)
        blocksFor<Op, kStoreUnaligned>(mask, op, at, out + i, body);
    else
        blocks<Op, 0, kStoreHalves, true>(op, at, out + i, body);
    for (i += body; i < nd; i += Op::kStep)
        step(op, in, out, i);
}

/* The loop of the column over nd doubles. */
template <class Op>
inline void run(const Op& op, const double* const* in, double* out, size_t nd)
{
    if constexpr (kPackedKernels)
        runPacked(op, in, out, nd);
    else
        runScalar(op, in, out, nd);
}

} // namespace ew
OMN_COLUMN_END

#endif /* OMN_VECTOR_ELEMENTWISE_H */
