/*
 * variants.h - declarations of every column variant, derived from the export
 * list: omn::px::name ... omn::t7::name for per-column exports, and
 * omn::common::name for the functions that serve all columns.
 */
#ifndef OMN_CORE_VARIANTS_H
#define OMN_CORE_VARIANTS_H

#include "omns.h"

/* Hidden: the variants are internal to the library, and being hidden makes
   their addresses link-time constants, so that the dispatch table is plain
   constant data rather than something initialised at run time. */
#pragma GCC visibility push(hidden)

namespace omn {

#define OMN_EXPORT(ret, name, params) ret name params;
#define OMN_EXPORT_COMMON(ret, name, params)
namespace px {
#include "omns_exports.h"
}
namespace a6 {
#include "omns_exports.h"
}
namespace w7 {
#include "omns_exports.h"
}
namespace t7 {
#include "omns_exports.h"
}
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

#define OMN_EXPORT(ret, name, params)
#define OMN_EXPORT_COMMON(ret, name, params) ret name params;
namespace common {
#include "omns_exports.h"
}
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

/* Number of exports, counted from the list. */
#define OMN_EXPORT(ret, name, params) +1
#define OMN_EXPORT_COMMON(ret, name, params) +1
enum : int { kExportCount = 0
#include "omns_exports.h"
};
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

} // namespace omn

#pragma GCC visibility pop

#endif /* OMN_CORE_VARIANTS_H */
