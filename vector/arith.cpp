/*
 * arith.cpp - Add, Sub, Mul, their constant forms, AddProduct, Sqr and Abs
 * on doubles and double complex.
 *
 * Every function checks its pointers in argument order (-8), then the length
 * (-6), and then runs one operation object through the column's loop
 * (vector/elementwise.h).  Complex arrays are interleaved doubles, so the
 * forms whose complex result is part by part (Add, Sub and the constant
 * Add/Sub) are real operations over twice the length.
 *
 * Two-source forms take the second source as minuend: Sub stores
 * pSrc2 - pSrc1, and the in-place Sub stores pSrcDst - pSrc.
 */
#include "core/column.h"
#include "core/checks.h"
#include "vector/elementwise.h"

#include <limits.h>
#include <stdint.h>

OMN_COLUMN_BEGIN

namespace {

using pd::Pd;

/* ---- operations ------------------------------------------------------- */
/* Sources in argument order: v[0] is pSrc1 (or pSrc), v[1] pSrc2 (or
   pSrcDst), v[2] the destination that AddProduct also reads. */

struct AddOp {
    static constexpr int kIn = 2, kStep = 1;
    double one(const double* v) const { return v[0] + v[1]; }
    Pd pair(const Pd* v) const { return v[0] + v[1]; }
};
struct SubOp {   /* second minus first */
    static constexpr int kIn = 2, kStep = 1;
    double one(const double* v) const { return v[1] - v[0]; }
    Pd pair(const Pd* v) const { return v[1] - v[0]; }
};
struct MulOp {
    static constexpr int kIn = 2, kStep = 1;
    double one(const double* v) const { return v[0] * v[1]; }
    Pd pair(const Pd* v) const { return v[0] * v[1]; }
};
struct AddProductOp {   /* d + x*y, one rounding for each operation */
    static constexpr int kIn = 3, kStep = 1;
    double one(const double* v) const { return v[2] + v[0] * v[1]; }
    Pd pair(const Pd* v) const { return v[2] + v[0] * v[1]; }
};
struct SqrOp {
    static constexpr int kIn = 1, kStep = 1;
    double one(const double* v) const { return v[0] * v[0]; }
    Pd pair(const Pd* v) const { return v[0] * v[0]; }
};
struct AbsOp {   /* clears the sign bit: -0 gives +0, and a NaN loses its sign */
    static constexpr int kIn = 1, kStep = 1;
    double one(const double* v) const { return pd::fromBits(pd::bitsOf(v[0]) & 0x7FFFFFFFFFFFFFFFull); }
    Pd pair(const Pd* v) const { return pd::andNot(pd::set1(-0.0), v[0]); }
};

/* Real constant forms; kStep 2 with a (re, im) constant gives the complex
   constant forms, which are the same lane by lane. */
template <int kStepT>
struct AddCOp {
    static constexpr int kIn = 1, kStep = kStepT;
    double c; Pd cv;
    double one(const double* v) const { return v[0] + c; }
    Pd pair(const Pd* v) const { return v[0] + cv; }
};
template <int kStepT>
struct SubCOp {
    static constexpr int kIn = 1, kStep = kStepT;
    double c; Pd cv;
    double one(const double* v) const { return v[0] - c; }
    Pd pair(const Pd* v) const { return v[0] - cv; }
};
template <int kStepT>
struct SubCRevOp {
    static constexpr int kIn = 1, kStep = kStepT;
    double c; Pd cv;
    double one(const double* v) const { return c - v[0]; }
    Pd pair(const Pd* v) const { return cv - v[0]; }
};
struct MulCOp {
    static constexpr int kIn = 1, kStep = 1;
    double c; Pd cv;
    double one(const double* v) const { return v[0] * c; }
    Pd pair(const Pd* v) const { return v[0] * cv; }
};

/* Complex operations, one element per pair. */
struct CMulOp {
    static constexpr int kIn = 2, kStep = 2;
    Pd pair(const Pd* v) const { return pd::cmul(v[0], v[1]); }
};
struct CMulCOp {
    static constexpr int kIn = 1, kStep = 2;
    Pd c;
    Pd pair(const Pd* v) const { return pd::cmul(v[0], c); }
};
struct CAddProductOp {
    static constexpr int kIn = 3, kStep = 2;
    Pd pair(const Pd* v) const { return pd::caddProduct(v[0], v[1], v[2]); }
};
struct CSqrOp {
    static constexpr int kIn = 1, kStep = 2;
    Pd pair(const Pd* v) const { return pd::csqr(v[0]); }
};

/* ---- shapes ------------------------------------------------------------ */

inline const double* dp(const Omn64f* p) { return p; }
inline const double* dp(const Omn64fc* p) { return reinterpret_cast<const double*>(p); }
inline double* dp(Omn64f* p) { return p; }
inline double* dp(Omn64fc* p) { return reinterpret_cast<double*>(p); }

template <class Op, typename T>
inline size_t doubles(int len) { return static_cast<size_t>(len) * (sizeof(T) / sizeof(double)); }

template <class Op, typename T>
OmnStatus binary(const Op& op, const T* pSrc1, const T* pSrc2, T* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pDst))
        return st;
    const double* in[2] = { dp(pSrc1), dp(pSrc2) };
    ew::run(op, in, dp(pDst), doubles<Op, T>(len));
    return omnStatusOk;
}

template <class Op, typename T>
OmnStatus binaryInPlace(const Op& op, const T* pSrc, T* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pSrcDst))
        return st;
    const double* in[2] = { dp(pSrc), dp(pSrcDst) };
    ew::run(op, in, dp(pSrcDst), doubles<Op, T>(len));
    return omnStatusOk;
}

template <class Op, typename T>
OmnStatus unary(const Op& op, const T* pSrc, T* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const double* in[1] = { dp(pSrc) };
    ew::run(op, in, dp(pDst), doubles<Op, T>(len));
    return omnStatusOk;
}

template <class Op, typename T>
OmnStatus unaryInPlace(const Op& op, T* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    const double* in[1] = { dp(pSrcDst) };
    ew::run(op, in, dp(pSrcDst), doubles<Op, T>(len));
    return omnStatusOk;
}

/* The complex Add and Sub forms test the length before any pointer and then
   run the real form over twice the length.  The doubling wraps at 2^32, so
   a length of 2^30 or more reaches the real form negative and is refused
   there. */
inline bool complexLengthBad(int len) { return len < 1; }
inline int doubledLength(int len) { return static_cast<int>(static_cast<uint32_t>(len) * 2u); }

/* The constant short cuts compare by "neither less nor greater", which holds
   for an equal constant and for a NaN one alike. */
inline bool sameAs(double val, double k) { return !(val < k) && !(val > k); }

inline Pd pairOf(Omn64fc v) { return pd::set(v.re, v.im); }

} // namespace

/* ---- Add, Sub, Mul ---------------------------------------------------- */

OmnStatus omnsAdd_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    return binary(AddOp{}, pSrc1, pSrc2, pDst, len);
}
OmnStatus omnsSub_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    return binary(SubOp{}, pSrc1, pSrc2, pDst, len);
}
OmnStatus omnsMul_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len)
{
    return binary(MulOp{}, pSrc1, pSrc2, pDst, len);
}
OmnStatus omnsAdd_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    return binaryInPlace(AddOp{}, pSrc, pSrcDst, len);
}
OmnStatus omnsSub_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    return binaryInPlace(SubOp{}, pSrc, pSrcDst, len);
}
OmnStatus omnsMul_64f_I(const Omn64f* pSrc, Omn64f* pSrcDst, int len)
{
    return binaryInPlace(MulOp{}, pSrc, pSrcDst, len);
}

OmnStatus omnsAdd_64fc(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len)
{
    if (complexLengthBad(len))
        return omnStatusBadSize;
    return OMN_COL::omnsAdd_64f(dp(pSrc1), dp(pSrc2), dp(pDst), doubledLength(len));
}
OmnStatus omnsSub_64fc(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len)
{
    if (complexLengthBad(len))
        return omnStatusBadSize;
    return OMN_COL::omnsSub_64f(dp(pSrc1), dp(pSrc2), dp(pDst), doubledLength(len));
}
OmnStatus omnsAdd_64fc_I(const Omn64fc* pSrc, Omn64fc* pSrcDst, int len)
{
    if (complexLengthBad(len))
        return omnStatusBadSize;
    return OMN_COL::omnsAdd_64f_I(dp(pSrc), dp(pSrcDst), doubledLength(len));
}
OmnStatus omnsSub_64fc_I(const Omn64fc* pSrc, Omn64fc* pSrcDst, int len)
{
    if (complexLengthBad(len))
        return omnStatusBadSize;
    return OMN_COL::omnsSub_64f_I(dp(pSrc), dp(pSrcDst), doubledLength(len));
}

OmnStatus omnsMul_64fc(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len)
{
    return binary(CMulOp{}, pSrc1, pSrc2, pDst, len);
}
OmnStatus omnsMul_64fc_I(const Omn64fc* pSrc, Omn64fc* pSrcDst, int len)
{
    return binaryInPlace(CMulOp{}, pSrc, pSrcDst, len);
}

/* ---- AddProduct --------------------------------------------------------- */

OmnStatus omnsAddProduct_64f(const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pSrcDst))
        return st;
    const double* in[3] = { pSrc1, pSrc2, pSrcDst };
    ew::run(AddProductOp{}, in, pSrcDst, static_cast<size_t>(len));
    return omnStatusOk;
}
OmnStatus omnsAddProduct_64fc(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc1, pSrc2, pSrcDst))
        return st;
    const double* in[3] = { dp(pSrc1), dp(pSrc2), dp(pSrcDst) };
    ew::run(CAddProductOp{}, in, dp(pSrcDst), 2 * static_cast<size_t>(len));
    return omnStatusOk;
}

/* ---- constants: AddC, SubC, SubCRev, MulC ------------------------------- */

OmnStatus omnsAddC_64f(const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (sameAs(val, 0.0))
        return OMN_COL::omnsCopy_64f(pSrc, pDst, len);
    return unary(AddCOp<1>{ val, pd::set1(val) }, pSrc, pDst, len);
}
OmnStatus omnsAddC_64f_I(Omn64f val, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (sameAs(val, 0.0))
        return omnStatusOk;
    return unaryInPlace(AddCOp<1>{ val, pd::set1(val) }, pSrcDst, len);
}
OmnStatus omnsSubC_64f(const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (sameAs(val, 0.0))
        return OMN_COL::omnsCopy_64f(pSrc, pDst, len);
    return unary(SubCOp<1>{ val, pd::set1(val) }, pSrc, pDst, len);
}
OmnStatus omnsSubC_64f_I(Omn64f val, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (sameAs(val, 0.0))
        return omnStatusOk;
    return unaryInPlace(SubCOp<1>{ val, pd::set1(val) }, pSrcDst, len);
}
OmnStatus omnsSubCRev_64f(const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len)
{
    return unary(SubCRevOp<1>{ val, pd::set1(val) }, pSrc, pDst, len);
}
OmnStatus omnsSubCRev_64f_I(Omn64f val, Omn64f* pSrcDst, int len)
{
    return unaryInPlace(SubCRevOp<1>{ val, pd::set1(val) }, pSrcDst, len);
}

/* MulC tests 1 first, so a NaN constant copies; then 0, which fills with
   zeros without reading the source. */
OmnStatus omnsMulC_64f(const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    if (sameAs(val, 1.0))
        return OMN_COL::omnsCopy_64f(pSrc, pDst, len);
    if (sameAs(val, 0.0))
        return OMN_COL::omnsZero_64f(pDst, len);
    return unary(MulCOp{ val, pd::set1(val) }, pSrc, pDst, len);
}
OmnStatus omnsMulC_64f_I(Omn64f val, Omn64f* pSrcDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrcDst))
        return st;
    if (sameAs(val, 1.0))
        return omnStatusOk;
    if (sameAs(val, 0.0))
        return OMN_COL::omnsZero_64f(pSrcDst, len);
    return unaryInPlace(MulCOp{ val, pd::set1(val) }, pSrcDst, len);
}

/* The complex constant forms have no short cut: a zero constant runs the
   loop like any other. */
OmnStatus omnsAddC_64fc(const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len)
{
    return unary(AddCOp<2>{ 0.0, pairOf(val) }, pSrc, pDst, len);
}
OmnStatus omnsAddC_64fc_I(Omn64fc val, Omn64fc* pSrcDst, int len)
{
    return unaryInPlace(AddCOp<2>{ 0.0, pairOf(val) }, pSrcDst, len);
}
OmnStatus omnsSubC_64fc(const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len)
{
    return unary(SubCOp<2>{ 0.0, pairOf(val) }, pSrc, pDst, len);
}
OmnStatus omnsSubC_64fc_I(Omn64fc val, Omn64fc* pSrcDst, int len)
{
    return unaryInPlace(SubCOp<2>{ 0.0, pairOf(val) }, pSrcDst, len);
}
OmnStatus omnsSubCRev_64fc(const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len)
{
    return unary(SubCRevOp<2>{ 0.0, pairOf(val) }, pSrc, pDst, len);
}
OmnStatus omnsSubCRev_64fc_I(Omn64fc val, Omn64fc* pSrcDst, int len)
{
    return unaryInPlace(SubCRevOp<2>{ 0.0, pairOf(val) }, pSrcDst, len);
}
OmnStatus omnsMulC_64fc(const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len)
{
    return unary(CMulCOp{ pairOf(val) }, pSrc, pDst, len);
}
OmnStatus omnsMulC_64fc_I(Omn64fc val, Omn64fc* pSrcDst, int len)
{
    return unaryInPlace(CMulCOp{ pairOf(val) }, pSrcDst, len);
}

/* ---- Sqr, Abs ------------------------------------------------------------ */

OmnStatus omnsSqr_64f(const Omn64f* pSrc, Omn64f* pDst, int len)   { return unary(SqrOp{}, pSrc, pDst, len); }
OmnStatus omnsSqr_64f_I(Omn64f* pSrcDst, int len)                  { return unaryInPlace(SqrOp{}, pSrcDst, len); }
OmnStatus omnsSqr_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len) { return unary(CSqrOp{}, pSrc, pDst, len); }
OmnStatus omnsSqr_64fc_I(Omn64fc* pSrcDst, int len)                { return unaryInPlace(CSqrOp{}, pSrcDst, len); }
OmnStatus omnsAbs_64f(const Omn64f* pSrc, Omn64f* pDst, int len)   { return unary(AbsOp{}, pSrc, pDst, len); }
OmnStatus omnsAbs_64f_I(Omn64f* pSrcDst, int len)                  { return unaryInPlace(AbsOp{}, pSrcDst, len); }

OMN_COLUMN_END
