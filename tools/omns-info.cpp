// omns-info: what the library sees on this machine, and how fast its data
// movers run here.
//
// Prints both version records, the processor type and information record,
// the column in force, then a throughput table: the library's functions
// through their exports (the column in force) and each column's variant,
// against the C library or a plain loop on the same buffers.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <chrono>
#include <vector>

#include "core/cpu.h"
#include "core/dispatch.h"
#include "core/variants.h"
#include "omns.h"

namespace {

void printVersion(const char* what, const OmnLibVersion* v)
{
    printf("%-28s %d.%d.%d.%d  targetCpu \"%.4s\"  %s  %s  %s\n", what, v->major, v->minor, v->majorBuild,
           v->build, v->targetCpu, v->Name, v->Version, v->BuildDate);
}

void printCpuInfo()
{
    const omn::OmnCpuAccess& hw = omn::omnHardwareCpuAccess();
    char vendor[13] = {};
    if (hw.hasCpuid()) {
        const omn::OmnCpuidRegs l0 = hw.cpuid(0);
        memcpy(vendor, &l0.ebx, 4);
        memcpy(vendor + 4, &l0.edx, 4);
        memcpy(vendor + 8, &l0.ecx, 4);
    }
    const int type = omnGetCpuType();
    printf("processor vendor             \"%s\" (typed processors report \"%s\")\n", vendor, omn::kVendorString);
    printf("processor type               %d\n", type);
    omn::OmnCpuInfo info;
    memset(&info, 0, sizeof info);
    if (hw.hasCpuid())
        omn::omnCpuInfoFill(hw, &info);
    printf("cpu information record       family %u model %u stepping %u cpuKind %u\n", info.family, info.model,
           info.stepping, info.cpuKind);
    printf("                             featureBits 0x%08x cacheDescA 0x%08x cacheDescD 0x%08x\n",
           info.featureBits, info.cacheDescA, info.cacheDescD);
    printf("                             mmx %u sse %u sse2 %u sse3 %u hyperThreads %u extBit29 %u\n", info.hasMmx,
           info.hasSse, info.hasSse2, info.hasSse3, info.hasHyperThreads, info.hasExtBit29);
    printf("denormals-are-zero mode      %s\n", omn::omnCpuHasDaz(hw) ? "present" : "absent");
}

// ---- throughput -----------------------------------------------------------

struct Buffers {
    std::vector<double> src, src2, dst;
    explicit Buffers(size_t n) : src(n, 1.25), src2(n, -0.5), dst(n, 0.0) {}
};

using Kernel = void (*)(Buffers&, int n);

struct Row {
    const char* name;
    double bytesPerElement;   // bytes moved per element (read + written)
    Kernel run[6];            // export, px, a6, w7, t7, C library
};

template <OmnStatus (*F)(const Omn64f*, Omn64f*, int)>
void copyK(Buffers& b, int n) { F(b.src.data(), b.dst.data(), n); }
template <OmnStatus (*F)(const Omn64f*, Omn64f*, int)>
void moveK(Buffers& b, int n) { F(b.dst.data() + 1, b.dst.data(), n - 1); }
template <OmnStatus (*F)(Omn64f, Omn64f*, int)>
void setK(Buffers& b, int n) { F(3.5, b.dst.data(), n); }
template <OmnStatus (*F)(Omn64f*, int)>
void zeroK(Buffers& b, int n) { F(b.dst.data(), n); }

template <OmnStatus (*F)(const Omn64f*, const Omn64f*, Omn64f*, int)>
void addK(Buffers& b, int n) { F(b.src.data(), b.src2.data(), b.dst.data(), n); }

void libcCopy(Buffers& b, int n) { memcpy(b.dst.data(), b.src.data(), n * sizeof(double)); }
void libcMove(Buffers& b, int n) { memmove(b.dst.data(), b.dst.data() + 1, (n - 1) * sizeof(double)); }
void libcSet(Buffers& b, int n)
{
    double* d = b.dst.data();
    for (int i = 0; i < n; ++i)
        d[i] = 3.5;
}
void libcZero(Buffers& b, int n) { memset(b.dst.data(), 0, n * sizeof(double)); }
void loopAdd(Buffers& b, int n)
{
    const double* x = b.src.data();
    const double* y = b.src2.data();
    double* d = b.dst.data();
    for (int i = 0; i < n; ++i)
        d[i] = y[i] + x[i];
}

#define OMN_ROW(kind, fn, bytes, libc) \
    { #fn, bytes, { kind<::fn>, kind<omn::px::fn>, kind<omn::a6::fn>, kind<omn::w7::fn>, kind<omn::t7::fn>, libc } }

const Row kRows[] = {
    OMN_ROW(copyK, omnsCopy_64f, 16, libcCopy),
    OMN_ROW(moveK, omnsMove_64f, 16, libcMove),
    OMN_ROW(setK, omnsSet_64f, 8, libcSet),
    OMN_ROW(zeroK, omnsZero_64f, 8, libcZero),
    OMN_ROW(addK, omnsAdd_64f, 24, loopAdd),
};
const char* const kLibcName[] = { "memcpy", "memmove", "loop", "memset", "loop" };

// Best of a few timed repetitions, in GB/s.
double gbPerSecond(Kernel k, Buffers& b, int n, double bytesPerElement)
{
    using clock = std::chrono::steady_clock;
    const double bytes = bytesPerElement * n;
    const int inner = bytes < 1e6 ? static_cast<int>(4e7 / bytes) + 1 : 2;
    k(b, n);   // warm up
    double best = 0;
    for (int rep = 0; rep < 5; ++rep) {
        const auto t0 = clock::now();
        for (int i = 0; i < inner; ++i)
            k(b, n);
        const double s = std::chrono::duration<double>(clock::now() - t0).count();
        const double gbs = bytes * inner / s / 1e9;
        if (gbs > best)
            best = gbs;
    }
    return best;
}

void printThroughput()
{
    struct Size { const char* label; int elements; };
    const Size sizes[] = { { "32 KiB", 4096 }, { "64 MiB", 8 << 20 } };
    printf("\nthroughput in GB/s (best of 5; bytes read + written)\n");
    printf("%-14s %-7s %8s %8s %8s %8s %8s   %s\n", "function", "size", "export", "px", "a6", "w7", "t7", "plain C");
    for (const Size& s : sizes) {
        Buffers b(static_cast<size_t>(s.elements));
        for (size_t r = 0; r < sizeof kRows / sizeof kRows[0]; ++r) {
            const Row& row = kRows[r];
            printf("%-14s %-7s", row.name + 4, s.label);
            for (int c = 0; c < 5; ++c)
                printf(" %8.2f", gbPerSecond(row.run[c], b, s.elements, row.bytesPerElement));
            printf("   %6.2f %s\n", gbPerSecond(row.run[5], b, s.elements, row.bytesPerElement), kLibcName[r]);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const bool quick = argc > 1 && strcmp(argv[1], "--no-timing") == 0;
    static const char* const kColumns[4] = { "px", "a6", "w7", "t7" };
    printf("omns %s\n\n", omnsGetLibVersion()->Version);
    printVersion("signal-processing group", omnsGetLibVersion());
    printVersion("accuracy-class group", omnvmGetLibVersion());
    printCpuInfo();
    printf("column in force              %s\n", kColumns[omn::omnSelectColumn()]);
    if (!quick)
        printThroughput();
    return 0;
}
