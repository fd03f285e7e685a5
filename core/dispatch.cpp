/*
 * dispatch.cpp - the load-time path: column selection, the waterfall, the
 * fill of the slots, the entry routine and its ELF constructor.
 */
#include "core/dispatch.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#if defined(__unix__)
#include <sys/mman.h>
#include <unistd.h>
#endif

#include "core/variants.h"

namespace omn {

/* ---- the library's dispatch table, derived from the export list ------- */

#pragma GCC visibility push(hidden)
#define OMN_EXPORT(ret, name, params)        extern "C" OmnEntry omnSlot_##name;
#define OMN_EXPORT_COMMON(ret, name, params) extern "C" OmnEntry omnSlot_##name;
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
#pragma GCC visibility pop

namespace {

/* A plain cast, not a helper call: a call would make the table dynamic. */
#define OMN_ENTRY(f) reinterpret_cast<OmnEntry>(&f)

struct LibraryTable {
    OmnDispatchRecord records[kExportCount];
    intptr_t          count;
};

/* Constant data: the compiler lays it out statically (address constants),
   so it is complete before any constructor runs. */
const LibraryTable kLibraryTable = {
    {
#define OMN_EXPORT(ret, name, params) \
        { &omnSlot_##name, { OMN_ENTRY(px::name), OMN_ENTRY(a6::name), OMN_ENTRY(w7::name), OMN_ENTRY(t7::name) } },
#define OMN_EXPORT_COMMON(ret, name, params) \
        { &omnSlot_##name, { OMN_ENTRY(common::name), OMN_ENTRY(common::name), OMN_ENTRY(common::name), OMN_ENTRY(common::name) } },
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
    },
    kExportCount
};

/* constexpr: these must be complete before the constructor runs, with no
   dynamic initialisation that could be ordered after it. */
constexpr OmnDispatchTable kLibraryDispatchTable = { kLibraryTable.records, &kLibraryTable.count };

/* On this platform a load cannot show a message box; the alert is one line
   on standard error, and the process then ends with a failure status. */
void alertOnStderr(const char* text, const char* caption)
{
    fprintf(stderr, "%s:%s\n", caption, text);
    fflush(stderr);
}

int detectCpuType() { return common::omnGetCpuType(); }

constexpr OmnDispatchEnv kDefaultEnv = { kLibraryDispatchTable, detectCpuType, omnColumnOfCpuType, alertOnStderr };

/* The failure path: the message goes through a zeroed 256-byte buffer, then
   the alert; the result refuses the load. */
int loadFailure(const OmnDispatchEnv& env)
{
    char text[256];
    memset(text, 0, sizeof text);
    strncpy(text, kLoadFailureText, sizeof text - 1);
    env.alert(text, kLoadFailureCaption);
    return 0;
}

} // namespace

const char kLoadFailureText[]    = " No omn matching to CPU was found during the Waterfall";
const char kLoadFailureCaption[] = "Set omn library error";

const int kWaterfall[4][5] = {
    { 0, 4, 0, 0, 0 },
    { 1, 0, 4, 0, 0 },
    { 2, 1, 0, 4, 0 },
    { 3, 2, 1, 0, 4 },
};

const OmnDispatchEnv& omnDefaultDispatchEnv() { return kDefaultEnv; }
const OmnDispatchTable& omnLibraryDispatchTable() { return kLibraryDispatchTable; }

int omnColumnOfCpuType(int cpuType)
{
    /* Meant literally: type 9 (family 6 with SSE2) and 32 (family 15 with
       SSE3 and extended bit 29) get px, like every type not named here, so
       that a processor the table doesn't know never gets code it may not run. */
    switch (cpuType) {
    case 5:  return 1;
    case 6:
    case 7:  return 2;
    case 8:  return 3;
    default: return 0;
    }
}

int omnSelectColumn(const OmnDispatchEnv& env) { return env.columnOfType(env.cpuType()); }

int omnFillColumn(const OmnDispatchTable& table, int column)
{
    const intptr_t count = *table.count;
    if (count < 1)
        return 1;
    for (intptr_t i = 0; i < count; ++i) {
        const OmnDispatchRecord& rec = table.records[i];
        const OmnEntry e = rec.entry[column];
        if (e == nullptr)
            return 0;
        *rec.slot = e;
    }
    return 1;
}

int omnDispatchOnLoad(const OmnDispatchEnv& env)
{
    const int column = omnSelectColumn(env);
    if (*env.table.count < 1 || column < 0 || column > 3)
        return loadFailure(env);
    for (const int* v = kWaterfall[column]; *v < 4; ++v)
        if (omnFillColumn(env.table, *v))
            return 1;
    return loadFailure(env);
}

int omnSelectColumn() { return omnSelectColumn(kDefaultEnv); }
int omnFillColumn(int column) { return omnFillColumn(kLibraryDispatchTable, column); }
int omnDispatchOnLoad() { return omnDispatchOnLoad(kDefaultEnv); }

int omnLibraryEntry(const OmnDispatchEnv& env, int reason)
{
    if (reason == omnProcessAttach)
        return omnDispatchOnLoad(env);
    return 1;
}

void omnLibraryConstructorWith(const OmnDispatchEnv& env)
{
    if (!omnLibraryEntry(env, omnProcessAttach))
        _Exit(EXIT_FAILURE);
}

void omnProtectSlots()
{
#if defined(__unix__)
    /* The slot table starts on a page boundary and is padded to whole pages
       of 4 KiB; on a system with larger pages it can't be protected alone. */
    const long page = sysconf(_SC_PAGESIZE);
    if (page != 4096)
        return;
    const uintptr_t begin = reinterpret_cast<uintptr_t>(omnSlotTableBegin);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(omnSlotTableEnd) + 4095) & ~uintptr_t(4095);
    mprotect(omnSlotTableBegin, end - begin, PROT_READ);
#endif
}

} // namespace omn

/* Registered in .init_array by stubs.S.  After the library's own slots are
   filled they are never written again, so they become read-only: a stray
   write in the caller's program can't redirect a call into the library. */
extern "C" __attribute__((used)) void omnLibraryConstructor()
{
    omn::omnLibraryConstructorWith(omn::omnDefaultDispatchEnv());
    omn::omnProtectSlots();
}
