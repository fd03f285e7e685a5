/*
 * spec.cpp - the engine's objects: creation of both kinds of spec, their
 * work-memory size, destruction, and the complex transforms' entry (checks,
 * small orders, work memory) in front of the column's kernels.
 */
#include "core/column.h"

#include <math.h>
#include <stddef.h>
#include <string.h>

#include "core/alloc.h"
#include "fft/engine.h"

static_assert(offsetof(OmnFftSpecRecord, levelCross) + sizeof(void*) * kOmnFftMaxLevels ==
                  offsetof(OmnFftSpecRecord, bitRev) + sizeof(void*) * kOmnFftTableSlots,
              "the table pointers must be twelve consecutive words");

OMN_COLUMN_BEGIN

namespace {

constexpr int kMaxOrder = 30;

/* Frees every table the record holds (walking the twelve pointers as one
   array), clears the id so that a stale pointer is refused, and frees the
   record. */
void destroy(OmnFftSpecRecord* spec)
{
    unsigned char* slots = reinterpret_cast<unsigned char*>(spec) + offsetof(OmnFftSpecRecord, bitRev);
    for (int i = 0; i < kOmnFftTableSlots; ++i) {
        void* p;
        memcpy(&p, slots + i * sizeof(void*), sizeof(void*));
        common::omnsFree(p);
    }
    spec->id = 0;
    common::omnsFree(spec);
}

template <typename Spec>
OmnStatus create(Spec** ppSpec, int order, int flag, int hint, Omn32u id)
{
    if (ppSpec == nullptr)
        return omnStatusNullPointer;
    if (order < 0 || order > kMaxOrder)
        return omnStatusBadFftOrder;
    Spec* spec = static_cast<Spec*>(omnAllocBytes(sizeof(Spec)));
    if (spec == nullptr)
        return omnStatusNoMemory;
    memset(static_cast<void*>(spec), 0, sizeof(Spec));
    spec->id = id;
    spec->order = order;
    spec->hint = hint;
    /* N is 2^order for both kinds, although the real kind's core is half
       as long; the factor is one division by the exact power of two or its
       square root. */
    const double n = ldexp(1.0, order);
    switch (flag) {
    case kOmnFftNoDivByAny:
        break;
    case kOmnFftDivFwdByN:
        spec->scaleFwd = 1;
        spec->scale = 1.0 / n;
        break;
    case kOmnFftDivInvByN:
        spec->scaleInv = 1;
        spec->scale = 1.0 / n;
        break;
    case kOmnFftDivBySqrtN:
        spec->scaleFwd = 1;
        spec->scaleInv = 1;
        spec->scale = 1.0 / sqrt(n);
        break;
    default:
        destroy(spec);
        return omnStatusBadFftFlag;
    }
    if (order < 4) {
        *ppSpec = spec;
        return omnStatusOk;
    }
    OmnStatus st;
    if (id == kOmnCplxFftSpecId) {
        st = fft::buildComplexTables(spec, order, nullptr, 0);
    } else {
        /* The half-length core reads the sine table of the full order at
           step 2, and the recombination reads it at step 1. */
        double* sine = fft::makeSineTable(order);
        if (sine == nullptr) {
            st = omnStatusNoMemory;
        } else {
            st = fft::buildComplexTables(spec, order - 1, sine, order);
            if (st == omnStatusOk)
                st = fft::buildRecombTables(spec, order, sine);
            common::omnsFree(sine);
        }
    }
    if (st != omnStatusOk) {
        destroy(spec);
        return st;
    }
    *ppSpec = spec;
    return omnStatusOk;
}

OmnStatus getBufSize(const OmnFftSpecRecord* spec, Omn32u id, int* pSize)
{
    if (spec == nullptr)
        return omnStatusNullPointer;
    if (spec->id != id)
        return omnStatusContextMismatch;
    if (pSize == nullptr)
        return omnStatusNullPointer;
    *pSize = spec->bufSize;
    return omnStatusOk;
}

OmnStatus freeSpec(OmnFftSpecRecord* spec, Omn32u id)
{
    if (spec == nullptr)
        return omnStatusNullPointer;
    if (spec->id != id)
        return omnStatusContextMismatch;
    destroy(spec);
    return omnStatusOk;
}

template <bool Inv>
OmnStatus cplxTransform(const Omn64fc* pSrc, Omn64fc* pDst, const OmnCplxFftSpec* spec, Omn8u* pBuf)
{
    if (spec == nullptr)
        return omnStatusNullPointer;
    if (spec->id != kOmnCplxFftSpecId)
        return omnStatusContextMismatch;
    if (pSrc == nullptr || pDst == nullptr)
        return omnStatusNullPointer;
    const int order = spec->order;
    const bool scaled = (Inv ? spec->scaleInv : spec->scaleFwd) != 0;
    if (order < 4) {
        fft::kSmall[Inv][scaled][order](pSrc, pDst, spec->scale);
        return omnStatusOk;
    }
    void* own = nullptr;
    double* work = nullptr;
    if (const OmnStatus st = fft::acquireWork(spec, pBuf, &work, &own))
        return st;
    fft::transform(pSrc, pDst, spec, order, Inv, scaled, work);
    common::omnsFree(own);
    return omnStatusOk;
}

} // namespace

namespace fft {

OmnStatus acquireWork(const OmnFftSpecRecord* spec, Omn8u* pBuf, double** work, void** own)
{
    *work = nullptr;
    *own = nullptr;
    if (spec->bufSize <= 0)
        return omnStatusOk;
    if (pBuf == nullptr) {
        *own = omnAllocBytes(spec->bufSize);
        if (*own == nullptr)
            return omnStatusNoMemory;
        *work = static_cast<double*>(*own);
        return omnStatusOk;
    }
    /* The caller's buffer at any alignment: the 16 bytes of slack at the
       end of bufSize are for moving it up to a 16-byte boundary. */
    const uintptr_t a = (reinterpret_cast<uintptr_t>(pBuf) + 15) & ~uintptr_t(15);
    *work = reinterpret_cast<double*>(a);
    return omnStatusOk;
}

} // namespace fft

OmnStatus omnsCplxFftCreate_64fc(OmnCplxFftSpec** ppSpec, int order, int flag, int hint)
{
    return create(ppSpec, order, flag, hint, kOmnCplxFftSpecId);
}

OmnStatus omnsRealFftCreate_64f(OmnRealFftSpec** ppSpec, int order, int flag, int hint)
{
    return create(ppSpec, order, flag, hint, kOmnRealFftSpecId);
}

OmnStatus omnsCplxFftGetBufSize_64fc(const OmnCplxFftSpec* pSpec, int* pSize)
{
    return getBufSize(pSpec, kOmnCplxFftSpecId, pSize);
}

OmnStatus omnsRealFftGetBufSize_64f(const OmnRealFftSpec* pSpec, int* pSize)
{
    return getBufSize(pSpec, kOmnRealFftSpecId, pSize);
}

OmnStatus omnsCplxFftFwd_64fc(const Omn64fc* pSrc, Omn64fc* pDst, const OmnCplxFftSpec* pSpec, Omn8u* pBuf)
{
    return cplxTransform<false>(pSrc, pDst, pSpec, pBuf);
}

OmnStatus omnsCplxFftInv_64fc(const Omn64fc* pSrc, Omn64fc* pDst, const OmnCplxFftSpec* pSpec, Omn8u* pBuf)
{
    return cplxTransform<true>(pSrc, pDst, pSpec, pBuf);
}

/* Either kind's Free refuses the other kind's object with -17 and frees
   nothing. */
OmnStatus omnsCplxFftFree_64fc(OmnCplxFftSpec* pSpec) { return freeSpec(pSpec, kOmnCplxFftSpecId); }
OmnStatus omnsRealFftFree_64f(OmnRealFftSpec* pSpec) { return freeSpec(pSpec, kOmnRealFftSpecId); }

OMN_COLUMN_END
