/*
 * copy.cpp - Copy, Move, Set and Zero.
 *
 * Forms of the same element size share one routine: the kernels see only a
 * byte count, so Copy_16sc and Copy_32f, or Copy_32fc and Copy_64f, are the
 * same code.
 */
#include "core/column.h"
#include "core/checks.h"
#include "vector/memkernels.h"

OMN_COLUMN_BEGIN

namespace {

template <size_t kElem>
OmnStatus copyChecked(const void* pSrc, void* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    mem::copyBytes(static_cast<const uint8_t*>(pSrc), static_cast<uint8_t*>(pDst),
                   static_cast<size_t>(len) * kElem);
    return omnStatusOk;
}

template <size_t kElem>
OmnStatus moveChecked(const void* pSrc, void* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pSrc, pDst))
        return st;
    const ptrdiff_t direction = mem::moveDirection(pSrc, pDst, kElem);
    if (direction != 0)
        mem::moveBytes(static_cast<const uint8_t*>(pSrc), static_cast<uint8_t*>(pDst),
                       static_cast<size_t>(len) * kElem, direction);
    return omnStatusOk;
}

template <size_t kElem>
OmnStatus zeroChecked(void* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    mem::zeroBytes(pDst, static_cast<size_t>(len) * kElem);
    return omnStatusOk;
}

template <typename T>
OmnStatus setChecked(const T& val, T* pDst, int len)
{
    if (const OmnStatus st = checkArgs(len, pDst))
        return st;
    mem::fillElements(pDst, static_cast<size_t>(len), val);
    return omnStatusOk;
}

} // namespace

OmnStatus omnsCopy_8u(const Omn8u* pSrc, Omn8u* pDst, int len)       { return copyChecked<1>(pSrc, pDst, len); }
OmnStatus omnsCopy_16s(const Omn16s* pSrc, Omn16s* pDst, int len)    { return copyChecked<2>(pSrc, pDst, len); }
OmnStatus omnsCopy_16sc(const Omn16sc* pSrc, Omn16sc* pDst, int len) { return copyChecked<4>(pSrc, pDst, len); }
OmnStatus omnsCopy_32f(const Omn32f* pSrc, Omn32f* pDst, int len)    { return copyChecked<4>(pSrc, pDst, len); }
OmnStatus omnsCopy_32fc(const Omn32fc* pSrc, Omn32fc* pDst, int len) { return copyChecked<8>(pSrc, pDst, len); }
OmnStatus omnsCopy_64f(const Omn64f* pSrc, Omn64f* pDst, int len)    { return copyChecked<8>(pSrc, pDst, len); }
OmnStatus omnsCopy_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len) { return copyChecked<16>(pSrc, pDst, len); }

OmnStatus omnsMove_8u(const Omn8u* pSrc, Omn8u* pDst, int len)       { return moveChecked<1>(pSrc, pDst, len); }
OmnStatus omnsMove_16s(const Omn16s* pSrc, Omn16s* pDst, int len)    { return moveChecked<2>(pSrc, pDst, len); }
OmnStatus omnsMove_16sc(const Omn16sc* pSrc, Omn16sc* pDst, int len) { return moveChecked<4>(pSrc, pDst, len); }
OmnStatus omnsMove_32f(const Omn32f* pSrc, Omn32f* pDst, int len)    { return moveChecked<4>(pSrc, pDst, len); }
OmnStatus omnsMove_32fc(const Omn32fc* pSrc, Omn32fc* pDst, int len) { return moveChecked<8>(pSrc, pDst, len); }
OmnStatus omnsMove_64f(const Omn64f* pSrc, Omn64f* pDst, int len)    { return moveChecked<8>(pSrc, pDst, len); }
OmnStatus omnsMove_64fc(const Omn64fc* pSrc, Omn64fc* pDst, int len) { return moveChecked<16>(pSrc, pDst, len); }

/* All-zero bits: +0.0 in every part. */
OmnStatus omnsZero_64f(Omn64f* pDst, int len)   { return zeroChecked<8>(pDst, len); }
OmnStatus omnsZero_64fc(Omn64fc* pDst, int len) { return zeroChecked<16>(pDst, len); }

OmnStatus omnsSet_32s(Omn32s val, Omn32s* pDst, int len)    { return setChecked(val, pDst, len); }
OmnStatus omnsSet_32sc(Omn32sc val, Omn32sc* pDst, int len) { return setChecked(val, pDst, len); }
OmnStatus omnsSet_64f(Omn64f val, Omn64f* pDst, int len)    { return setChecked(val, pDst, len); }
OmnStatus omnsSet_64fc(Omn64fc val, Omn64fc* pDst, int len) { return setChecked(val, pDst, len); }

OMN_COLUMN_END
