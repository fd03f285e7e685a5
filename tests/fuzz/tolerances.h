/*
 * tolerances.h - where the columns may differ beyond the last places, as
 * their families document it.  The differential fuzzer accepts a difference
 * only through one of these; everything else is a finding.
 *
 * Each rule names the export (or its family) and the inputs for which the
 * columns' results are documented to differ, so that the same export on other
 * inputs is still held to agreement.
 */
#ifndef OMN_TESTS_FUZZ_TOLERANCES_H
#define OMN_TESTS_FUZZ_TOLERANCES_H

#include <float.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "omns.h"
#include "tests/robustness/args.h"

namespace omn {
namespace fuzz {

/* One array argument of a call, before and after each column ran. */
struct ArrayInfo {
    std::string name;
    robust::Kind kind = robust::Kind::Scalar;
    size_t part = 0;        /* bytes of one part (a complex element has two) */
    bool isFloat = false;
    bool isSigned = false;
    std::vector<uint8_t> orig;     /* the contents before any column ran */
    std::vector<uint8_t> out[4];   /* after column c ran on its own copy */

    static double read(const std::vector<uint8_t>& b, size_t at, size_t part, bool isFloat, bool isSigned)
    {
        if (isFloat) {
            if (part == 8) {
                double d;
                memcpy(&d, &b[at], 8);
                return d;
            }
            float f;
            memcpy(&f, &b[at], 4);
            return f;
        }
        uint64_t u = 0;
        memcpy(&u, &b[at], part);
        if (isSigned && part < 8 && (u >> (8 * part - 1)) & 1)
            u |= ~uint64_t(0) << (8 * part);
        return isSigned ? static_cast<double>(static_cast<int64_t>(u)) : static_cast<double>(u);
    }
    double value(int c, size_t p) const { return read(out[c], 32 + p * part, part, isFloat, isSigned); }
    double input(size_t p) const { return read(orig, 32 + p * part, part, isFloat, isSigned); }
};

struct Call {
    const char* name = "";
    int len = 0;
    OmnStatus status = 0;              /* px's */
    std::vector<std::string> names;    /* of the parameters, in order */
    std::vector<ArrayInfo> arrays;     /* one per parameter; kind Data for arrays */
    std::vector<double> scalars;       /* one per parameter; the value of a scalar */

    int index(const char* param) const
    {
        for (size_t i = 0; i < names.size(); ++i)
            if (names[i] == param)
                return static_cast<int>(i);
        return -1;
    }
    bool is(const char* n) const { return strcmp(name, n) == 0; }
    bool startsWith(const char* prefix) const { return strncmp(name, prefix, strlen(prefix)) == 0; }
    /* Part p of the named array before the call; NaN when there is none. */
    double in(const char* param, size_t p) const
    {
        const int i = index(param);
        return i < 0 || arrays[i].kind != robust::Kind::Data ? NAN : arrays[i].input(p);
    }
    double scalar(const char* param) const
    {
        const int i = index(param);
        return i < 0 ? NAN : scalars[i];
    }
    /* Whether any of the first len elements (parts) of an input satisfies f. */
    template <typename F>
    bool anyIn(const char* param, size_t partsPerElement, F f) const
    {
        for (size_t p = 0; p < static_cast<size_t>(len) * partsPerElement; ++p)
            if (f(in(param, p)))
                return true;
        return false;
    }
};

inline bool ordinary(double x) { return isfinite(x) && (x == 0 || fabs(x) >= 0x1p-1022); }
inline bool positiveNormal(double x) { return isfinite(x) && x >= 0x1p-1022; }

/* Exports the fuzzer leaves out: how much the rate changers write is set by
   their factor, which the fuzzer draws from the whole int range, and their
   one routine is shared by all columns. */
inline bool excluded(const char* name)
{
    return strncmp(name, "omnsSampleUp_", 13) == 0 || strncmp(name, "omnsSampleDown_", 15) == 0;
}

/* Square root: the columns keep their own tables for negative, zero, NaN,
   infinite and denormal arguments, and their own warning for -0 and NaN. */
inline bool sqrtSpecial(const Call& call, size_t p)
{
    const char* src = call.index("pSrc") >= 0 ? "pSrc" : "pSrcDst";
    if (call.is("omnsSqrt_64fc") || call.is("omnsSqrt_64fc_I")) {
        const size_t e = p & ~size_t(1);
        return !ordinary(call.in(src, e)) || !ordinary(call.in(src, e + 1)) || call.in(src, e) == 0 ||
               call.in(src, e + 1) == 0;
    }
    return !positiveNormal(call.in(src, p));
}

/* Division: each column keeps its own table for zero (and, in px/a6, NaN)
   divisors, with its own warning; w7/t7 divide through shared reciprocals,
   a few units off, and route blocks with extreme exponents differently. */
inline bool isDivision(const Call& call)
{
    return call.is("omnsDiv_64f") || call.is("omnsDiv_64fc") || call.is("omnsDiv_64f_I") ||
           call.is("omnsDiv_64fc_I");
}
inline const char* divisorOf(const Call& call) { return call.index("pSrc1") >= 0 ? "pSrc1" : "pSrc"; }
inline bool divisionSpecial(const Call& call, size_t p, double px, double other)
{
    const bool complex = call.is("omnsDiv_64fc") || call.is("omnsDiv_64fc_I");
    const size_t e = complex ? (p & ~size_t(1)) : p;
    const char* d = divisorOf(call);
    const char* n = call.index("pSrc2") >= 0 ? "pSrc2" : "pSrcDst";
    for (size_t q = e; q <= e + (complex ? 1 : 0); ++q)
        if (!ordinary(call.in(d, q)) || call.in(d, q) == 0 || !isfinite(call.in(n, q)))
            return true;
    const double big = 0x1p1000, small = 0x1p-1000;
    return !isfinite(px) || !isfinite(other) || fabs(px) > big || fabs(other) > big ||
           (px != 0 && fabs(px) < small) || (other != 0 && fabs(other) < small);
}

inline bool tolerateStatus(const Call& call, OmnStatus px, OmnStatus other, int col)
{
    (void)px;
    (void)other;
    (void)col;
    if (call.is("omnsSqrt_64f") || call.is("omnsSqrt_64f_I")) {
        const char* src = call.index("pSrc") >= 0 ? "pSrc" : "pSrcDst";
        return call.anyIn(src, 1, [](double x) { return isnan(x) || x == 0; });
    }
    if (isDivision(call)) {
        const size_t parts = call.is("omnsDiv_64fc") || call.is("omnsDiv_64fc_I") ? 2 : 1;
        return call.anyIn(divisorOf(call), parts, [](double x) { return isnan(x) || x == 0 || !ordinary(x); });
    }
    return false;
}

inline bool tolerateInteger(const Call& call, const char* param, int p, double px, double other, int col)
{
    (void)param;
    (void)p;
    /* w7/t7 scale a product through double precision: one off where the
       exact product needs more than 53 bits. */
    /* w7/t7 limit a NaN by a minimum first in the nearest, unscaled kernel:
       the upper limit where px and a6 give the lower one. */
    if (call.is("omnsConvert_32f16s_Sfs") && col >= 2 && isnan(call.in("pSrc", static_cast<size_t>(p))))
        return px == -32768 && other == 32767;
    if ((call.is("omnsMul_32s_Sfs") || call.is("omnsMul_32s_ISfs")) && col >= 2)
        return fabs(px - other) <= 1;
    return false;
}

inline bool tolerateFloat(const Call& call, const char* param, int p, double px, double other, int col)
{
    (void)param;
    (void)px;
    (void)other;
    (void)col;
    /* w7/t7 clamp with a minimum, then a maximum: a NaN becomes the upper
       limit where px and a6 give the lower one. */
    if (call.is("omnsConvert_64f32f") && col >= 2 && isnan(call.in("pSrc", static_cast<size_t>(p))))
        return px == -FLT_MAX && other == FLT_MAX;
    if (isDivision(call))
        return divisionSpecial(call, static_cast<size_t>(p), px, other);
    if (call.startsWith("omnsSqrt_64f"))
        return sqrtSpecial(call, static_cast<size_t>(p));
    return false;
}

} // namespace fuzz
} // namespace omn

#endif /* OMN_TESTS_FUZZ_TOLERANCES_H */
