// Load-time dispatch: the type-to-column mapping, the waterfall over test
// tables, the failure path, the entry routine, and the library's own table,
// slots and stubs.
#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "core/dispatch.h"
#include "tests/columns.h"

using namespace omn;

namespace {

OmnEntry fakeEntry(int column, int record)
{
    return reinterpret_cast<OmnEntry>(static_cast<uintptr_t>(0x10000 + column * 0x1000 + record * 8));
}

// A table of n records with its own slots, every entry filled.
struct TestTable {
    std::vector<OmnDispatchRecord> records;
    std::vector<OmnEntry> slots;
    intptr_t count;

    explicit TestTable(int n) : records(n), slots(n, nullptr), count(n)
    {
        for (int i = 0; i < n; ++i) {
            records[i].slot = &slots[i];
            for (int c = 0; c < 4; ++c)
                records[i].entry[c] = fakeEntry(c, i);
        }
    }
    OmnDispatchTable table() const { return OmnDispatchTable{ records.data(), &count }; }
    void zeroEntry(int column, int record) { records[record].entry[column] = nullptr; }
    bool slotsHold(int column) const
    {
        for (size_t i = 0; i < slots.size(); ++i)
            if (slots[i] != fakeEntry(column, static_cast<int>(i)))
                return false;
        return true;
    }
    bool untouched() const
    {
        for (OmnEntry s : slots)
            if (s != nullptr)
                return false;
        return true;
    }
};

int g_cpuType = 0;
int g_cpuTypeCalls = 0;
int g_forcedColumn = 0;
int g_alerts = 0;
std::string g_alertText, g_alertCaption;

int fakeCpuType() { ++g_cpuTypeCalls; return g_cpuType; }
int forcedColumn(int) { return g_forcedColumn; }
void recordAlert(const char* text, const char* caption)
{
    ++g_alerts;
    g_alertText = text;
    g_alertCaption = caption;
}

OmnDispatchEnv envFor(const TestTable& t, int (*columnOf)(int) = omnColumnOfCpuType)
{
    g_alerts = 0;
    g_cpuTypeCalls = 0;
    g_alertText.clear();
    g_alertCaption.clear();
    return OmnDispatchEnv{ t.table(), fakeCpuType, columnOf, recordAlert };
}

// A processor type that selects each column.
const int kTypeOfColumn[4] = { 0, 5, 6, 8 };

} // namespace

TEST(Dispatch, ProcessorTypeMapsToColumnAsTabled)
{
    struct Row { int type; int column; };
    const Row rows[] = {
        { 0, 0 }, { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 }, { 5, 1 }, { 6, 2 }, { 7, 2 }, { 8, 3 },
        { 9, 0 },   // family 6 with SSE2 gets the portable column
        { 16, 0 }, { 17, 0 },
        { 32, 0 },  // family 15 with SSE3 and extended bit 29 gets px too
        { 10, 0 }, { 15, 0 }, { 31, 0 }, { 255, 0 }, { -1, 0 }, { 0x7fffffff, 0 },
    };
    for (const Row& r : rows)
        EXPECT_EQ(omnColumnOfCpuType(r.type), r.column) << "type " << r.type;
}

TEST(Dispatch, EachDetectedColumnInstallsItself)
{
    for (int c = 0; c < 4; ++c) {
        TestTable t(7);
        g_cpuType = kTypeOfColumn[c];
        const OmnDispatchEnv env = envFor(t);
        EXPECT_EQ(omnSelectColumn(env), c);
        EXPECT_EQ(omnDispatchOnLoad(env), 1);
        EXPECT_TRUE(t.slotsHold(c)) << "column " << c;
        EXPECT_EQ(g_alerts, 0);
    }
}

TEST(Dispatch, WaterfallFallsDownEachRowBestFirst)
{
    // Each row, in the order it must be tried.
    const std::vector<std::vector<int>> rows = { { 0 }, { 1, 0 }, { 2, 1, 0 }, { 3, 2, 1, 0 } };
    for (int detected = 0; detected < 4; ++detected) {
        const std::vector<int>& row = rows[detected];
        // Break the first f columns of the row; the next one must be installed.
        for (size_t f = 0; f <= row.size(); ++f) {
            TestTable t(9);
            for (size_t j = 0; j < f; ++j)
                t.zeroEntry(row[j], static_cast<int>((j * 3) % 9));   // at various records
            g_cpuType = kTypeOfColumn[detected];
            const OmnDispatchEnv env = envFor(t);
            const int ok = omnDispatchOnLoad(env);
            if (f < row.size()) {
                EXPECT_EQ(ok, 1);
                EXPECT_TRUE(t.slotsHold(row[f])) << "detected " << detected << " broken " << f;
                EXPECT_EQ(g_alerts, 0);
            } else {
                EXPECT_EQ(ok, 0) << "detected " << detected;
                EXPECT_EQ(g_alerts, 1);
            }
        }
    }
}

TEST(Dispatch, FailedFillWritesTheRecordsBeforeTheZeroEntry)
{
    const int n = 12;
    for (int k = 0; k < n; ++k) {
        TestTable t(n);
        t.zeroEntry(3, k);
        EXPECT_EQ(omnFillColumn(t.table(), 3), 0);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(t.slots[i], i < k ? fakeEntry(3, i) : nullptr) << "k " << k << " slot " << i;
        // The next column of the row then overwrites every slot.
        EXPECT_EQ(omnFillColumn(t.table(), 2), 1);
        EXPECT_TRUE(t.slotsHold(2));
    }
}

TEST(Dispatch, ZeroEntryAtRecordKFallsToLowerColumnWhichFillsAll)
{
    TestTable t(20);
    t.zeroEntry(3, 11);
    g_cpuType = 8;
    const OmnDispatchEnv env = envFor(t);
    EXPECT_EQ(omnDispatchOnLoad(env), 1);
    EXPECT_TRUE(t.slotsHold(2));
}

TEST(Dispatch, CountBelowOneTakesTheFailurePath)
{
    for (intptr_t count : { intptr_t(0), intptr_t(-1) }) {
        TestTable t(3);
        t.count = count;
        g_cpuType = 6;
        const OmnDispatchEnv env = envFor(t);
        EXPECT_EQ(omnDispatchOnLoad(env), 0);
        EXPECT_EQ(g_alerts, 1);
        EXPECT_EQ(g_alertText, " No omn matching to CPU was found during the Waterfall");
        EXPECT_EQ(g_alertCaption, "Set omn library error");
        EXPECT_TRUE(t.untouched());
        // The fill keeps its own test and reports success without writing.
        EXPECT_EQ(omnFillColumn(t.table(), 0), 1);
        EXPECT_TRUE(t.untouched());
    }
}

TEST(Dispatch, ColumnOutOfRangeTakesTheFailurePath)
{
    for (int column : { -1, 4, 5, 100 }) {
        TestTable t(3);
        g_forcedColumn = column;
        const OmnDispatchEnv env = envFor(t, forcedColumn);
        EXPECT_EQ(omnDispatchOnLoad(env), 0) << column;
        EXPECT_EQ(g_alerts, 1);
        EXPECT_EQ(g_alertCaption, "Set omn library error");
        EXPECT_TRUE(t.untouched());
    }
}

TEST(Dispatch, OnlyProcessAttachDispatches)
{
    const int others[] = { omnProcessDetach, omnThreadAttach, omnThreadDetach };
    for (int reason : others) {
        TestTable t(4);
        t.count = 0;   // would fail if it were dispatched
        g_cpuType = 8;
        const OmnDispatchEnv env = envFor(t);
        EXPECT_EQ(omnLibraryEntry(env, reason), 1);
        EXPECT_TRUE(t.untouched());
        EXPECT_EQ(g_cpuTypeCalls, 0);
        EXPECT_EQ(g_alerts, 0);
    }
    TestTable t(4);
    g_cpuType = 5;
    const OmnDispatchEnv env = envFor(t);
    EXPECT_EQ(omnLibraryEntry(env, omnProcessAttach), 1);
    EXPECT_TRUE(t.slotsHold(1));
}

TEST(DispatchDeathTest, RefusedLoadAlertsOnStderrAndEndsTheProcess)
{
    TestTable t(2);
    t.count = 0;
    const OmnDispatchEnv env{ t.table(), fakeCpuType, omnColumnOfCpuType, omnDefaultDispatchEnv().alert };
    EXPECT_EXIT(omnLibraryConstructorWith(env), ::testing::ExitedWithCode(EXIT_FAILURE),
                "Set omn library error: No omn matching to CPU was found during the Waterfall");
}

// ---- the library's own table --------------------------------------------

namespace {

struct ExportInfo {
    const char* name;
    const void* symbol;
    OmnEntry*   slot;
};

#define OMN_EXPORT(ret, name, params) extern "C" OmnEntry omnSlot_##name;
#define OMN_EXPORT_COMMON(ret, name, params) extern "C" OmnEntry omnSlot_##name;
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

const ExportInfo kExports[] = {
#define OMN_EXPORT(ret, name, params) { #name, reinterpret_cast<const void*>(&::name), &omnSlot_##name },
#define OMN_EXPORT_COMMON(ret, name, params) OMN_EXPORT(ret, name, params)
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
};

} // namespace

TEST(LibraryTable, HasOneCompleteRecordPerExportInListOrder)
{
    const OmnDispatchTable& table = omnLibraryDispatchTable();
    ASSERT_EQ(*table.count, intptr_t(sizeof kExports / sizeof kExports[0]));
    ASSERT_EQ(*table.count, intptr_t(kExportCount));
    const intptr_t slotWords = omnSlotTableEnd - omnSlotTableBegin;
    EXPECT_EQ(slotWords, *table.count);
    for (intptr_t i = 0; i < *table.count; ++i) {
        const OmnDispatchRecord& r = table.records[i];
        EXPECT_EQ(r.slot, kExports[i].slot) << kExports[i].name;
        EXPECT_EQ(r.slot, omnSlotTableBegin + i) << kExports[i].name;
        for (int c = 0; c < 4; ++c)
            EXPECT_NE(r.entry[c], nullptr) << kExports[i].name << " column " << c;
    }
}

TEST(LibraryTable, SlotsHoldTheSelectedColumnAfterLoad)
{
    const int column = omnSelectColumn();
    const OmnDispatchTable& table = omnLibraryDispatchTable();
    for (intptr_t i = 0; i < *table.count; ++i)
        EXPECT_EQ(*table.records[i].slot, table.records[i].entry[column]) << kExports[i].name;
}

#if defined(__x86_64__)
TEST(LibraryTable, EveryExportIsOneIndirectJumpThroughItsSlot)
{
    for (const ExportInfo& e : kExports) {
        const uint8_t* code = static_cast<const uint8_t*>(e.symbol);
        ASSERT_EQ(code[0], 0xFF) << e.name;   // jmp *rel32(%rip)
        ASSERT_EQ(code[1], 0x25) << e.name;
        int32_t rel;
        memcpy(&rel, code + 2, 4);
        EXPECT_EQ(reinterpret_cast<const void*>(code + 6 + rel), static_cast<const void*>(e.slot)) << e.name;
    }
}
#endif

TEST(LibraryTableDeathTest, SlotsAreReadOnlyAfterLoad)
{
    if (sysconf(_SC_PAGESIZE) != 4096)
        GTEST_SKIP() << "slots are protected only with 4 KiB pages";
    EXPECT_EQ(reinterpret_cast<uintptr_t>(omnSlotTableBegin) % 4096, 0u);
    volatile OmnEntry* slot = omnSlotTableBegin;
    EXPECT_DEATH(*slot = nullptr, "");
}

TEST(LibraryTable, CallThroughTheSlotEqualsTheDirectCall)
{
    const int column = omnSelectColumn();
    EXPECT_EQ(omnsGetLibVersion(), test::omnsGetLibVersion[column]());
    EXPECT_EQ(omnvmGetLibVersion(), test::omnvmGetLibVersion[column]());
    EXPECT_EQ(omnGetCpuType(), test::omnGetCpuType[column]());

    double src[37], viaSlot[37], direct[37];
    for (int i = 0; i < 37; ++i)
        src[i] = i * 0.25 - 3;
    EXPECT_EQ(omnsFlip_64f(src, viaSlot, 37), test::omnsFlip_64f[column](src, direct, 37));
    EXPECT_EQ(0, memcmp(viaSlot, direct, sizeof direct));
    EXPECT_EQ(omnsCopy_64f(nullptr, direct, 3), test::omnsCopy_64f[column](nullptr, direct, 3));
}
