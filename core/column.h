/*
 * column.h - compile-time identity of the column being built.
 *
 * Every source that holds column code is compiled four times, once per
 * column, with exactly one of OMN_COLUMN_px / _a6 / _w7 / _t7 defined by the
 * build.  All of its code goes inside OMN_COLUMN_BEGIN / OMN_COLUMN_END, i.e.
 * into namespace omn::<column>, so that no inline function or template
 * compiled with one column's instruction set can be merged into another
 * column by the linker.
 *
 *   OMN_COLUMN_INDEX  0 px, 1 a6, 2 w7, 3 t7: selects the column's documented
 *                     behaviour (the same on every target).
 *   OMN_SIMD          the instruction set the column may use for speed:
 *                     0 none, 1 SSE, 2 SSE2, 3 SSE3.  It is 0 for every column
 *                     on a target that is not x86, where the columns keep
 *                     their behaviour but run portable kernels.
 *
 * Only this header includes intrinsic headers, and only the one the column is
 * allowed: px includes none.
 */
#ifndef OMN_CORE_COLUMN_H
#define OMN_CORE_COLUMN_H

#include "omns.h"
#include "core/variants.h"

#if defined(OMN_COLUMN_px)
#  define OMN_COL px
#  define OMN_COLUMN_INDEX 0
#elif defined(OMN_COLUMN_a6)
#  define OMN_COL a6
#  define OMN_COLUMN_INDEX 1
#elif defined(OMN_COLUMN_w7)
#  define OMN_COL w7
#  define OMN_COLUMN_INDEX 2
#elif defined(OMN_COLUMN_t7)
#  define OMN_COL t7
#  define OMN_COLUMN_INDEX 3
#else
#  error "column code must be built with one of OMN_COLUMN_px/_a6/_w7/_t7"
#endif

#if defined(__x86_64__) || defined(__i386__)
#  define OMN_SIMD OMN_COLUMN_INDEX
#else
#  define OMN_SIMD 0
#endif

#if OMN_SIMD == 1
#  include <xmmintrin.h>
#elif OMN_SIMD == 2
#  include <emmintrin.h>
#elif OMN_SIMD == 3
#  include <pmmintrin.h>
#endif

#define OMN_COLUMN_BEGIN namespace omn { namespace OMN_COL {
#define OMN_COLUMN_END   } }

#endif /* OMN_CORE_COLUMN_H */
