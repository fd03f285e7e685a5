/*
 * arith_support.h - what the arithmetic tests share: byte buffers that hand
 * out double arrays at any offset (so that the kernels' head, tail and
 * alignment variants all run), bit comparisons and ulp distances.
 *
 * Buffers are read and written with memcpy, since the arrays may sit at
 * offsets that are not a multiple of 8.
 */
#ifndef OMN_TESTS_ARITH_SUPPORT_H
#define OMN_TESTS_ARITH_SUPPORT_H

#include <math.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "omns.h"

namespace omn {
namespace test {

inline uint64_t bits(double x) { uint64_t b; memcpy(&b, &x, 8); return b; }
inline double fromBits(uint64_t b) { double x; memcpy(&x, &b, 8); return x; }

/* Distance in units in the last place between two finite doubles of the same
   sign region; a huge value when one is not finite and they differ. */
inline uint64_t ulps(double a, double b)
{
    if (bits(a) == bits(b) || (a == 0 && b == 0))
        return 0;
    if (!isfinite(a) || !isfinite(b))
        return UINT64_MAX;
    auto key = [](double x) {
        const int64_t i = static_cast<int64_t>(bits(x));
        return i < 0 ? INT64_MIN - i : i;
    };
    const int64_t ka = key(a), kb = key(b);
    return ka > kb ? static_cast<uint64_t>(ka - kb) : static_cast<uint64_t>(kb - ka);
}

/* A pattern of bytes around an array of doubles at a chosen byte offset from
   a 64-byte boundary; the guard bytes show writes outside the array. */
class Buf {
public:
    static constexpr size_t kGuard = 64;
    static constexpr uint8_t kFill = 0xA7;

    Buf(size_t n, size_t offset) : n_(n), raw_(n * 8 + 2 * kGuard + 64, kFill)
    {
        const uintptr_t base = reinterpret_cast<uintptr_t>(raw_.data()) + kGuard;
        const uintptr_t aligned = (base + 63) & ~uintptr_t(63);
        start_ = aligned - reinterpret_cast<uintptr_t>(raw_.data()) + offset;
    }

    double* p() { return reinterpret_cast<double*>(raw_.data() + start_); }
    Omn64fc* pc() { return reinterpret_cast<Omn64fc*>(p()); }
    double get(size_t i) const { double v; memcpy(&v, raw_.data() + start_ + 8 * i, 8); return v; }
    void set(size_t i, double v) { memcpy(raw_.data() + start_ + 8 * i, &v, 8); }
    size_t size() const { return n_; }

    /* No byte outside the array changed. */
    bool guardsIntact() const
    {
        for (size_t k = 0; k < start_; ++k)
            if (raw_[k] != kFill)
                return false;
        for (size_t k = start_ + 8 * n_; k < raw_.size(); ++k)
            if (raw_[k] != kFill)
                return false;
        return true;
    }

private:
    size_t n_;
    std::vector<uint8_t> raw_;
    size_t start_;
};

/* Deterministic values in [-scale, scale), never zero. */
class Rng {
public:
    explicit Rng(uint64_t seed) : s_(seed * 0x9E3779B97F4A7C15ull + 1) {}
    uint64_t next()
    {
        s_ ^= s_ << 13;
        s_ ^= s_ >> 7;
        s_ ^= s_ << 17;
        return s_;
    }
    double uniform(double scale)
    {
        const double u = static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0);
        const double v = (2 * u - 1) * scale;
        return v == 0 ? scale / 3 : v;
    }

private:
    uint64_t s_;
};

/* Byte offsets from a 64-byte boundary: 16-aligned, 8 past it, and not even
   8-aligned. */
inline const size_t kOffsets[] = { 0, 8, 4 };

} // namespace test
} // namespace omn

#endif /* OMN_TESTS_ARITH_SUPPORT_H */
