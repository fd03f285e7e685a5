/*
 * exceptions.h - what the bad-input sweep cannot derive from a prototype.
 *
 * The sweep reads every export's argument list from the export list and
 * decides from the types and names what each argument is.  The general rule
 * it then checks is the library's: every pointer in argument order (-8),
 * then the length (-6), then the other parameters.  The few places where a
 * family's rule departs, or where a name does not say what an argument is,
 * stand here, beside the list and not in it.
 */
#ifndef OMN_TESTS_ROBUSTNESS_EXCEPTIONS_H
#define OMN_TESTS_ROBUSTNESS_EXCEPTIONS_H

#include <string.h>

namespace omn {
namespace robust {

/* Exports that return something other than a status, or whose argument is
   not checked at all, so that there is no bad input to sweep: listed with
   the reason the report prints. */
struct Unswept {
    const char* name;
    const char* reason;
};

inline const Unswept kUnswept[] = {
    { "omnGetStatusString",   "takes any status value and returns a text" },
    { "omnGetCpuType",        "no arguments" },
    { "omnGetCpuClocks",      "no arguments" },
    { "omnSetDenormAreZeros", "no pointer or length: every value is valid" },
    { "omnsGetLibVersion",    "no arguments" },
    { "omnvmGetLibVersion",   "no arguments" },
    { "omnsMalloc_32s",       "returns a block, not a status: a bad length gives null (tested in test_alloc)" },
    { "omnsMalloc_64f",       "returns a block, not a status: a bad length gives null (tested in test_alloc)" },
    { "omnsMalloc_32sc",      "returns a block, not a status: a bad length gives null (tested in test_alloc)" },
    { "omnsMalloc_64fc",      "returns a block, not a status: a bad length gives null (tested in test_alloc)" },
    { "omnsFree",             "returns nothing; a null block is a no-op (tested in test_alloc)" },
};

inline const char* unsweptReason(const char* name)
{
    for (const Unswept& u : kUnswept)
        if (strcmp(u.name, name) == 0)
            return u.reason;
    return nullptr;
}

/* Pointer arguments that may be null: the call goes on and does the work
   another way (a null work buffer makes the call allocate its own; a null
   mask pointer skips the bracket of the floating-point controls). */
inline bool nullAllowed(const char* function, const char* param)
{
    if (strcmp(param, "pBuffer") == 0 || strcmp(param, "pBuf") == 0)
        return true;
    if (strcmp(function, "omnSetFlushToZero") == 0 && strcmp(param, "pUMask") == 0)
        return true;
    /* Either source alone may be null (its part reads as +0.0); both null
       is -8, after the length. */
    if (strcmp(function, "omnsRealToCplx_64f") == 0 &&
        (strcmp(param, "pSrcRe") == 0 || strcmp(param, "pSrcIm") == 0))
        return true;
    return false;
}

/* Calls that return an error and still write an output: the polar split runs
   its magnitude and its phase halves independently, so a null output of one
   half leaves the other half's output written. */
inline bool writesDespiteReject(const char* function)
{
    return strcmp(function, "omnsCartToPolar_64f") == 0 || strcmp(function, "omnsCartToPolar_64fc") == 0;
}

/* The integer arguments that are element counts and so are checked as a
   length (below 1 is -6) right after the pointers. */
inline bool isLength(const char* param)
{
    return strcmp(param, "len") == 0 || strcmp(param, "srcLen") == 0;
}

/* The accuracy-class functions test the length before the pointers, and so
   do the complex additions and subtractions that hand twice the length on to
   their real forms. */
inline bool lengthFirst(const char* function)
{
    static const char* const kComplexAddSub[] = {
        "omnsAdd_64fc", "omnsSub_64fc", "omnsAdd_64fc_I", "omnsSub_64fc_I",
        "omnsAdd_32sc_Sfs", "omnsSub_32sc_Sfs", "omnsAdd_32sc_ISfs", "omnsSub_32sc_ISfs",
    };
    for (const char* f : kComplexAddSub)
        if (strcmp(function, f) == 0)
            return true;
    const size_t n = strlen(function);
    return n > 4 && (strcmp(function + n - 4, "_A50") == 0 || strcmp(function + n - 4, "_A53") == 0);
}

} // namespace robust
} // namespace omn

#endif /* OMN_TESTS_ROBUSTNESS_EXCEPTIONS_H */
