// The aligned allocators in every column, omnsFree, the internal byte
// allocator and its fault-injection seam.
#include <gtest/gtest.h>
#include <gtest/gtest-spi.h>

#include <limits.h>
#include <stdint.h>
#include <string.h>

#include "core/alloc.h"
#include "tests/alloc_faults.h"
#include "tests/columns.h"

using namespace omn;

namespace {

struct TypedMalloc {
    const char* name;
    uint32_t elem;
    void* (*call)(int col, int len);
};

const TypedMalloc kMallocs[] = {
    { "omnsMalloc_32s", 4, [](int c, int n) -> void* { return test::omnsMalloc_32s[c](n); } },
    { "omnsMalloc_64f", 8, [](int c, int n) -> void* { return test::omnsMalloc_64f[c](n); } },
    { "omnsMalloc_32sc", 8, [](int c, int n) -> void* { return test::omnsMalloc_32sc[c](n); } },
    { "omnsMalloc_64fc", 16, [](int c, int n) -> void* { return test::omnsMalloc_64fc[c](n); } },
};

uintptr_t addr(const void* p) { return reinterpret_cast<uintptr_t>(p); }
const void* backPointer(const void* user) { return static_cast<void* const*>(user)[-1]; }

// Checks the layout of one block against the byte count the system
// allocator was asked for, and writes its whole user area (ASan sees any
// overrun).
void checkBlock(const void* user, uint32_t requested, size_t userBytes, const char* what)
{
    ASSERT_NE(user, nullptr) << what;
    EXPECT_EQ(addr(user) % 32, 0u) << what;
    const uintptr_t raw = addr(backPointer(user));
    EXPECT_LT(raw, addr(user)) << what;
    EXPECT_LE(addr(user) - raw, uintptr_t(kAllocOverhead - 1)) << what;
    EXPECT_GE(addr(user) - raw, sizeof(void*)) << what;
    EXPECT_LE(addr(user) + userBytes, raw + requested) << what << ": the last byte lies outside the block";
    memset(const_cast<void*>(user), 0x5A, userBytes);
}

} // namespace

class AllocTest : public test::ColumnTest {};

TEST_P(AllocTest, BlocksAreAlignedWithTheBackPointerBelow)
{
    test::AllocTracking tracking;
    for (const TypedMalloc& m : kMallocs) {
        for (int len : { 1, 2, 3, 7, 8, 31, 1000, 65537 }) {
            const OmnAllocStats before = omnAllocTestStats();
            void* p = m.call(col(), len);
            const OmnAllocStats after = omnAllocTestStats();
            EXPECT_EQ(after.systemCalls - before.systemCalls, 1u);
            // n * size + 32 for the shift + one pointer.
            EXPECT_EQ(after.lastRequest, uint32_t(len) * m.elem + 40u) << m.name << " len " << len;
            checkBlock(p, after.lastRequest, size_t(len) * m.elem, m.name);
            test::omnsFree[col()](p);
            EXPECT_EQ(omnAllocTestStats().freed - before.freed, 1u);
        }
    }
}

TEST_P(AllocTest, LengthBelowOneGivesNullWithoutAskingTheSystem)
{
    test::AllocTracking tracking;
    for (const TypedMalloc& m : kMallocs) {
        for (int len : { 0, -1, -2, INT_MIN }) {
            const OmnAllocStats before = omnAllocTestStats();
            EXPECT_EQ(m.call(col(), len), nullptr) << m.name << " len " << len;
            EXPECT_EQ(omnAllocTestStats().systemCalls, before.systemCalls) << m.name << " len " << len;
        }
    }
}

TEST_P(AllocTest, ByteCountWrapsModulo2To32)
{
    test::AllocTracking tracking;
    // len * size is a multiple of 2^32: the system is asked for the overhead
    // alone, and the block is still well formed.
    const struct { int form; int len; uint32_t expect; } cases[] = {
        { 3, 1 << 28, 40 },              // 64fc: 2^28 * 16 = 2^32
        { 1, 1 << 29, 40 },              // 64f: 2^29 * 8
        { 2, 1 << 29, 40 },              // 32sc
        { 0, 1 << 30, 40 },              // 32s: 2^30 * 4
        { 3, (1 << 28) + 1, 56 },        // one element past the wrap
        { 0, (1 << 30) + 5, 60 },
    };
    for (const auto& tc : cases) {
        const TypedMalloc& m = kMallocs[tc.form];
        const OmnAllocStats before = omnAllocTestStats();
        void* p = m.call(col(), tc.len);
        const OmnAllocStats after = omnAllocTestStats();
        ASSERT_EQ(after.systemCalls - before.systemCalls, 1u) << m.name << " len " << tc.len;
        EXPECT_EQ(after.lastRequest, tc.expect) << m.name << " len " << tc.len;
        checkBlock(p, after.lastRequest, after.lastRequest - (addr(p) - addr(backPointer(p))), m.name);
        test::omnsFree[col()](p);
    }
    // A wrapped count below the overhead couldn't hold the back-pointer
    // inside the block: null, and the system isn't asked.
    for (const auto& tc : { std::pair<int, int>{ 0, (1 << 30) - 1 }, { 0, INT_MAX }, { 3, (1 << 28) - 2 } }) {
        const OmnAllocStats before = omnAllocTestStats();
        EXPECT_EQ(kMallocs[tc.first].call(col(), tc.second), nullptr) << kMallocs[tc.first].name << " " << tc.second;
        EXPECT_EQ(omnAllocTestStats().systemCalls, before.systemCalls);
    }
}

TEST_P(AllocTest, FreeOfNullDoesNothingAndAnyBlockGoesBackThroughFree)
{
    test::AllocTracking tracking;
    const OmnAllocStats before = omnAllocTestStats();
    test::omnsFree[col()](nullptr);
    EXPECT_EQ(omnAllocTestStats().freed, before.freed);
    // Blocks of every column and of the internal allocator, freed by this
    // column's omnsFree.
    for (int c = 0; c < 4; ++c) {
        for (const TypedMalloc& m : kMallocs)
            test::omnsFree[col()](m.call(c, 5));
    }
    test::omnsFree[col()](omnAllocBytes(100));
    const OmnAllocStats after = omnAllocTestStats();
    EXPECT_EQ(after.allocated - before.allocated, 17u);
    EXPECT_EQ(after.freed - before.freed, 17u);
}

TEST(AllocBytes, SameLayoutAndRules)
{
    test::AllocTracking tracking;
    for (int size : { 1, 7, 32, 33, 4096, 1 << 20 }) {
        void* p = omnAllocBytes(size);
        const OmnAllocStats s = omnAllocTestStats();
        EXPECT_EQ(s.lastRequest, uint32_t(size) + 40u);
        checkBlock(p, s.lastRequest, size_t(size), "omnAllocBytes");
        test::omnsFree[0](p);
    }
    for (int size : { 0, -1, INT_MIN }) {
        const OmnAllocStats before = omnAllocTestStats();
        EXPECT_EQ(omnAllocBytes(size), nullptr);
        EXPECT_EQ(omnAllocTestStats().systemCalls, before.systemCalls);
    }
}

TEST(AllocSeam, TheNthAllocationFailsOnceAndTheSeamReportsIt)
{
    test::AllocTracking tracking;
    for (unsigned n : { 1u, 2u, 4u }) {
        omnAllocTestFailAt(n);
        void* got[6];
        for (unsigned i = 0; i < 6; ++i)
            got[i] = (i % 2) ? static_cast<void*>(test::omnsMalloc_64f[i % 4](3)) : omnAllocBytes(16);
        EXPECT_TRUE(omnAllocTestFailAt(0)) << n;
        for (unsigned i = 0; i < 6; ++i) {
            EXPECT_EQ(got[i] == nullptr, i + 1 == n) << "n " << n << " allocation " << i + 1;
            test::omnsFree[0](got[i]);
        }
    }
    // Calls refused for their length don't count as allocations.
    omnAllocTestFailAt(1);
    EXPECT_EQ(omnAllocBytes(0), nullptr);
    EXPECT_EQ(test::omnsMalloc_32s[2](-1), nullptr);
    void* p = omnAllocBytes(8);
    EXPECT_EQ(p, nullptr);
    EXPECT_TRUE(omnAllocTestFailAt(0));
    // Disarmed: nothing fails, and nothing is reported.
    p = omnAllocBytes(8);
    EXPECT_NE(p, nullptr);
    test::omnsFree[3](p);
    EXPECT_FALSE(omnAllocTestFailAt(0));
    // Armed beyond the allocations made: nothing fires.
    omnAllocTestFailAt(3);
    test::omnsFree[0](omnAllocBytes(8));
    EXPECT_FALSE(omnAllocTestFailAt(0));
}

namespace {

void* gLeaked = nullptr;   // what the leaky creation drops, freed by the test itself

// A creation in the style of the InitAlloc functions: three blocks, and a
// failure releases what it has taken (unless told to leak the first).
int makeThree(void** out, bool leakOnFailure)
{
    void* a = omnAllocBytes(64);
    if (a == nullptr)
        return -9;
    void* b = test::omnsMalloc_64fc[1](10);
    if (b == nullptr) {
        if (leakOnFailure)
            gLeaked = a;
        else
            test::omnsFree[0](a);
        return -9;
    }
    void* c = omnAllocBytes(8);
    if (c == nullptr) {
        test::omnsFree[0](a);
        test::omnsFree[0](b);
        return -9;
    }
    out[0] = a; out[1] = b; out[2] = c;
    return 0;
}

} // namespace

TEST(AllocSeam, FaultLoopFindsEveryAllocationPointAndCatchesALeak)
{
    const auto clean = [](bool* ok) {
        void* blocks[3];
        const int st = makeThree(blocks, false);
        if (st == 0)
            for (void* b : blocks) test::omnsFree[2](b);
        *ok = st == 0;
        return st;
    };
    EXPECT_EQ(test::expectNoMemoryPaths(clean), 3u);

    const auto leaky = [](bool* ok) {
        void* blocks[3];
        const int st = makeThree(blocks, true);
        if (st == 0)
            for (void* b : blocks) test::omnsFree[2](b);
        *ok = st == 0;
        return st;
    };
    EXPECT_NONFATAL_FAILURE(test::expectNoMemoryPaths(leaky), "blocks leaked with allocation 2 failing");
    test::omnsFree[0](gLeaked);
}

OMN_ALL_COLUMNS(AllocTest);
