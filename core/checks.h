/*
 * checks.h - the argument checks that almost every export starts with:
 * each pointer in argument order (-8), then the length (below 1 is -6).
 *
 *     if (const OmnStatus st = checkArgs(len, pSrc, pDst))
 *         return st;
 *
 * Column code includes it after core/column.h; being a template it is
 * compiled into each column's namespace by the including source.
 */
#ifndef OMN_CORE_CHECKS_H
#define OMN_CORE_CHECKS_H

#include "omns.h"

namespace omn {
namespace OMN_COL {

template <typename... P>
inline OmnStatus checkArgs(int len, const P*... pointers)
{
    if (((pointers == nullptr) || ...))
        return omnStatusNullPointer;
    if (len < 1)
        return omnStatusBadSize;
    return omnStatusOk;
}

} // namespace OMN_COL
} // namespace omn

#endif /* OMN_CORE_CHECKS_H */
