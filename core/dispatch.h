/*
 * dispatch.h - load-time selection of the column and filling of the slots.
 *
 * None of this is exported.  The production path uses the library's own
 * table, the processor-type detection and an alert on standard error; each
 * can be replaced through OmnDispatchEnv so that the waterfall can be run
 * over test tables.
 */
#ifndef OMN_CORE_DISPATCH_H
#define OMN_CORE_DISPATCH_H

#include <stdint.h>

namespace omn {

using OmnEntry = void (*)();

/* One record: where to write, then the entries of px, a6, w7, t7. */
struct OmnDispatchRecord {
    OmnEntry*  slot;
    OmnEntry   entry[4];
};

/* The records followed by their count, read afresh by the walking code. */
struct OmnDispatchTable {
    const OmnDispatchRecord* records;
    const intptr_t*          count;
};

/* Columns to try, best first, ending at the first value of 4 or more. */
extern const int kWaterfall[4][5];

struct OmnDispatchEnv {
    OmnDispatchTable table;
    int  (*cpuType)();                                   /* processor type source */
    int  (*columnOfType)(int cpuType);                   /* type -> column mapping */
    void (*alert)(const char* text, const char* caption); /* load-failure alert */
};

/* The production environment: the library's table, omnGetCpuType, stderr. */
const OmnDispatchEnv& omnDefaultDispatchEnv();
const OmnDispatchTable& omnLibraryDispatchTable();

/* Maps a processor type to a column 0..3; gaps and unknown types give 0. */
int omnColumnOfCpuType(int cpuType);

int omnSelectColumn(const OmnDispatchEnv& env);
int omnFillColumn(const OmnDispatchTable& table, int column);
int omnDispatchOnLoad(const OmnDispatchEnv& env);

/* The no-argument forms work on the production environment. */
int omnSelectColumn();
int omnFillColumn(int column);
int omnDispatchOnLoad();

/* The entry routine's reasons, after the platform events a loader reports. */
enum OmnLoadReason : int {
    omnProcessDetach = 0,
    omnProcessAttach = 1,
    omnThreadAttach  = 2,
    omnThreadDetach  = 3
};

/* Returns 1 to let the load go on, 0 to refuse it. */
int omnLibraryEntry(const OmnDispatchEnv& env, int reason);

/* What the ELF constructor does: attach, and end the process with a failure
   status when the entry refuses, since a constructor cannot refuse a load. */
void omnLibraryConstructorWith(const OmnDispatchEnv& env);

/* Makes the library's slot table read-only (done once, after the load). */
void omnProtectSlots();

/* The failure texts. */
extern const char kLoadFailureText[];
extern const char kLoadFailureCaption[];

/* The slots of this library, in dispatch order. */
extern "C" OmnEntry omnSlotTableBegin[];
extern "C" OmnEntry omnSlotTableEnd[];

} // namespace omn

#endif /* OMN_CORE_DISPATCH_H */
