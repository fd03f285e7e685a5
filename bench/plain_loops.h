// Hand-written loops for comparison with the library's kernels.
#ifndef OMN_BENCH_PLAIN_LOOPS_H
#define OMN_BENCH_PLAIN_LOOPS_H

#include "omns.h"

namespace omn {
namespace bench {

void plainAdd(const double* a, const double* b, double* d, int n);
void plainMul(const double* a, const double* b, double* d, int n);
void plainDiv(const double* a, const double* b, double* d, int n);   // b / a, like Div
void plainSqrt(const double* a, double* d, int n);
void plainMulComplex(const Omn64fc* a, const Omn64fc* b, Omn64fc* d, int n);
void plainAddProduct(const double* a, const double* b, double* d, int n);
// Product of two Perm spectra of even length n.
void plainMulPerm(const double* a, const double* b, double* d, int n);

} // namespace bench
} // namespace omn

#endif
