// Processor identification and the floating-point controls, over recorded
// CPUID answers, FXSAVE images and a simulated MXCSR, and on this machine.
#include <gtest/gtest.h>

#include <float.h>
#include <string.h>

#include <map>

#include "core/cpu.h"
#include "tests/columns.h"

using namespace omn;

namespace {

struct FakeCpu {
    bool hasCpuid = true;
    std::map<uint32_t, OmnCpuidRegs> leaves;
    uint8_t fxImage[512] = {};
    uint32_t mxcsr = 0x1F80;
    int mxcsrWrites = 0;
};

FakeCpu* g_fake = nullptr;

const OmnCpuAccess kFakeAccess = {
    [] { return g_fake->hasCpuid ? 1 : 0; },
    [](uint32_t leaf) {
        auto it = g_fake->leaves.find(leaf);
        return it == g_fake->leaves.end() ? OmnCpuidRegs{ 0, 0, 0, 0 } : it->second;
    },
    [](void* area) { memcpy(area, g_fake->fxImage, 512); },
    [] { return g_fake->mxcsr; },
    [](uint32_t w) { g_fake->mxcsr = w; ++g_fake->mxcsrWrites; },
};

uint32_t word(const char* four)
{
    uint32_t w;
    memcpy(&w, four, 4);
    return w;
}

enum Feature : uint32_t { kMmx = 1u << 23, kSse = 1u << 25, kSse2 = 1u << 26, kHtt = 1u << 28 };

struct CpuModel {
    const char* vendor;
    uint32_t eax1;        // family, model, stepping as CPUID leaf 1 EAX holds them
    uint32_t edx1;
    uint32_t logical;     // EBX bits 16..23
    bool sse3;
    uint32_t extMax;      // EAX of leaf 0x80000000
    bool ext29;
};

FakeCpu makeCpu(const CpuModel& m)
{
    FakeCpu f;
    f.leaves[0] = OmnCpuidRegs{ 2, word(m.vendor), word(m.vendor + 8), word(m.vendor + 4) };
    f.leaves[1] = OmnCpuidRegs{ m.eax1, m.logical << 16, m.sse3 ? 1u : 0u, m.edx1 };
    f.leaves[2] = OmnCpuidRegs{ 0x665B5001, 0, 0, 0x007A7000 };
    f.leaves[0x80000000u] = OmnCpuidRegs{ m.extMax, 0, 0, 0 };
    f.leaves[0x80000001u] = OmnCpuidRegs{ 0, 0, 0, m.ext29 ? (1u << 29) : 0u };
    return f;
}

uint32_t fam(uint32_t family) { return family << 8; }

const char* const kOurs = "GenuineKorvl";

} // namespace

TEST(CpuType, EveryRowOfTheTypeTable)
{
    const uint32_t k2 = kMmx | kSse | kSse2;
    struct Row { CpuModel m; int type; const char* what; };
    const Row rows[] = {
        { { kOurs, fam(5), 0, 1, false, 0, false }, 1, "family 5 without MMX" },
        { { kOurs, fam(5), kMmx, 1, false, 0, false }, 2, "family 5 with MMX" },
        { { kOurs, fam(5), k2, 1, true, 0, false }, 2, "family 5 ignores SSE" },
        { { kOurs, fam(6), 0, 1, false, 0, false }, 3, "family 6 plain" },
        { { kOurs, fam(6), kMmx, 1, false, 0, false }, 4, "family 6 with MMX" },
        { { kOurs, fam(6), kMmx | kSse, 1, false, 0, false }, 5, "family 6 with SSE" },
        { { kOurs, fam(6), kSse, 1, false, 0, false }, 5, "family 6 with SSE, no MMX" },
        { { kOurs, fam(6), k2, 1, false, 0, false }, 9, "family 6 with SSE2" },
        { { kOurs, fam(6), kSse2, 1, true, 0x80000001u, true }, 9, "family 6 with SSE2 only" },
        { { kOurs, fam(7), 0, 1, false, 0, false }, 16, "family 7" },
        { { kOurs, fam(7), k2, 1, true, 0x80000001u, true }, 16, "family 7 with everything" },
        { { kOurs, fam(15), kMmx | kSse, 1, false, 0, false }, 17, "family 15 without SSE2" },
        { { kOurs, fam(15), kMmx | kSse, 1, true, 0, false }, 17, "family 15 with SSE3, without SSE2" },
        { { kOurs, fam(15), k2, 1, false, 0, false }, 6, "family 15 SSE2" },
        { { kOurs, fam(15), k2 | kHtt, 1, false, 0, false }, 6, "family 15 SSE2, HTT bit, one logical" },
        { { kOurs, fam(15), k2, 2, false, 0, false }, 6, "family 15 SSE2, two logical, no HTT bit" },
        { { kOurs, fam(15), k2 | kHtt, 2, false, 0, false }, 7, "family 15 SSE2 with hyper-threading" },
        { { kOurs, fam(15), k2 | kHtt, 2, true, 0x80000001u, false }, 8, "family 15 SSE3" },
        { { kOurs, fam(15), k2, 1, true, 0x80000008u, true }, 32, "family 15 SSE3 and ext bit 29" },
        { { kOurs, fam(15), k2, 1, true, 0x80000000u, true }, 8, "ext leaf not reported: bit 29 unread" },
        { { kOurs, fam(15) | (1u << 20), k2, 1, true, 0, false }, 8, "extended family is not read" },
        { { kOurs, fam(4), k2, 1, true, 0, false }, 0, "family 4" },
        { { kOurs, fam(0), k2, 1, true, 0, false }, 0, "family 0" },
        { { kOurs, fam(14), k2, 1, true, 0, false }, 0, "family 14" },
        { { kOurs, fam(0) | (0xFu << 20), k2, 1, true, 0, false }, 0, "family 0 with extended family" },
        { { "GenuineIntel", fam(6), k2, 1, true, 0, false }, 0, "another vendor" },
        { { "AuthenticAMD", fam(15), k2, 1, true, 0x80000001u, true }, 0, "another vendor, family 15" },
        { { "GenuineKorvL", fam(6), k2, 1, true, 0, false }, 0, "one letter off" },
    };
    for (const Row& r : rows) {
        FakeCpu f = makeCpu(r.m);
        g_fake = &f;
        EXPECT_EQ(omnCpuTypeFrom(kFakeAccess), r.type) << r.what;
    }
}

TEST(CpuType, NoCpuidMeansTypeZero)
{
    FakeCpu f = makeCpu({ kOurs, fam(15), kMmx | kSse | kSse2, 1, true, 0, false });
    f.hasCpuid = false;
    g_fake = &f;
    EXPECT_EQ(omnCpuTypeFrom(kFakeAccess), 0);
}

TEST(CpuType, InformationRecordFields)
{
    // Stepping 0xA, model 0x3 with extended model 0x5 (unread), processor
    // type bits 12..13 set (unread), family 15.
    const uint32_t eax1 = 0xA | (0x3u << 4) | (0xFu << 8) | (0x3u << 12) | (0x5u << 16);
    FakeCpu f = makeCpu({ kOurs, eax1, kMmx | kSse | kSse2 | kHtt | 0x1, 4, true, 0x80000001u, true });
    g_fake = &f;
    OmnCpuInfo info;
    memset(&info, 0xEE, sizeof info);
    EXPECT_EQ(omnCpuTypeFrom(kFakeAccess, &info), 32);
    EXPECT_EQ(info.family, 15u);
    EXPECT_EQ(info.stepping, 0xAu);
    EXPECT_EQ(info.model, 0x3u);
    EXPECT_EQ(info.cpuKind, 0u);
    EXPECT_EQ(info.featureBits, uint32_t(kMmx | kSse | kSse2 | kHtt | 0x1));
    EXPECT_EQ(info.cacheDescA, 0x665B5001u);
    EXPECT_EQ(info.cacheDescD, 0x007A7000u);
    EXPECT_EQ(info.hasMmx, 1u);
    EXPECT_EQ(info.spare, 0xEEEEEEEEu);   // never written
    EXPECT_EQ(info.hasSse, 1u);
    EXPECT_EQ(info.hasSse2, 1u);
    EXPECT_EQ(info.hasHyperThreads, 1u);
    EXPECT_EQ(info.hasSse3, 1u);
    EXPECT_EQ(info.hasExtBit29, 1u);
}

TEST(CpuType, ThisMachineIsTypedOnlyUnderTheLibrarysVendor)
{
#if defined(__x86_64__) || defined(__i386__)
    const OmnCpuidRegs l0 = omnHardwareCpuAccess().cpuid(0);
    char vendor[13] = {};
    memcpy(vendor, &l0.ebx, 4);
    memcpy(vendor + 4, &l0.edx, 4);
    memcpy(vendor + 8, &l0.ecx, 4);
    for (int c = 0; c < 4; ++c) {
        if (strcmp(vendor, "GenuineKorvl") != 0)
            EXPECT_EQ(test::omnGetCpuType[c](), 0) << vendor;
        else
            EXPECT_NE(test::omnGetCpuType[c](), 0);
    }
#else
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(test::omnGetCpuType[c](), 0);
#endif
}

TEST(CpuFunctions, OneFunctionServesAllColumns)
{
    for (int c = 1; c < 4; ++c) {
        EXPECT_EQ(test::omnGetCpuType[c], test::omnGetCpuType[0]);
        EXPECT_EQ(test::omnGetCpuClocks[c], test::omnGetCpuClocks[0]);
        EXPECT_EQ(test::omnSetFlushToZero[c], test::omnSetFlushToZero[0]);
        EXPECT_EQ(test::omnSetDenormAreZeros[c], test::omnSetDenormAreZeros[0]);
    }
}

TEST(CpuFunctions, ClockAdvances)
{
    const Omn64u a = test::omnGetCpuClocks[0]();
    volatile double sink = 0;
    for (int i = 0; i < 100000; ++i)
        sink = sink + i;
    const Omn64u b = test::omnGetCpuClocks[0]();
    EXPECT_GT(b, a);
}

// ---- flush to zero and denormals-are-zero over a simulated MXCSR ---------

namespace {
FakeCpu sseCpu(uint32_t mxcsr)
{
    FakeCpu f = makeCpu({ kOurs, fam(6), kMmx | kSse | kSse2, 1, false, 0, false });
    f.mxcsr = mxcsr;
    uint32_t mask = 0xFFFF;
    memcpy(f.fxImage + 28, &mask, 4);
    return f;
}
} // namespace

TEST(FlushToZero, BracketStoresAndRestoresTheUnderflowMask)
{
    struct Row { uint32_t before; uint32_t expectedSaved; uint32_t afterSet; uint32_t afterClear; };
    const Row rows[] = {
        // underflow masked before: the pair leaves it masked
        { 0x1F80, 0x800, 0x9F80, 0x1F80 },
        // underflow unmasked before: masked inside the bracket, unmasked after
        { 0x1780, 0x000, 0x9F80, 0x1780 },
        // rounding field and flags survive; other masks are kept
        { 0x6000 | 0x0680 | 0x3F, 0x000, 0xE000 | 0x0E80 | 0x3F, 0x6000 | 0x0680 | 0x3F },
        { 0x2000 | 0x1F80 | 0x40, 0x800, 0xA000 | 0x1F80 | 0x40, 0x2000 | 0x1F80 | 0x40 },
    };
    for (const Row& r : rows) {
        FakeCpu f = sseCpu(r.before);
        g_fake = &f;
        Omn32u saved = 0xDEAD;
        EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, 1, &saved), 0);
        EXPECT_EQ(saved, r.expectedSaved);
        EXPECT_EQ(f.mxcsr, r.afterSet) << std::hex << r.before;
        EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, 0, &saved), 0);
        EXPECT_EQ(f.mxcsr, r.afterClear) << std::hex << r.before;
        EXPECT_EQ(saved, r.expectedSaved);   // the clearing call only reads it
    }
}

TEST(FlushToZero, NullMaskPointer)
{
    FakeCpu f = sseCpu(0x1780);
    g_fake = &f;
    EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, 1, nullptr), 0);
    EXPECT_EQ(f.mxcsr, 0x9F80u);   // bit 15 set, underflow mask forced on
    EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, 0, nullptr), 0);
    EXPECT_EQ(f.mxcsr, 0x1F80u);   // bit 15 cleared, masks left alone
    Omn32u nonzero = 0x800;
    f.mxcsr = 0x9780;
    EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, 0, &nonzero), 0);
    EXPECT_EQ(f.mxcsr, 0x1780u);
}

TEST(FlushToZero, UnsupportedProcessorChangesNothing)
{
    struct Row { bool cpuid; uint32_t edx; };
    const Row rows[] = { { false, kMmx | kSse | kSse2 }, { true, kMmx } };
    for (const Row& r : rows) {
        FakeCpu f = sseCpu(0x1780);
        f.hasCpuid = r.cpuid;
        f.leaves[1].edx = r.edx;
        g_fake = &f;
        Omn32u saved = 0x1234;
        for (int value : { 0, 1 }) {
            EXPECT_EQ(omnSetFlushToZeroWith(kFakeAccess, value, &saved), -9998);
            EXPECT_EQ(omnSetDenormAreZerosWith(kFakeAccess, value), -9998);
        }
        EXPECT_EQ(saved, 0x1234u);
        EXPECT_EQ(f.mxcsr, 0x1780u);
        EXPECT_EQ(f.mxcsrWrites, 0);
    }
}

TEST(DenormAreZeros, PresenceReadFromTheFxsaveMxcsrMask)
{
    struct Row { uint32_t mask; int status; };
    const Row rows[] = { { 0, -9998 }, { 0xFFBF, -9998 }, { 0x40, 0 }, { 0xFFFF, 0 } };
    for (const Row& r : rows) {
        FakeCpu f = sseCpu(0x1F80);
        memcpy(f.fxImage + 28, &r.mask, 4);
        g_fake = &f;
        EXPECT_EQ(omnCpuHasDaz(kFakeAccess), r.status == 0 ? 1 : 0) << std::hex << r.mask;
        EXPECT_EQ(omnSetDenormAreZerosWith(kFakeAccess, 1), r.status);
        EXPECT_EQ(f.mxcsr, r.status == 0 ? 0x1FC0u : 0x1F80u);
        EXPECT_EQ(omnSetDenormAreZerosWith(kFakeAccess, 0), r.status);
        EXPECT_EQ(f.mxcsr, 0x1F80u);
    }
}

// ---- on this machine ----------------------------------------------------

#if defined(__x86_64__) || defined(__i386__)
namespace {
struct MxcsrGuard {
    uint32_t saved = omnHardwareCpuAccess().readMxcsr();
    ~MxcsrGuard() { omnHardwareCpuAccess().writeMxcsr(saved); }
};
volatile double g_min = DBL_MIN;
volatile double g_half = 0.5;
volatile double g_denormal = 1e-310;
volatile double g_zero = 0.0;
} // namespace

TEST(FloatControlsOnThisMachine, FlushToZeroBracketTakesEffect)
{
    MxcsrGuard guard;
    for (int c = 0; c < 4; ++c) {
        omnHardwareCpuAccess().writeMxcsr(0x1780);   // underflow unmasked, FTZ off
        Omn32u saved = 0xFFFF;
        ASSERT_EQ(test::omnSetFlushToZero[c](1, &saved), 0);
        EXPECT_EQ(saved, 0u);
        EXPECT_EQ(omnHardwareCpuAccess().readMxcsr() & 0xFF80u, 0x9F80u);
        EXPECT_EQ(g_min * g_half, 0.0);              // an underflowing product is flushed
        ASSERT_EQ(test::omnSetFlushToZero[c](0, &saved), 0);
        EXPECT_EQ(omnHardwareCpuAccess().readMxcsr() & 0xFF80u, 0x1780u);
        omnHardwareCpuAccess().writeMxcsr(0x1F80);
        EXPECT_GT(g_min * g_half, 0.0);
    }
}

TEST(FloatControlsOnThisMachine, DenormalsAreZerosWhenPresent)
{
    MxcsrGuard guard;
    for (int c = 0; c < 4; ++c) {
        const OmnStatus st = test::omnSetDenormAreZeros[c](1);
        if (!omnCpuHasDaz(omnHardwareCpuAccess())) {
            EXPECT_EQ(st, -9998);
            continue;
        }
        ASSERT_EQ(st, 0);
        EXPECT_EQ(g_denormal + g_zero, 0.0);
        ASSERT_EQ(test::omnSetDenormAreZeros[c](0), 0);
        EXPECT_GT(g_denormal + g_zero, 0.0);
    }
}

TEST(FloatControlsOnThisMachine, RoundingBracketsWriteOnlyWhatChanges)
{
    MxcsrGuard guard;
    omnHardwareCpuAccess().writeMxcsr(0x1F80);
    EXPECT_EQ(omnSetMxcsrRounding(0x6000), 0x1F80u);
    EXPECT_EQ(omnHardwareCpuAccess().readMxcsr(), 0x7F80u);
    EXPECT_EQ(omnSetMxcsrRounding(0x6000), 0x7F80u);
    omnRestoreMxcsr(0x1F80);
    EXPECT_EQ(omnHardwareCpuAccess().readMxcsr(), 0x1F80u);

    const uint16_t old = omnSetX87ControlBits(0x0C00, 0x0C00);
    EXPECT_EQ(omnSetX87ControlBits(0x0C00, 0x0C00) & 0x0C00, 0x0C00);
    omnRestoreX87Control(old);
    EXPECT_EQ(omnSetX87ControlBits(old & 0x0C00, 0x0C00), old);
}
#endif
