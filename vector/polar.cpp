/*
 * polar.cpp - magnitude, squared magnitude and phase, in double and in
 * scaled integers, and the conversions between Cartesian and polar form.
 *
 * Column points:
 *   magnitude kernels   w7/t7 take two elements a step with a packed root;
 *                       the value is the same correctly rounded
 *                       sqrt(re*re + im*im) as px/a6 compute one at a time.
 *   sinCosProcessor     px/a6 take the sine and cosine of each phase from
 *                       the processor's own x87 instructions, in extended
 *                       precision, and multiply by the magnitude there.
 *   sinCosPacked        w7/t7 run their own packed sine and cosine, which
 *                       agree with them to the last places.
 *   phaseKernel         px/a6 take the C runtime's atan2(im, re); w7/t7 a
 *                       packed arctangent of their own, within the last
 *                       places, with the runtime's for zero and non-finite
 *                       parts.
 * The integer forms are the same code everywhere, with the runtime's atan2.
 */
#include "core/column.h"
#include "core/checks.h"
#include "core/cpu.h"

#include <math.h>
#include <stdint.h>
#include <string.h>

#include "vector/memkernels.h"

OMN_COLUMN_BEGIN

namespace {

inline size_t count(int len) { return static_cast<size_t>(len); }

inline const double* parts(const Omn64fc* p) { return reinterpret_cast<const double*>(p); }
inline double* parts(Omn64fc* p) { return reinterpret_cast<double*>(p); }

/* ---- magnitude and phase of doubles ------------------------------------ */

/* The plain formula: no scaling against overflow, so parts beyond about
   1.3e154 give infinity.  re and im are read with a stride (2 for
   interleaved input, 1 for split arrays). */
void magnitudeKernel(const double* re, const double* im, size_t stride, double* d, size_t n)
{
    size_t i = 0;
#if OMN_SIMD >= 2
    if (stride == 2) {
        for (; i + 2 <= n; i += 2) {
            const __m128d a = _mm_loadu_pd(re + 2 * i), b = _mm_loadu_pd(re + 2 * i + 2);
            const __m128d r = _mm_unpacklo_pd(a, b), m = _mm_unpackhi_pd(a, b);
            _mm_storeu_pd(d + i, _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(r, r), _mm_mul_pd(m, m))));
        }
    } else {
        for (; i + 2 <= n; i += 2) {
            const __m128d r = _mm_loadu_pd(re + i), m = _mm_loadu_pd(im + i);
            _mm_storeu_pd(d + i, _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(r, r), _mm_mul_pd(m, m))));
        }
    }
#endif
    for (; i < n; ++i) {
        const double r = re[stride * i], m = im[stride * i];
        d[i] = sqrt(r * r + m * m);
    }
}

#if OMN_COLUMN_INDEX >= 2 && OMN_SIMD >= 2

/* The packed phase of w7 and t7: atan of the smaller over the larger part,
   by an odd polynomial around 0, 1/2 or 1, then moved to its octant.  Pairs
   with a zero, infinite or NaN part go to the C runtime's atan2, so that
   the axes and the signed zeros come out exactly as in px and a6. */
constexpr double kAtanHalfHi = 4.63647609000806093515e-01, kAtanHalfLo = 2.26987774529616870924e-17;
constexpr double kAtanOneHi  = 7.85398163397448278999e-01, kAtanOneLo  = 3.06161699786838301793e-17;
constexpr double kPio2Hi2 = 1.57079632679489655800e+00, kPio2Lo2 = 6.12323399573676603587e-17;
constexpr double kPiHi = 3.14159265358979311600e+00, kPiLo = 1.22464679914735317723e-16;
constexpr double kAT[11] = { 3.33333333333329318027e-01, -1.99999999998764832476e-01, 1.42857142725034663711e-01,
                             -1.11111104054623557880e-01, 9.09088713343650656196e-02, -7.69187620504482999495e-02,
                             6.66107313738753120669e-02, -5.83357013379057348645e-02, 4.97687799461593236017e-02,
                             -3.65315727442169155270e-02, 1.62858201153657823623e-02 };

inline __m128d sel(__m128d m, __m128d a, __m128d b) { return _mm_or_pd(_mm_and_pd(m, a), _mm_andnot_pd(m, b)); }

/* atan(t) for t in [0, 1]. */
inline __m128d atanUnit(__m128d t)
{
    const __m128d one = _mm_set1_pd(1.0), two = _mm_set1_pd(2.0);
    const __m128d mHalf = _mm_cmpge_pd(t, _mm_set1_pd(0.4375));
    const __m128d mOne = _mm_cmpge_pd(t, _mm_set1_pd(0.6875));
    const __m128d num = sel(mOne, _mm_sub_pd(t, one), sel(mHalf, _mm_sub_pd(_mm_mul_pd(two, t), one), t));
    const __m128d den = sel(mOne, _mm_add_pd(t, one), sel(mHalf, _mm_add_pd(two, t), one));
    const __m128d x = _mm_div_pd(num, den);
    const __m128d hi = _mm_and_pd(mHalf, sel(mOne, _mm_set1_pd(kAtanOneHi), _mm_set1_pd(kAtanHalfHi)));
    const __m128d lo = _mm_and_pd(mHalf, sel(mOne, _mm_set1_pd(kAtanOneLo), _mm_set1_pd(kAtanHalfLo)));
    const __m128d z = _mm_mul_pd(x, x), w = _mm_mul_pd(z, z);
    __m128d s1 = _mm_add_pd(_mm_set1_pd(kAT[8]), _mm_mul_pd(w, _mm_set1_pd(kAT[10])));
    s1 = _mm_add_pd(_mm_set1_pd(kAT[6]), _mm_mul_pd(w, s1));
    s1 = _mm_add_pd(_mm_set1_pd(kAT[4]), _mm_mul_pd(w, s1));
    s1 = _mm_add_pd(_mm_set1_pd(kAT[2]), _mm_mul_pd(w, s1));
    s1 = _mm_mul_pd(z, _mm_add_pd(_mm_set1_pd(kAT[0]), _mm_mul_pd(w, s1)));
    __m128d s2 = _mm_add_pd(_mm_set1_pd(kAT[7]), _mm_mul_pd(w, _mm_set1_pd(kAT[9])));
    s2 = _mm_add_pd(_mm_set1_pd(kAT[5]), _mm_mul_pd(w, s2));
    s2 = _mm_add_pd(_mm_set1_pd(kAT[3]), _mm_mul_pd(w, s2));
    s2 = _mm_mul_pd(w, _mm_add_pd(_mm_set1_pd(kAT[1]), _mm_mul_pd(w, s2)));
    /* hi - ((x*(s1+s2) - lo) - x); with hi = lo = 0 this is x - x*(s1+s2). */
    return _mm_sub_pd(hi, _mm_sub_pd(_mm_sub_pd(_mm_mul_pd(x, _mm_add_pd(s1, s2)), lo), x));
}

/* atan2(y, x) for a pair; false when a part is zero or not finite. */
inline bool atan2Packed(__m128d y, __m128d x, __m128d& r)
{
    const __m128d absMask = _mm_castsi128_pd(_mm_set1_epi64x(0x7FFFFFFFFFFFFFFFLL));
    const __m128d ax = _mm_and_pd(x, absMask), ay = _mm_and_pd(y, absMask);
    const __m128d zero = _mm_setzero_pd(), inf = _mm_set1_pd(HUGE_VAL);
    const __m128d ok = _mm_and_pd(_mm_and_pd(_mm_cmpgt_pd(ax, zero), _mm_cmplt_pd(ax, inf)),
                                  _mm_and_pd(_mm_cmpgt_pd(ay, zero), _mm_cmplt_pd(ay, inf)));
    if (_mm_movemask_pd(ok) != 3)
        return false;
    const __m128d steep = _mm_cmpgt_pd(ay, ax);
    const __m128d t = _mm_div_pd(sel(steep, ax, ay), sel(steep, ay, ax));
    const __m128d a = atanUnit(t);
    /* The octant: a, pi/2 - a, pi/2 + a or pi - a, as base + (+-a + the
       base's low part), so that the large base is added last. */
    const __m128d left = _mm_cmplt_pd(x, zero);
    const __m128d base = sel(steep, _mm_set1_pd(kPio2Hi2), _mm_and_pd(left, _mm_set1_pd(kPiHi)));
    const __m128d baseLo = sel(steep, _mm_set1_pd(kPio2Lo2), _mm_and_pd(left, _mm_set1_pd(kPiLo)));
    const __m128d negate = _mm_and_pd(_mm_xor_pd(steep, left), _mm_set1_pd(-0.0));
    const __m128d u = _mm_xor_pd(a, _mm_andnot_pd(absMask, negate));
    const __m128d v = _mm_add_pd(base, _mm_add_pd(u, baseLo));
    r = _mm_or_pd(v, _mm_andnot_pd(absMask, y));   /* the sign of y */
    return true;
}

void phaseKernel(const double* re, const double* im, size_t stride, double* d, size_t n)
{
    size_t i = 0;
    for (; i + 2 <= n; i += 2) {
        __m128d x, y, r;
        if (stride == 2) {
            const __m128d a = _mm_loadu_pd(re + 2 * i), b = _mm_loadu_pd(re + 2 * i + 2);
            x = _mm_unpacklo_pd(a, b);
            y = _mm_unpackhi_pd(a, b);
        } else {
            x = _mm_loadu_pd(re + i);
            y = _mm_loadu_pd(im + i);
        }
        if (atan2Packed(y, x, r)) {
            _mm_storeu_pd(d + i, r);
        } else {
            d[i] = atan2(im[stride * i], re[stride * i]);
            d[i + 1] = atan2(im[stride * (i + 1)], re[stride * (i + 1)]);
        }
    }
    for (; i < n; ++i)
        d[i] = atan2(im[stride * i], re[stride * i]);
}

#else

/* The C runtime's atan2(im, re). */
void phaseKernel(const double* re, const double* im, size_t stride, double* d, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        d[i] = atan2(im[stride * i], re[stride * i]);
}

#endif

/* ---- sine and cosine of PolarToCart ------------------------------------ */

#if OMN_COLUMN_INDEX < 2

/* The processor's own sine and cosine: a processor-access function of the
   frame, which holds the instructions themselves. */
inline void sinCosProcessor(double m, double p, double& re, double& im)
{
    omnProcessorSinCos(m, p, &re, &im);
}

/* Writes element i's parts at re[i * stride] and im[i * stride]. */
void polarToCart(const double* mag, const double* ph, double* re, double* im, size_t stride, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        sinCosProcessor(mag[i], ph[i], re[stride * i], im[stride * i]);
}

#else /* w7, t7 */

/* pi/2 in three pieces; the first two have 33 significant bits, so that
   k times either is exact for |k| < 2^20. */
constexpr double kTwoOverPi = 6.36619772367581382433e-01;
constexpr double kPio2Hi  = 1.57079632673412561417e+00;
constexpr double kPio2Mid = 6.07710050630396597660e-11;
constexpr double kPio2Lo  = 2.02226624879595063154e-21;
/* Packed reduction is used below this size of phase. */
constexpr double kPackedLimit = 524288.0;

/* Odd and even polynomials on [-pi/4, pi/4]. */
constexpr double kS1 = -1.66666666666666324348e-01, kS2 = 8.33333333332248946124e-03,
                 kS3 = -1.98412698298579493134e-04, kS4 = 2.75573137070700676789e-06,
                 kS5 = -2.50507602534068634195e-08, kS6 = 1.58969099521155010221e-10;
constexpr double kC1 = 4.16666666666666019037e-02, kC2 = -1.38888888888741095749e-03,
                 kC3 = 2.48015872894767294178e-05, kC4 = -2.75573143513906633035e-07,
                 kC5 = 2.08757232129817482790e-09, kC6 = -1.13596475577881948265e-11;

/* Scalar form of the same reduction and polynomials, for single
   elements. */
inline void sinCosScalar(double p, double& s, double& c)
{
    if (!(fabs(p) <= kPackedLimit)) {   /* large, infinite or NaN */
        s = sin(p);
        c = cos(p);
        return;
    }
    /* k as an integer first, so that a zero k is +0 and a phase of -0
       keeps its sign through the reduction. */
    const int k = static_cast<int>(nearbyint(p * kTwoOverPi));
    const double fk = k;
    const double r = ((p - fk * kPio2Hi) - fk * kPio2Mid) - fk * kPio2Lo;
    const double z = r * r;
    /* The odd part has the sign of r; stating it keeps -0 from becoming
       +0 in the sum. */
    const double ps = copysign(r + r * z * (kS1 + z * (kS2 + z * (kS3 + z * (kS4 + z * (kS5 + z * kS6))))), r);
    const double hz = 0.5 * z, w = 1.0 - hz;
    const double pc = w + (((1.0 - w) - hz) + z * z * (kC1 + z * (kC2 + z * (kC3 + z * (kC4 + z * (kC5 + z * kC6))))));
    const double sq = (k & 1) ? pc : ps, cq = (k & 1) ? ps : pc;
    s = (k & 2) ? -sq : sq;
    c = ((k + 1) & 2) ? -cq : cq;
}

inline void scalarElement(const double* mag, const double* ph, double* re, double* im, size_t stride, size_t i)
{
    double s, c;
    sinCosScalar(ph[i], s, c);
    re[stride * i] = mag[i] * c;
    im[stride * i] = mag[i] * s;
}

#  if OMN_SIMD >= 2
inline __m128d selectPd(__m128d m, __m128d a, __m128d b)
{
    return _mm_or_pd(_mm_and_pd(m, a), _mm_andnot_pd(m, b));
}

/* Two phases at once.  Returns false, computing nothing, when either is
   too large for the packed reduction (or not finite). */
inline bool sinCosPacked(__m128d p, __m128d& s, __m128d& c)
{
    const __m128d absMask = _mm_castsi128_pd(_mm_set1_epi64x(0x7FFFFFFFFFFFFFFFLL));
    if (_mm_movemask_pd(_mm_cmple_pd(_mm_and_pd(p, absMask), _mm_set1_pd(kPackedLimit))) != 3)
        return false;
    const __m128i k = _mm_cvtpd_epi32(_mm_mul_pd(p, _mm_set1_pd(kTwoOverPi)));
    const __m128d fk = _mm_cvtepi32_pd(k);
    const __m128d r = _mm_sub_pd(_mm_sub_pd(_mm_sub_pd(p, _mm_mul_pd(fk, _mm_set1_pd(kPio2Hi))),
                                            _mm_mul_pd(fk, _mm_set1_pd(kPio2Mid))),
                                 _mm_mul_pd(fk, _mm_set1_pd(kPio2Lo)));
    const __m128d z = _mm_mul_pd(r, r);
#    define OMN_C(x) _mm_set1_pd(x)
    __m128d ps = _mm_add_pd(OMN_C(kS5), _mm_mul_pd(z, OMN_C(kS6)));
    ps = _mm_add_pd(OMN_C(kS4), _mm_mul_pd(z, ps));
    ps = _mm_add_pd(OMN_C(kS3), _mm_mul_pd(z, ps));
    ps = _mm_add_pd(OMN_C(kS2), _mm_mul_pd(z, ps));
    ps = _mm_add_pd(OMN_C(kS1), _mm_mul_pd(z, ps));
    ps = _mm_add_pd(r, _mm_mul_pd(_mm_mul_pd(r, z), ps));
    ps = _mm_or_pd(ps, _mm_andnot_pd(absMask, r));   /* the sign of r, for -0 */
    __m128d pc = _mm_add_pd(OMN_C(kC5), _mm_mul_pd(z, OMN_C(kC6)));
    pc = _mm_add_pd(OMN_C(kC4), _mm_mul_pd(z, pc));
    pc = _mm_add_pd(OMN_C(kC3), _mm_mul_pd(z, pc));
    pc = _mm_add_pd(OMN_C(kC2), _mm_mul_pd(z, pc));
    pc = _mm_add_pd(OMN_C(kC1), _mm_mul_pd(z, pc));
    const __m128d hz = _mm_mul_pd(OMN_C(0.5), z);
    const __m128d w = _mm_sub_pd(OMN_C(1.0), hz);
    pc = _mm_add_pd(w, _mm_add_pd(_mm_sub_pd(_mm_sub_pd(OMN_C(1.0), w), hz), _mm_mul_pd(_mm_mul_pd(z, z), pc)));
#    undef OMN_C
    /* Quadrant k mod 4: odd k swaps sine and cosine; bit 1 of k negates
       the sine, bit 1 of k + 1 the cosine.  Each k is spread over a 64-bit
       lane first. */
    const __m128i kk = _mm_shuffle_epi32(k, _MM_SHUFFLE(1, 1, 0, 0));
    const __m128i one = _mm_set1_epi32(1), two = _mm_set_epi32(0, 2, 0, 2);
    const __m128d swap = _mm_castsi128_pd(_mm_cmpeq_epi32(_mm_and_si128(kk, one), one));
    const __m128d sNeg = _mm_castsi128_pd(_mm_slli_epi64(_mm_and_si128(kk, two), 62));
    const __m128d cNeg = _mm_castsi128_pd(_mm_slli_epi64(_mm_and_si128(_mm_add_epi32(kk, one), two), 62));
    s = _mm_xor_pd(selectPd(swap, pc, ps), sNeg);
    c = _mm_xor_pd(selectPd(swap, ps, pc), cNeg);
    return true;
}
#  endif

void polarToCart(const double* mag, const double* ph, double* re, double* im, size_t stride, size_t n)
{
    size_t i = 0;
#  if OMN_SIMD >= 2
    for (; i + 2 <= n; i += 2) {
        __m128d s, c;
        if (!sinCosPacked(_mm_loadu_pd(ph + i), s, c)) {
            scalarElement(mag, ph, re, im, stride, i);
            scalarElement(mag, ph, re, im, stride, i + 1);
            continue;
        }
        const __m128d m = _mm_loadu_pd(mag + i);
        const __m128d x = _mm_mul_pd(m, c), y = _mm_mul_pd(m, s);
        if (stride == 2) {
            _mm_storeu_pd(re + 2 * i, _mm_unpacklo_pd(x, y));
            _mm_storeu_pd(re + 2 * i + 2, _mm_unpackhi_pd(x, y));
        } else {
            _mm_storeu_pd(re + i, x);
            _mm_storeu_pd(im + i, y);
        }
    }
#  endif
    for (; i < n; ++i)
        scalarElement(mag, ph, re, im, stride, i);
}

#endif

/* ---- integer forms --------------------------------------------------- */

/* 2^e by exact doubling or halving; |e| <= 32 here. */
inline double exactPow2(int e)
{
    double k = 1.0;
    for (; e > 0; --e)
        k *= 2.0;
    for (; e < 0; ++e)
        k *= 0.5;
    return k;
}

/* v truncated toward zero, or the largest value above 2147483647.0;
   v >= 0. */
inline Omn32s truncOrMax(double v)
{
    return v > 2147483647.0 ? 2147483647 : static_cast<Omn32s>(v);
}

void magnitudeInt(const Omn32sc* s, Omn32s* d, size_t n, int sf)
{
    if (sf >= 33) {
        mem::zeroBytes(d, n * sizeof(Omn32s));
        return;
    }
    if (sf < -30) {
        for (size_t i = 0; i < n; ++i)
            d[i] = (s[i].re != 0 || s[i].im != 0) ? 2147483647 : 0;
        return;
    }
    /* Rounded half up: the magnitude is never negative. */
    const double k = exactPow2(-sf);
    for (size_t i = 0; i < n; ++i) {
        const double re = s[i].re, im = s[i].im;
        d[i] = truncOrMax(sqrt(re * re + im * im) * k + 0.5);
    }
}

/* Truncated, not rounded: (re*re + im*im) * 2^-sf with the factor from pow,
   which may be infinite or zero; a NaN (0 times infinity) is not "at most
   2147483647.0" and so saturates. */
void magSquaredInt(const Omn32sc* s, Omn32s* d, size_t n, int sf)
{
    const double k = pow(2.0, -static_cast<double>(sf));
    for (size_t i = 0; i < n; ++i) {
        const double re = s[i].re, im = s[i].im;
        const double v = (re * re + im * im) * k;
        d[i] = v <= 2147483647.0 ? static_cast<Omn32s>(v) : 2147483647;
    }
}

/* atan2(im, re) * 2^-sf, rounded half away from zero by adding +-0.5 and
   truncating.  A NaN (0 times an infinite factor) converts to the integer
   indefinite value of the x86 conversions, -2147483648. */
void phaseInt(const Omn32sc* s, Omn32s* d, size_t n, int sf)
{
    if (sf == 0) {
        /* The phase lies within +-pi: no range test. */
        for (size_t i = 0; i < n; ++i) {
            double v = atan2(static_cast<double>(s[i].im), static_cast<double>(s[i].re));
            v += v < 0 ? -0.5 : 0.5;
            d[i] = static_cast<Omn32s>(v);
        }
        return;
    }
    const double k = pow(2.0, -static_cast<double>(sf));
    for (size_t i = 0; i < n; ++i) {
        double v = atan2(static_cast<double>(s[i].im), static_cast<double>(s[i].re)) * k;
        v += v < 0 ? -0.5 : 0.5;
        if (v >= 2147483648.0)
            d[i] = 2147483647;
        else if (v < -2147483648.0 || v != v)
            d[i] = -2147483647 - 1;
        else
            d[i] = static_cast<Omn32s>(v);
    }
}

} // namespace

/* ---- double forms ---------------------------------------------------- */

OmnStatus omnsMagnitude_64fc(const Omn64fc* pSrc, Omn64f* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        magnitudeKernel(parts(pSrc), parts(pSrc) + 1, 2, pDst, count(len));
    return st;
}

OmnStatus omnsMagnitude_64f(const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrcRe, pSrcIm, pDst);
    if (st == omnStatusOk)
        magnitudeKernel(pSrcRe, pSrcIm, 1, pDst, count(len));
    return st;
}

OmnStatus omnsPhase_64fc(const Omn64fc* pSrc, Omn64f* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        phaseKernel(parts(pSrc), parts(pSrc) + 1, 2, pDst, count(len));
    return st;
}

OmnStatus omnsPhase_64f(const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pSrcRe, pSrcIm, pDst);
    if (st == omnStatusOk)
        phaseKernel(pSrcRe, pSrcIm, 1, pDst, count(len));
    return st;
}

/* No checks of their own: the magnitude and the phase both run, and the
   magnitude's fault, if any, is the one reported. */
OmnStatus omnsCartToPolar_64fc(const Omn64fc* pSrc, Omn64f* pDstMagn, Omn64f* pDstPhase, int len)
{
    const OmnStatus magn = omn::OMN_COL::omnsMagnitude_64fc(pSrc, pDstMagn, len);
    const OmnStatus phase = omn::OMN_COL::omnsPhase_64fc(pSrc, pDstPhase, len);
    return magn != omnStatusOk ? magn : phase;
}

OmnStatus omnsCartToPolar_64f(const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDstMagn, Omn64f* pDstPhase, int len)
{
    const OmnStatus magn = omn::OMN_COL::omnsMagnitude_64f(pSrcRe, pSrcIm, pDstMagn, len);
    const OmnStatus phase = omn::OMN_COL::omnsPhase_64f(pSrcRe, pSrcIm, pDstPhase, len);
    return magn != omnStatusOk ? magn : phase;
}

OmnStatus omnsPolarToCart_64f(const Omn64f* pSrcMagn, const Omn64f* pSrcPhase, Omn64f* pDstRe, Omn64f* pDstIm, int len)
{
    const OmnStatus st = checkArgs(len, pSrcMagn, pSrcPhase, pDstRe, pDstIm);
    if (st == omnStatusOk)
        polarToCart(pSrcMagn, pSrcPhase, pDstRe, pDstIm, 1, count(len));
    return st;
}

/* The destination is tested before the sources. */
OmnStatus omnsPolarToCart_64fc(const Omn64f* pSrcMagn, const Omn64f* pSrcPhase, Omn64fc* pDst, int len)
{
    const OmnStatus st = checkArgs(len, pDst, pSrcMagn, pSrcPhase);
    if (st == omnStatusOk)
        polarToCart(pSrcMagn, pSrcPhase, parts(pDst), parts(pDst) + 1, 2, count(len));
    return st;
}

/* ---- integer forms --------------------------------------------------- */

OmnStatus omnsMagnitude_32sc_Sfs(const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        magnitudeInt(pSrc, pDst, count(len), scaleFactor);
    return st;
}

OmnStatus omnsMagSquared_32sc32s_Sfs(const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        magSquaredInt(pSrc, pDst, count(len), scaleFactor);
    return st;
}

OmnStatus omnsPhase_32sc_Sfs(const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor)
{
    const OmnStatus st = checkArgs(len, pSrc, pDst);
    if (st == omnStatusOk)
        phaseInt(pSrc, pDst, count(len), scaleFactor);
    return st;
}

OMN_COLUMN_END
