// The plain loops that the arithmetic is measured against: what a caller
// would write by hand, compiled with the library's own flags (see
// bench/CMakeLists.txt), so that only the kernels differ.
#include "bench/plain_loops.h"

#include <math.h>

namespace omn {
namespace bench {

void plainAdd(const double* a, const double* b, double* d, int n)
{
    for (int i = 0; i < n; ++i)
        d[i] = a[i] + b[i];
}

void plainMul(const double* a, const double* b, double* d, int n)
{
    for (int i = 0; i < n; ++i)
        d[i] = a[i] * b[i];
}

void plainDiv(const double* a, const double* b, double* d, int n)
{
    for (int i = 0; i < n; ++i)
        d[i] = b[i] / a[i];
}

void plainSqrt(const double* a, double* d, int n)
{
    for (int i = 0; i < n; ++i)
        d[i] = sqrt(a[i]);
}

void plainMulComplex(const Omn64fc* a, const Omn64fc* b, Omn64fc* d, int n)
{
    for (int i = 0; i < n; ++i) {
        const double re = a[i].re * b[i].re - a[i].im * b[i].im;
        const double im = a[i].re * b[i].im + a[i].im * b[i].re;
        d[i].re = re;
        d[i].im = im;
    }
}

void plainAddProduct(const double* a, const double* b, double* d, int n)
{
    for (int i = 0; i < n; ++i)
        d[i] = d[i] + a[i] * b[i];
}

void plainMulPerm(const double* a, const double* b, double* d, int n)
{
    d[0] = a[0] * b[0];
    d[1] = a[1] * b[1];
    for (int i = 2; i < n; i += 2) {
        const double re = a[i] * b[i] - a[i + 1] * b[i + 1];
        const double im = a[i] * b[i + 1] + a[i + 1] * b[i];
        d[i] = re;
        d[i + 1] = im;
    }
}

} // namespace bench
} // namespace omn
