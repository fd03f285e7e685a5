/*
 * memkernels.h - the byte-count copy, the overlapping move and the pattern
 * fill, compiled into each column.  Include only from column sources (after
 * core/column.h); everything here lands in namespace omn::<column>::mem.
 *
 * Column points (everything else is the same code):
 *   kNtCopyBytes / kNtFillBytes  from which size copies and fills bypass the
 *                                cache (w7 256 KiB / 512 KiB, t7 512 KiB for
 *                                both, a6 its own sizes with 8-byte stores);
 *   streamBlock / kNtAlign       16-byte non-temporal stores in w7/t7, two
 *                                8-byte ones in a6;
 *   loadBlock                    t7 loads with LDDQU;
 *   moveDirection                px counts the distance in whole elements;
 *   moveBytes                    px moves with a byte loop.
 */
#ifndef OMN_VECTOR_MEMKERNELS_H
#define OMN_VECTOR_MEMKERNELS_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "core/column.h"

OMN_COLUMN_BEGIN
namespace mem {

constexpr size_t KiB = 1024;

#if OMN_COLUMN_INDEX == 3
constexpr size_t kNtCopyBytes = 512 * KiB;
constexpr size_t kNtFillBytes = 512 * KiB;
#elif OMN_COLUMN_INDEX == 2
constexpr size_t kNtCopyBytes = 256 * KiB;
constexpr size_t kNtFillBytes = 512 * KiB;
#elif OMN_COLUMN_INDEX == 1
constexpr size_t kNtCopyBytes = 256 * KiB;
constexpr size_t kNtFillBytes = 256 * KiB;
#endif

/* Below 64 bytes: 8-byte, 4-byte and single-byte moves. */
inline void copySmall(const uint8_t* s, uint8_t* d, size_t n)
{
    for (; n >= 8; n -= 8, s += 8, d += 8)
        memcpy(d, s, 8);
    if (n >= 4) {
        memcpy(d, s, 4);
        s += 4; d += 4; n -= 4;
    }
    for (; n != 0; --n)
        *d++ = *s++;
}

#if OMN_SIMD >= 2
using Block = __m128i;
#  if OMN_SIMD >= 3
inline Block loadBlock(const uint8_t* p) { return _mm_lddqu_si128(reinterpret_cast<const __m128i*>(p)); }
#  else
inline Block loadBlock(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
#  endif
inline void storeBlockU(uint8_t* p, Block v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void storeBlockA(uint8_t* p, Block v) { _mm_store_si128(reinterpret_cast<__m128i*>(p), v); }
/* Non-temporal: 16 bytes at a 16-aligned address. */
constexpr size_t kNtAlign = 16;
inline void streamBlock(uint8_t* p, Block v) { _mm_stream_si128(reinterpret_cast<__m128i*>(p), v); }
inline void endStreaming() { _mm_sfence(); }
#elif OMN_SIMD == 1
using Block = __m128;
inline Block loadBlock(const uint8_t* p) { return _mm_loadu_ps(reinterpret_cast<const float*>(p)); }
inline void storeBlockU(uint8_t* p, Block v) { _mm_storeu_ps(reinterpret_cast<float*>(p), v); }
inline void storeBlockA(uint8_t* p, Block v) { _mm_store_ps(reinterpret_cast<float*>(p), v); }
/* Non-temporal: two 8-byte stores at an 8-aligned address. */
constexpr size_t kNtAlign = 8;
inline void streamBlock(uint8_t* p, Block v)
{
    alignas(16) __m64 half[2];
    _mm_store_ps(reinterpret_cast<float*>(half), v);
    _mm_stream_pi(reinterpret_cast<__m64*>(p), half[0]);
    _mm_stream_pi(reinterpret_cast<__m64*>(p + 8), half[1]);
}
inline void endStreaming() { _mm_sfence(); _mm_empty(); }
#endif

#if OMN_SIMD >= 1

/* The block loop of the cache-bypassing copy: n >= 16 bytes, d 16-aligned,
   64 bytes a turn, the last block stored unaligned at the end after the
   fence. */
inline void streamCopy(const uint8_t* s, uint8_t* d, size_t n)
{
    size_t i = 0;
    for (; i + 64 <= n; i += 64) {
        const Block a = loadBlock(s + i), b = loadBlock(s + i + 16);
        const Block c = loadBlock(s + i + 32), e = loadBlock(s + i + 48);
        streamBlock(d + i, a); streamBlock(d + i + 16, b);
        streamBlock(d + i + 32, c); streamBlock(d + i + 48, e);
    }
    for (; i + 16 <= n; i += 16)
        streamBlock(d + i, loadBlock(s + i));
    endStreaming();   /* fence before the ordinary store of the tail */
    if (i != n)
        storeBlockU(d + n - 16, loadBlock(s + n - 16));
}

/* The byte-count copy behind every Copy form.  The arrays don't overlap.
   Small counts take the simple moves; large ones, to a destination aligned
   for the column's non-temporal store, bypass the cache with the column's
   own block loop; the range between goes to the C runtime's memcpy, which
   is tuned for the machine and faster in cache than 16-byte blocks. */
inline void copyBytes(const uint8_t* s, uint8_t* d, size_t n)
{
    if (n < 64) {
        copySmall(s, d, n);
        return;
    }
    if (n >= kNtCopyBytes && reinterpret_cast<uintptr_t>(d) % kNtAlign == 0) {
        const size_t head = (16 - reinterpret_cast<uintptr_t>(d) % 16) % 16;
        copySmall(s, d, head);
        streamCopy(s + head, d + head, n - head);
        return;
    }
    memcpy(d, s, n);
}

/* Fill n bytes with a pattern whose period divides 16: byte k of the
   destination gets pat[k % 16]. */
inline void fillPattern(uint8_t* d, size_t n, const uint8_t pat[16])
{
    if (n < 64) {
        size_t k = 0;
        for (; k + 8 <= n; k += 8)
            memcpy(d + k, pat + (k & 15), 8);
        for (; k < n; ++k)
            d[k] = pat[k & 15];
        return;
    }
    uint8_t twice[32];
    memcpy(twice, pat, 16);
    memcpy(twice + 16, pat, 16);
    const size_t head = (16 - reinterpret_cast<uintptr_t>(d) % 16) % 16;
    storeBlockU(d, loadBlock(twice));
    const Block v = loadBlock(twice + head);          /* pattern seen from d + head */
    uint8_t* p = d + head;
    const size_t body = (n - head) & ~size_t(15);
    if (n >= kNtFillBytes) {
        /* Whole 64-byte lines a turn, so that each line leaves the
           write-combining buffer complete. */
        size_t i = 0;
        for (; i + 64 <= body; i += 64) {
            streamBlock(p + i, v); streamBlock(p + i + 16, v);
            streamBlock(p + i + 32, v); streamBlock(p + i + 48, v);
        }
        for (; i < body; i += 16)
            streamBlock(p + i, v);
        endStreaming();
    } else {
        for (size_t i = 0; i < body; i += 16)
            storeBlockA(p + i, v);
    }
    storeBlockU(d + n - 16, loadBlock(twice + ((n - 16) & 15)));
}

#else  /* portable kernels */

/* The portable copy is the C runtime's memcpy: the platform's tuned
   routine is the fastest portable way to move a byte count. */
inline void copyBytes(const uint8_t* s, uint8_t* d, size_t n) { memcpy(d, s, n); }

inline void fillPattern(uint8_t* d, size_t n, const uint8_t pat[16])
{
    size_t k = 0;
    for (; k + 8 <= n; k += 8)
        memcpy(d + k, pat + (k & 15), 8);
    for (; k < n; ++k)
        d[k] = pat[k & 15];
}

#endif

/* Zero is a fill of the byte count with zero bits in every column: the C
   runtime's memset, which clears without reading the lines it writes. */
inline void zeroBytes(void* d, size_t n) { memset(d, 0, n); }

/* Fill n elements with val: the element repeated into a 16-byte pattern. */
template <typename T>
inline void fillElements(T* d, size_t n, const T& val)
{
    static_assert(16 % sizeof(T) == 0, "element size must divide 16");
#if OMN_SIMD >= 1
    uint8_t pat[16];
    for (size_t k = 0; k < 16; k += sizeof(T))
        memcpy(pat + k, &val, sizeof(T));
    fillPattern(reinterpret_cast<uint8_t*>(d), n * sizeof(T), pat);
#else
    /* Element by element through memcpy, which makes no assumption on the
       alignment of d and compiles to a plain store. */
    uint8_t* p = reinterpret_cast<uint8_t*>(d);
    for (size_t i = 0; i < n; ++i)
        memcpy(p + i * sizeof(T), &val, sizeof(T));
#endif
}

/* Which way a Move copies: > 0 forward, < 0 backward, 0 not at all.
   px counts the distance pSrc - pDst in whole elements, rounded down, so a
   source less than one element above the destination counts as no distance
   and nothing moves, while one less than an element below it still moves.
   The other columns look at the byte distance. */
inline ptrdiff_t moveDirection(const void* src, const void* dst, size_t elemSize)
{
    const ptrdiff_t bytes = reinterpret_cast<intptr_t>(src) - reinterpret_cast<intptr_t>(dst);
#if OMN_COLUMN_INDEX == 0
    const ptrdiff_t e = static_cast<ptrdiff_t>(elemSize);
    return bytes >= 0 ? bytes / e : -((-bytes + e - 1) / e);
#else
    (void)elemSize;
    return bytes;
#endif
}

/* The Move kernel: n bytes, overlap allowed.  Disjoint arrays take the
   column's copy (and its cache bypass for large data); overlapping ones
   the C runtime's memmove, which picks the safe direction itself. */
inline void moveBytes(const uint8_t* s, uint8_t* d, size_t n, ptrdiff_t direction)
{
#if OMN_SIMD >= 1
    (void)direction;
    const bool disjoint = d + n <= s || s + n <= d;
    if (disjoint)
        copyBytes(s, d, n);
    else
        memmove(d, s, n);
#else
    /* A plain byte loop, unrolled by five, in the direction given. */
    size_t i = 0;
    if (direction > 0) {
        for (; i + 5 <= n; i += 5) {
            d[i] = s[i]; d[i + 1] = s[i + 1]; d[i + 2] = s[i + 2];
            d[i + 3] = s[i + 3]; d[i + 4] = s[i + 4];
        }
        for (; i < n; ++i)
            d[i] = s[i];
    } else {
        i = n;
        for (; i >= 5; i -= 5) {
            d[i - 1] = s[i - 1]; d[i - 2] = s[i - 2]; d[i - 3] = s[i - 3];
            d[i - 4] = s[i - 4]; d[i - 5] = s[i - 5];
        }
        while (i != 0) {
            --i;
            d[i] = s[i];
        }
    }
#endif
}

} // namespace mem
OMN_COLUMN_END

#endif /* OMN_VECTOR_MEMKERNELS_H */
