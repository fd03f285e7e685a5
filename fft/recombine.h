/*
 * recombine.h - the inverse real recombination step, shared by the
 * recombination sweeps of real.cpp and the core's first pass that takes
 * the recombination in (kernel.cpp).  Include from column sources only.
 *
 * The real inverse of N = 2M points turns X (Perm or Pack) into the M
 * complex values Z whose inverse core transform is x.  Z_k and its mirror
 * Z_(M-k) come from X_k and X_(M-k) together, with the factors C, S of k
 * from the table recombInv: pairs k, k + 1 for odd k, laid out
 * C(k) C(k+1) S(k) S(k+1).
 */
#ifndef OMN_FFT_RECOMBINE_H
#define OMN_FFT_RECOMBINE_H

#include <stddef.h>
#include <stdint.h>

#include "core/column.h"
#include "omns.h"

OMN_COLUMN_BEGIN
namespace fft {

/* X_k = a + i c and its mirror X_j = b + i e (j = M - k) with the factors
   C, S of k: Z_k = kre + i kim and Z_j = jre + i jim.  On doubles (one k) or
   on pairs (k and k + 1 with j and j - 1). */
template <typename T>
inline void inverseStep(T a, T c, T b, T e, T C, T S, T& kre, T& kim, T& jre, T& jim)
{
    const T amb = a - b, cpe = c + e, apb = a + b, cme = c - e;
    const T P = S * amb - C * cpe;
    const T Q = amb * C + cpe * S;
    kre = apb + P;
    kim = cme + Q;
    jre = apb - P;
    jim = Q - cme;
}

/* Where the factor C of k (1 <= k <= M/2) stands in the table; S is two
   places on. */
inline size_t inverseFactorAt(size_t k) { return 4 * ((k - 1) / 2) + ((k - 1) & 1); }

/* The Perm or Pack values of a real inverse as the recombination reads
   them: value i (from 2 on) at s[i - shift] (Perm shift 0, Pack 1), with
   R0 and R(N/2) apart. */
struct InverseInput {
    const double* s;
    int shift;
    double r0, rHalf;
    const double* table;   /* recombInv */
    size_t m;              /* M = N/2 */

    /* Z_k to zk and Z_(M-k) to zj, 1 <= k <= M/2 (k = M/2 writes its own
       mirror twice, with the same value). */
    void pair(size_t k, double* zk, double* zj) const
    {
        const size_t j = m - k, g = inverseFactorAt(k);
        inverseStep(s[2 * k - shift], s[2 * k + 1 - shift], s[2 * j - shift], s[2 * j + 1 - shift], table[g],
                    table[g + 2], zk[0], zk[1], zj[0], zj[1]);
    }
    /* Z_0, its own mirror. */
    void zero(double* z0) const
    {
        z0[0] = r0 + rHalf;
        z0[1] = r0 - rHalf;
    }
};

/* The recombination by groups of the core's first pass, R = 4 or 8 places
   each: group i holds Z at b + u M/R (u = 0 to R - 1), b = rev(i) by the
   bit-reversal table (entry (R/4) i holds 2b).  The mirrors of a group's
   places, M - b - u M/R = b' + (R - 1 - u) M/R with b' = M/R - b, make up
   the group of b', so the two groups come from the same R/2 steps each;
   b = 0 and b = M/(2R) are groups of their own.  Calls emit(i, z) once per
   group with its R values in natural order (re, im at z[2u], z[2u+1]).
   The walk goes by group index, or, BySource, by b (rev is its own
   inverse, so the group of b is the table's entry for b): the input then
   comes in order, and the groups go out scattered. */
template <int R, bool BySource = false, typename Emit>
inline void forEachMirrorGroup(const InverseInput& x, const Omn32s* rev, Emit emit)
{
    const size_t q = x.m / R;
    auto groupOf = [&](size_t g) { return static_cast<size_t>(static_cast<uint32_t>(rev[(R / 4) * g]) / 2); };
    for (size_t step = 0; step < q; ++step) {
        const size_t i = BySource ? groupOf(step) : step;
        const size_t b = BySource ? step : groupOf(step), bm = (q - b) & (q - 1);
        if (bm < b)
            continue;   /* done with its mirror group */
        double z0[2 * R], z1[2 * R];
        if (b == 0) {
            /* Z0, the middle term M/2 (its own mirror), and u M/R with
               (R - u) M/R. */
            x.zero(z0);
            for (int u = 1; u <= R / 2; ++u)
                x.pair(u * q, z0 + 2 * u, z0 + 2 * (R - u));
            emit(i, z0);
        } else if (b == bm) {
            for (int u = 0; u < R / 2; ++u)
                x.pair(b + u * q, z0 + 2 * u, z0 + 2 * (R - 1 - u));
            emit(i, z0);
        } else {
            for (int u = 0; u < R / 2; ++u) {
                x.pair(b + u * q, z0 + 2 * u, z1 + 2 * (R - 1 - u));
                x.pair(bm + u * q, z1 + 2 * u, z0 + 2 * (R - 1 - u));
            }
            emit(i, z0);
            emit(groupOf(bm), z1);
        }
    }
}

} // namespace fft
OMN_COLUMN_END

#endif /* OMN_FFT_RECOMBINE_H */
