/*
 * memkernels.h - the byte-count copy, the overlapping move and the pattern
 * fill, compiled into each column.  Include only from column sources (after
 * core/column.h); everything here lands in namespace omn::<column>::mem.
 *
 * Column points (everything else is the same code):
 *   kNtCopyBytes / kNtFillBytes  from which size copies and fills bypass the
 *                                cache (w7 256 KiB / 512 KiB, t7 512 KiB for
 *                                both, a6 its own sizes with 8-byte stores);
 *   loadBlock                    t7 loads with LDDQU;
 *   moveDirection                px counts the distance in whole elements.
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

/* Copy of n >= 16 bytes in 16-byte blocks, d already 16-aligned unless the
   caller says otherwise; the last block is stored unaligned at the end. */
template <bool kStream>
inline void copyBlocks(const uint8_t* s, uint8_t* d, size_t n)
{
    size_t i = 0;
    if (n >= 1024) {
        for (; i + 64 <= n; i += 64) {
            const Block a = loadBlock(s + i), b = loadBlock(s + i + 16);
            const Block c = loadBlock(s + i + 32), e = loadBlock(s + i + 48);
            if (kStream) {
                streamBlock(d + i, a); streamBlock(d + i + 16, b);
                streamBlock(d + i + 32, c); streamBlock(d + i + 48, e);
            } else {
                storeBlockA(d + i, a); storeBlockA(d + i + 16, b);
                storeBlockA(d + i + 32, c); storeBlockA(d + i + 48, e);
            }
        }
    }
    for (; i + 16 <= n; i += 16) {
        if (kStream)
            streamBlock(d + i, loadBlock(s + i));
        else
            storeBlockA(d + i, loadBlock(s + i));
    }
    if (kStream)
        endStreaming();   /* fence before the ordinary store of the tail */
    if (i != n)
        storeBlockU(d + n - 16, loadBlock(s + n - 16));
}

/* The byte-count copy behind every Copy form.  The arrays don't overlap. */
inline void copyBytes(const uint8_t* s, uint8_t* d, size_t n)
{
    if (n < 64) {
        copySmall(s, d, n);
        return;
    }
    if (n >= kNtCopyBytes && reinterpret_cast<uintptr_t>(d) % kNtAlign == 0) {
        /* Large data bypasses the cache. */
        const size_t head = (16 - reinterpret_cast<uintptr_t>(d) % 16) % 16;
        copySmall(s, d, head);
        copyBlocks<true>(s + head, d + head, n - head);
        return;
    }
    const size_t head = (16 - reinterpret_cast<uintptr_t>(d) % 16) % 16;
    if (head != 0)
        storeBlockU(d, loadBlock(s));   /* covers the head; no overlap, so rewriting is harmless */
    copyBlocks<false>(s + head, d + head, n - head);
}

/* Overlapping move of n bytes, 16 at a time in the safe direction: each
   block is loaded before any store that could reach it. */
inline void moveOverlapping(const uint8_t* s, uint8_t* d, size_t n, bool forward)
{
    if (forward) {
        size_t i = 0;
        for (; i + 16 <= n; i += 16)
            storeBlockU(d + i, loadBlock(s + i));
        for (; i < n; ++i)
            d[i] = s[i];
    } else {
        size_t i = n;
        for (; i >= 16; i -= 16)
            storeBlockU(d + i - 16, loadBlock(s + i - 16));
        while (i != 0) {
            --i;
            d[i] = s[i];
        }
    }
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
        for (size_t i = 0; i < body; i += 16)
            streamBlock(p + i, v);
        endStreaming();
    } else {
        for (size_t i = 0; i < body; i += 16)
            storeBlockA(p + i, v);
    }
    storeBlockU(d + n - 16, loadBlock(twice + ((n - 16) & 15)));
}

#else  /* portable kernels */

/* Scalar 8-byte words, four at a time, then the small moves. */
inline void copyBytes(const uint8_t* s, uint8_t* d, size_t n)
{
    for (; n >= 32; n -= 32, s += 32, d += 32) {
        uint64_t a, b, c, e;
        memcpy(&a, s, 8); memcpy(&b, s + 8, 8); memcpy(&c, s + 16, 8); memcpy(&e, s + 24, 8);
        memcpy(d, &a, 8); memcpy(d + 8, &b, 8); memcpy(d + 16, &c, 8); memcpy(d + 24, &e, 8);
    }
    copySmall(s, d, n);
}

inline void fillPattern(uint8_t* d, size_t n, const uint8_t pat[16])
{
    size_t k = 0;
    for (; k + 8 <= n; k += 8)
        memcpy(d + k, pat + (k & 15), 8);
    for (; k < n; ++k)
        d[k] = pat[k & 15];
}

#endif

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
    /* Element by element through memcpy: d need not be aligned to T. */
    for (size_t i = 0; i < n; ++i)
        memcpy(reinterpret_cast<uint8_t*>(d) + i * sizeof(T), &val, sizeof(T));
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

/* The Move kernel: n bytes, overlap allowed. */
inline void moveBytes(const uint8_t* s, uint8_t* d, size_t n, ptrdiff_t direction)
{
#if OMN_SIMD >= 1
    const bool disjoint = d + n <= s || s + n <= d;
    if (disjoint)
        copyBytes(s, d, n);
    else
        moveOverlapping(s, d, n, direction > 0);
#else
    /* A plain byte loop, unrolled by five. */
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
