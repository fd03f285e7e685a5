/*
 * kernel_px.cpp - the px/a6 complex transform: bit-reversal permutation,
 * the radix-4 decimation-in-time kernel up to order 9, the radix-2 top
 * passes of orders 10 and 11, and the blocked driver above.
 *
 * Data are interleaved (re, im) doubles throughout.  The kernel's working
 * set stays within 512 complex points (8 KiB); larger transforms are split
 * into rows that the kernel handles whole and columns that go through a
 * small buffer, so every pass runs in the first-level cache.
 */
#include "core/column.h"

#include <string.h>

#include "fft/engine.h"

OMN_COLUMN_BEGIN
namespace fft {

/* Bit reversal in place from the swap list: each pair a, b (offsets in
   doubles of complex index 2i and 2rev(i)) moves four values, each
   self-reversed value one.  Also used by the table builder. */
void permuteInPlaceInterleaved(double* d, int k, const Omn32s* t)
{
    if (k < 2)
        return;
    const int64_t n = int64_t(1) << k;
    double* lo = d;
    double* hi = d + n;
    auto swap = [](double* x, double* y) {
        const double r = x[0], i = x[1];
        x[0] = y[0];
        x[1] = y[1];
        y[0] = r;
        y[1] = i;
    };
    const Omn32s* p = t;
    for (; *p != 0; p += 2) {
        const int64_t a = p[0], b = p[1];
        swap(lo + a, lo + b);
        swap(lo + a + 2, hi + b);
        swap(hi + a, lo + b + 2);
        swap(hi + a + 2, hi + b + 2);
    }
    for (const Omn32s* end = t + n / 4; p != end; ++p)
        swap(lo + *p + 2, hi + *p);
}

#if OMN_COLUMN_INDEX <= 1

namespace {

/* The same moves as the in-place form, as copies from s to d. */
void permuteOutOfPlace(const double* s, double* d, int k, const Omn32s* t)
{
    const int64_t n = int64_t(1) << k;
    const double* slo = s;
    const double* shi = s + n;
    double* dlo = d;
    double* dhi = d + n;
    auto cp = [](double* x, const double* y) {
        x[0] = y[0];
        x[1] = y[1];
    };
    const Omn32s* p = t;
    for (; *p != 0; p += 2) {
        const int64_t a = p[0], b = p[1];
        cp(dlo + a, slo + b);
        cp(dlo + b, slo + a);
        cp(dlo + a + 2, shi + b);
        cp(dhi + b, slo + a + 2);
        cp(dhi + a, slo + b + 2);
        cp(dlo + b + 2, shi + a);
        cp(dhi + a + 2, shi + b + 2);
        cp(dhi + b + 2, shi + a + 2);
    }
    for (const Omn32s* end = t + n / 4; p != end; ++p) {
        const int64_t a = *p;
        cp(dlo + a, slo + a);
        cp(dlo + a + 2, shi + a);
        cp(dhi + a, slo + a + 2);
        cp(dhi + a + 2, shi + a + 2);
    }
}

/* One radix-4 butterfly of a pass: a1 (a quarter on) takes the second
   table power, a2 the first, a3 the third, since the quarters stand in
   bit-reversed order. */
template <bool Inv, bool Twiddled>
inline void radix4(double* p0, double* p1, double* p2, double* p3, const double* w)
{
    const double a0r = p0[0], a0i = p0[1];
    double u1r = p1[0], u1i = p1[1], u2r = p2[0], u2i = p2[1], u3r = p3[0], u3i = p3[1];
    if (Twiddled) {
        const double w1r = w[0], w2r = w[2], w3r = w[4];
        const double w1i = Inv ? -w[1] : w[1], w2i = Inv ? -w[3] : w[3], w3i = Inv ? -w[5] : w[5];
        const double b1r = u1r, b1i = u1i, b2r = u2r, b2i = u2i, b3r = u3r, b3i = u3i;
        u1r = b1r * w2r - b1i * w2i;
        u1i = b1r * w2i + b1i * w2r;
        u2r = b2r * w1r - b2i * w1i;
        u2i = b2r * w1i + b2i * w1r;
        u3r = b3r * w3r - b3i * w3i;
        u3i = b3r * w3i + b3i * w3r;
    }
    const double s0r = a0r + u1r, s0i = a0i + u1i, d0r = a0r - u1r, d0i = a0i - u1i;
    const double s1r = u2r + u3r, s1i = u2i + u3i, d1r = u2r - u3r, d1i = u2i - u3i;
    p0[0] = s0r + s1r;
    p0[1] = s0i + s1i;
    p2[0] = s0r - s1r;
    p2[1] = s0i - s1i;
    if (!Inv) {
        p1[0] = d0r + d1i;
        p1[1] = d0i - d1r;
        p3[0] = d0r - d1i;
        p3[1] = d0i + d1r;
    } else {
        p1[0] = d0r - d1i;
        p1[1] = d0i + d1r;
        p3[0] = d0r + d1i;
        p3[1] = d0i - d1r;
    }
}

/* The first pass on four adjacent values, in place: no twiddles, the
   middle input's sub-results at position 1. */
template <bool Inv>
inline void first4(double* a)
{
    const double s0r = a[0] + a[2], s0i = a[1] + a[3], d0r = a[0] - a[2], d0i = a[1] - a[3];
    const double s1r = a[4] + a[6], s1i = a[5] + a[7], d1r = a[4] - a[6], d1i = a[5] - a[7];
    a[0] = s0r + s1r;
    a[1] = s0i + s1i;
    a[4] = s0r - s1r;
    a[5] = s0i - s1i;
    if (!Inv) {
        a[2] = d0r + d1i;
        a[3] = d0i - d1r;
        a[6] = d0r - d1i;
        a[7] = d0i + d1r;
    } else {
        a[2] = d0r - d1i;
        a[3] = d0i + d1r;
        a[6] = d0r + d1i;
        a[7] = d0i - d1r;
    }
}

/* The radix-2 pass of length 8 on eight adjacent values: position j with
   W(8)^j, the multiplications by W(8) as (re + im) c and (im - re) c. */
template <bool Inv>
inline void radix2by8(double* a, double c)
{
    double* b = a + 8;
    double wr[4], wi[4];
    wr[0] = b[0];
    wi[0] = b[1];
    if (!Inv) {
        wr[1] = (b[2] + b[3]) * c;
        wi[1] = (b[3] - b[2]) * c;
        wr[2] = b[5];
        wi[2] = -b[4];
        wr[3] = (b[7] - b[6]) * c;
        wi[3] = (b[6] + b[7]) * -c;
    } else {
        wr[1] = (b[2] - b[3]) * c;
        wi[1] = (b[2] + b[3]) * c;
        wr[2] = -b[5];
        wi[2] = b[4];
        wr[3] = (b[6] + b[7]) * -c;
        wi[3] = (b[6] - b[7]) * c;
    }
    for (int j = 0; j < 4; ++j) {
        const double ar = a[2 * j], ai = a[2 * j + 1];
        a[2 * j] = ar + wr[j];
        a[2 * j + 1] = ai + wi[j];
        b[2 * j] = ar - wr[j];
        b[2 * j + 1] = ai - wi[j];
    }
}

/* The radix-4 kernel over bit-reversed data of order k (4 to 9), with the
   butterfly table of order k. */
template <bool Inv>
void kernel(double* d, int k, const double* tw)
{
    const int n = 1 << k;
    /* The first two passes in one sweep, so the data are loaded and stored
       once for both: groups of 16 (even order: two radix-4 passes, the
       second with the table's entries for length 16) or 8 (odd order: a
       radix-4 pass and a radix-2 pass with W(8) from entry N/8). */
    int len;
    if ((k & 1) == 0) {
        const int step = 6 * (n / 16);
        const double* w1 = tw + step;
        const double* w2 = w1 + step;
        const double* w3 = w2 + step;
        for (int i = 0; i < 2 * n; i += 32) {
            double v[32];
            memcpy(v, d + i, sizeof v);
            for (int s = 0; s < 32; s += 8)
                first4<Inv>(v + s);
            radix4<Inv, false>(v, v + 8, v + 16, v + 24, nullptr);
            radix4<Inv, true>(v + 2, v + 10, v + 18, v + 26, w1);
            radix4<Inv, true>(v + 4, v + 12, v + 20, v + 28, w2);
            radix4<Inv, true>(v + 6, v + 14, v + 22, v + 30, w3);
            memcpy(d + i, v, sizeof v);
        }
        len = 64;
    } else {
        const double c = tw[6 * (n / 8)];
        for (int i = 0; i < 2 * n; i += 16) {
            double v[16];
            memcpy(v, d + i, sizeof v);
            first4<Inv>(v);
            first4<Inv>(v + 8);
            radix2by8<Inv>(v, c);
            memcpy(d + i, v, sizeof v);
        }
        len = 32;
    }
    /* The whole leaf is in the first-level cache, so each twiddle is read
       once and applied to every group (butterfly index outermost). */
    for (; len <= n; len *= 4) {
        const int q = len / 4;
        const int step = 6 * (n / len);
        for (int g = 0; g < n; g += len) {
            double* p0 = d + 2 * g;
            double* p1 = p0 + 2 * q;
            double* p2 = p1 + 2 * q;
            double* p3 = p2 + 2 * q;
            radix4<Inv, false>(p0, p1, p2, p3, nullptr);
        }
        const double* w = tw + step;
        for (int j = 2; j < 2 * q; j += 2, w += step)
            for (int g = 0; g < n; g += len) {
                double* p0 = d + 2 * g + j;
                double* p1 = p0 + 2 * q;
                double* p2 = p1 + 2 * q;
                double* p3 = p2 + 2 * q;
                radix4<Inv, true>(p0, p1, p2, p3, w);
            }
    }
}

/* Orders 10 and 11: the kernel over blocks of 512 (scaled there), then
   radix-2 passes with the quarter-circle table.  A butterfly pair is done
   at once: j with w, j + M/2 with w rotated by -i (forward).  The loops
   walk 64-point chunks along the butterflies outermost, so a chunk's
   twiddles stay in cache over all groups of the pass. */
template <bool Inv>
void topPasses(double* d, int k, const OmnFftSpecRecord* spec, bool scaled)
{
    const int n = 1 << k;
    const int leaf = 1 << kPxLeafOrder;
    const double* leafTw = static_cast<const double*>(spec->leafTwiddle);
    const double* quad = static_cast<const double*>(spec->quadTwiddle);
    for (int b = n / leaf - 1; b >= 0; --b) {
        kernel<Inv>(d + 2 * b * leaf, kPxLeafOrder, leafTw);
        if (scaled)
            scaleDoubles(d + 2 * b * leaf, 2 * leaf, spec->scale);
    }
    const int chunk = 64;
    for (int m = leaf; m < n; m *= 2) {
        const int step = n / (2 * m);
        const int half = m / 2;
        for (int j0 = 0; j0 < half; j0 += chunk) {
            for (int g = 0; g < n; g += 2 * m) {
                double* a = d + 2 * g;
                double* b = a + 2 * m;
                for (int j = j0; j < j0 + chunk; ++j) {
                    const double wr = quad[2 * j * step];
                    const double wi = Inv ? -quad[2 * j * step + 1] : quad[2 * j * step + 1];
                    /* j: a + w b, a - w b */
                    {
                        const double br = b[2 * j], bi = b[2 * j + 1];
                        const double tr = br * wr - bi * wi, ti = br * wi + bi * wr;
                        const double ar = a[2 * j], ai = a[2 * j + 1];
                        a[2 * j] = ar + tr;
                        a[2 * j + 1] = ai + ti;
                        b[2 * j] = ar - tr;
                        b[2 * j + 1] = ai - ti;
                    }
                    /* j + M/2: w times -i (forward) or +i (inverse) */
                    {
                        const int h = j + half;
                        const double vr = Inv ? -wi : wi, vi = Inv ? wr : -wr;
                        const double br = b[2 * h], bi = b[2 * h + 1];
                        const double tr = br * vr - bi * vi, ti = br * vi + bi * vr;
                        const double ar = a[2 * h], ai = a[2 * h + 1];
                        a[2 * h] = ar + tr;
                        a[2 * h + 1] = ai + ti;
                        b[2 * h] = ar - tr;
                        b[2 * h + 1] = ai - ti;
                    }
                }
            }
        }
    }
}

/* One level of blocking over bit-reversed data of order k: rows by the
   leaf routine of their order (scaled there), then four columns at a time
   multiplied by the cross table into the buffer, an order-r kernel on each,
   and back. */
template <bool Inv>
void blocked(double* d, int k, int l, const OmnFftSpecRecord* spec, bool scaled, double* buf)
{
    /* The split tables reach order 30 in three levels. */
    if (l >= kOmnFftMaxLevels)
        __builtin_unreachable();
    const int r = kSplit[k];
    const int c = k - r;
    const int64_t rows = int64_t(1) << r, cols = int64_t(1) << c;
    for (int64_t p = 0; p < rows; ++p) {
        double* row = d + 2 * p * cols;
        if (c <= kPxLeafOrder) {
            kernel<Inv>(row, c, static_cast<const double*>(spec->leafTwiddle));
            if (scaled)
                scaleDoubles(row, 2 * cols, spec->scale);
        } else if (kSplit[c] == 0) {
            topPasses<Inv>(row, c, spec, scaled);
        } else {
            blocked<Inv>(row, c, l + 1, spec, scaled, buf);
        }
    }
    const double* cross = static_cast<const double*>(spec->levelCross[l]);
    const double* outer = static_cast<const double*>(spec->levelTwiddle[l]);
    for (int64_t j = 0; j < cols; j += 4) {
        for (int64_t p = 0; p < rows; ++p, cross += 8) {
            const double* src = d + 2 * (p * cols + j);
            for (int g = 0; g < 4; ++g) {
                const double xr = src[2 * g], xi = src[2 * g + 1];
                const double wr = cross[2 * g], wi = Inv ? -cross[2 * g + 1] : cross[2 * g + 1];
                double* o = buf + 2 * (g * rows + p);
                o[0] = xr * wr - xi * wi;
                o[1] = xr * wi + xi * wr;
            }
        }
        for (int g = 0; g < 4; ++g)
            kernel<Inv>(buf + 2 * g * rows, r, outer);
        for (int64_t p = 0; p < rows; ++p) {
            double* dst = d + 2 * (p * cols + j);
            for (int g = 0; g < 4; ++g) {
                dst[2 * g] = buf[2 * (g * rows + p)];
                dst[2 * g + 1] = buf[2 * (g * rows + p) + 1];
            }
        }
    }
}

template <bool Inv>
void run(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool scaled, double* work)
{
    double* d = reinterpret_cast<double*>(dst);
    const Omn32s* rev = static_cast<const Omn32s*>(spec->bitRev);
    if (src == dst)
        permuteInPlaceInterleaved(d, k, rev);
    else
        permuteOutOfPlace(reinterpret_cast<const double*>(src), d, k, rev);
    if (k <= kPxLeafOrder) {
        kernel<Inv>(d, k, static_cast<const double*>(spec->leafTwiddle));
        if (scaled)
            scaleDoubles(d, size_t(2) << k, spec->scale);
    } else if (kSplit[k] == 0) {
        topPasses<Inv>(d, k, spec, scaled);
    } else {
        blocked<Inv>(d, k, 0, spec, scaled, work);
    }
}

} // namespace

void transform(const Omn64fc* src, Omn64fc* dst, const OmnFftSpecRecord* spec, int k, bool inv, bool scaled,
               double* work)
{
    /* A core below order 4 (a real spec of order 4 and less) is one of the
       straight-line routines. */
    if (k < 4) {
        kSmall[inv][scaled][k](src, dst, spec->scale);
        return;
    }
    if (inv)
        run<true>(src, dst, spec, k, scaled, work);
    else
        run<false>(src, dst, spec, k, scaled, work);
}

#endif

} // namespace fft
OMN_COLUMN_END
