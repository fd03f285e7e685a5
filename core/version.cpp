/*
 * version.cpp - the version records.  Built per column: each column answers
 * with its own record, which is how a caller sees the column in force.
 */
#include "core/column.h"

#define OMN_STR2(x) #x
#define OMN_STR(x) OMN_STR2(x)
#define OMN_COLUMN_LABEL OMN_STR(OMN_COL)

OMN_COLUMN_BEGIN

namespace {

/* The signal-processing group. */
const OmnLibVersion kSignalVersion = {
    4, 1, 8, 85,
    OMN_COLUMN_LABEL,
    "omns" OMN_COLUMN_LABEL "l.lib",
    "v4.1 beta",
    "Apr 22 2004",
};

/* The accuracy-class group keeps a version of its own. */
const OmnLibVersion kVecMathVersion = {
    4, 0, 10, 17,
    OMN_COLUMN_LABEL,
    "omnvm" OMN_COLUMN_LABEL "l.lib",
    "v4.0",
    "Apr 20 2004",
};

} // namespace

const OmnLibVersion* omnsGetLibVersion() { return &kSignalVersion; }
const OmnLibVersion* omnvmGetLibVersion() { return &kVecMathVersion; }

OMN_COLUMN_END
