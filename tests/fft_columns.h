/*
 * fft_columns.h - the tests' access to every column's FFT engine, derived
 * from fft/fft_list.h:  omn::test::fft::name[c]  is column c's operation
 * (0 px, 1 a6, 2 w7, 3 t7).  The engine isn't exported, so these are its
 * only callers besides the families that stand on it.
 */
#ifndef OMN_TESTS_FFT_COLUMNS_H
#define OMN_TESTS_FFT_COLUMNS_H

#include "fft/fft.h"

namespace omn {
namespace test {
namespace fft {

#define OMN_FFT_FN(ret, name, params) \
    inline constexpr ret (*const name[4]) params = { &px::name, &a6::name, &w7::name, &t7::name };
#include "fft/fft_list.h"
#undef OMN_FFT_FN

} // namespace fft
} // namespace test
} // namespace omn

#endif /* OMN_TESTS_FFT_COLUMNS_H */
