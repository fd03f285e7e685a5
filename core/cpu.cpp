/*
 * cpu.cpp - processor identification and the floating-point controls.
 *
 * On x86 the registers are read with the instructions themselves; this is the
 * one place of the library that has no portable form.  Elsewhere the
 * functions keep their contracts with portable answers: no CPUID (type 0),
 * a monotonic clock, and -9998 from the two mode setters.
 */
#include "core/cpu.h"

#include <math.h>
#include <string.h>

#include "core/variants.h"

#if defined(__x86_64__) || defined(__i386__)
#  define OMN_X86 1
#  include <cpuid.h>
#  include <x86intrin.h>
#else
#  define OMN_X86 0
#  include <chrono>
#endif

namespace omn {

const char kVendorString[13] = "GenuineKorvl";

namespace {

#if OMN_X86
int hwHasCpuid()
{
    /* CPUID exists when bit 21 of the flags register can be toggled. */
#if defined(__x86_64__)
    const unsigned long long before = __builtin_ia32_readeflags_u64();
    __builtin_ia32_writeeflags_u64(before ^ 0x200000ULL);
    const unsigned long long after = __builtin_ia32_readeflags_u64();
    __builtin_ia32_writeeflags_u64(before);
#else
    const unsigned int before = __builtin_ia32_readeflags_u32();
    __builtin_ia32_writeeflags_u32(before ^ 0x200000U);
    const unsigned int after = __builtin_ia32_readeflags_u32();
    __builtin_ia32_writeeflags_u32(before);
#endif
    return ((before ^ after) & 0x200000U) != 0;
}

OmnCpuidRegs hwCpuid(uint32_t leaf)
{
    OmnCpuidRegs r;
    __cpuid_count(leaf, 0, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

void hwFxsave(void* area)
{
    __asm__ volatile("fxsave %0" : "=m"(*static_cast<unsigned char(*)[512]>(area)));
}

uint32_t hwReadMxcsr()
{
    uint32_t w;
    __asm__ volatile("stmxcsr %0" : "=m"(w));
    return w;
}

void hwWriteMxcsr(uint32_t w)
{
    __asm__ volatile("ldmxcsr %0" : : "m"(w));
}
#else
int hwHasCpuid() { return 0; }
OmnCpuidRegs hwCpuid(uint32_t) { return OmnCpuidRegs{0, 0, 0, 0}; }
void hwFxsave(void* area) { memset(area, 0, 512); }
uint32_t hwReadMxcsr() { return 0x1F80; }
void hwWriteMxcsr(uint32_t) {}
#endif

const OmnCpuAccess kHardware = { hwHasCpuid, hwCpuid, hwFxsave, hwReadMxcsr, hwWriteMxcsr };

uint32_t bit(uint32_t word, int n) { return (word >> n) & 1u; }

uint32_t vendorWord(int i)
{
    uint32_t w;
    memcpy(&w, kVendorString + 4 * i, 4);
    return w;
}

} // namespace

const OmnCpuAccess& omnHardwareCpuAccess() { return kHardware; }

void omnCpuInfoFill(const OmnCpuAccess& acc, OmnCpuInfo* info)
{
    const OmnCpuidRegs l1 = acc.cpuid(1);
    const OmnCpuidRegs l2 = acc.cpuid(2);
    info->family   = (l1.eax >> 8) & 0xF;   /* the extended family is not read */
    info->stepping = l1.eax & 0xF;
    info->model    = (l1.eax >> 4) & 0xF;   /* the extended model is not read */
    /* Taken from the already masked family field, so always 0. */
    info->cpuKind  = (info->family >> 12) & 0x3;
    info->featureBits = l1.edx;
    info->cacheDescA  = l2.eax;
    info->cacheDescD  = l2.edx;
    info->hasMmx  = bit(l1.edx, 23);
    info->hasSse  = bit(l1.edx, 25);
    info->hasSse2 = bit(l1.edx, 26);
    info->hasHyperThreads = (bit(l1.edx, 28) && ((l1.ebx >> 16) & 0xFF) > 1) ? 1u : 0u;
    info->hasSse3 = bit(l1.ecx, 0);
    info->hasExtBit29 = 0;
    if (acc.cpuid(0x80000000u).eax >= 0x80000001u)
        info->hasExtBit29 = bit(acc.cpuid(0x80000001u).edx, 29);
}

int omnCpuVendorMatches(const OmnCpuAccess& acc)
{
    const OmnCpuidRegs l0 = acc.cpuid(0);
    return l0.ebx == vendorWord(0) && l0.edx == vendorWord(1) && l0.ecx == vendorWord(2);
}

int omnCpuTypeFrom(const OmnCpuAccess& acc, OmnCpuInfo* out)
{
    if (!acc.hasCpuid() || !omnCpuVendorMatches(acc))
        return 0;
    OmnCpuInfo local;
    OmnCpuInfo* info = out ? out : &local;
    omnCpuInfoFill(acc, info);
    switch (info->family) {
    case 7:
        return 16;
    case 15:
        if (!info->hasSse2)
            return 17;
        if (!info->hasSse3)
            return info->hasHyperThreads ? 7 : 6;
        return info->hasExtBit29 ? 32 : 8;
    case 5:
        return info->hasMmx ? 2 : 1;
    case 6:
        if (info->hasSse2) return 9;
        if (info->hasSse)  return 5;
        return info->hasMmx ? 4 : 3;
    default:
        return 0;
    }
}

int omnCpuHasSse(const OmnCpuAccess& acc) { return static_cast<int>(bit(acc.cpuid(1).edx, 25)); }

int omnCpuHasDazInImage(const uint8_t* image)
{
    uint32_t mxcsrMask;
    memcpy(&mxcsrMask, image + 28, 4);   /* MXCSR_MASK of the FXSAVE layout */
    return mxcsrMask != 0 && (mxcsrMask & kMxcsrDaz) != 0;
}

int omnCpuHasDaz(const OmnCpuAccess& acc)
{
    alignas(16) uint8_t area[512];
    memset(area, 0, sizeof area);
    acc.fxsave(area);
    return omnCpuHasDazInImage(area);
}

uint32_t omnSetMxcsrBits(const OmnCpuAccess& acc, uint32_t bits, uint32_t mask)
{
    const uint32_t old = acc.readMxcsr();
    acc.writeMxcsr((old & ~mask) | (bits & mask));
    return old;
}

OmnStatus omnSetFlushToZeroWith(const OmnCpuAccess& acc, int value, Omn32u* pUMask)
{
    if (!acc.hasCpuid() || !omnCpuHasSse(acc))
        return omnStatusCpuNotSupported;
    if (value != 0) {
        const uint32_t saved = acc.readMxcsr() & kMxcsrExceptionMask;
        omnSetMxcsrBits(acc, kMxcsrFlushToZero, kMxcsrFlushToZero);
        /* Flush to zero needs underflow masked. */
        omnSetMxcsrBits(acc, saved | kMxcsrUnderflowMask, kMxcsrExceptionMask);
        if (pUMask != nullptr)
            *pUMask = saved & kMxcsrUnderflowMask;
    } else {
        omnSetMxcsrBits(acc, 0, kMxcsrFlushToZero);
        /* A saved word of 0 says underflow was unmasked before the bracket. */
        if (pUMask != nullptr && *pUMask == 0)
            omnSetMxcsrBits(acc, acc.readMxcsr() & (kMxcsrExceptionMask & ~kMxcsrUnderflowMask),
                            kMxcsrExceptionMask);
    }
    return omnStatusOk;
}

OmnStatus omnSetDenormAreZerosWith(const OmnCpuAccess& acc, int value)
{
    if (!acc.hasCpuid() || !omnCpuHasSse(acc) || !omnCpuHasDaz(acc))
        return omnStatusCpuNotSupported;
    omnSetMxcsrBits(acc, value != 0 ? kMxcsrDaz : 0u, kMxcsrDaz);
    return omnStatusOk;
}

uint32_t omnSetMxcsrRounding(uint32_t bits)
{
    const uint32_t old = hwReadMxcsr();
    if ((old & kMxcsrRounding) != (bits & kMxcsrRounding))
        hwWriteMxcsr((old & ~kMxcsrRounding) | (bits & kMxcsrRounding));
    return old;
}

void omnRestoreMxcsr(uint32_t word) { hwWriteMxcsr(word); }
uint32_t omnReadMxcsr() { return hwReadMxcsr(); }

#if OMN_X86
uint16_t omnSetX87ControlBits(uint16_t bits, uint16_t mask)
{
    uint16_t old;
    __asm__ volatile("fnstcw %0" : "=m"(old));
    if ((old & mask) != (bits & mask)) {
        const uint16_t w = static_cast<uint16_t>((old & ~mask) | (bits & mask));
        __asm__ volatile("fldcw %0" : : "m"(w));
    }
    return old;
}

void omnRestoreX87Control(uint16_t word) { __asm__ volatile("fldcw %0" : : "m"(word)); }
#else
uint16_t omnSetX87ControlBits(uint16_t, uint16_t) { return 0; }
void omnRestoreX87Control(uint16_t) {}
#endif

#if OMN_X86
void omnProcessorSinCos(double m, double p, double* mCos, double* mSin)
{
    long double c = p, sn = p;
    __asm__("fcos" : "+t"(c));
    __asm__("fsin" : "+t"(sn));
    *mCos = static_cast<double>(c * static_cast<long double>(m));
    *mSin = static_cast<double>(sn * static_cast<long double>(m));
}
#else
void omnProcessorSinCos(double m, double p, double* mCos, double* mSin)
{
    if (fabs(p) >= 9223372036854775808.0) {
        *mCos = m * p;
        *mSin = m * p;
        return;
    }
    *mCos = m * cos(p);
    *mSin = m * sin(p);
}
#endif

/* ---- the exported functions: one for all columns ----------------------- */
namespace common {

int omnGetCpuType() { return omnCpuTypeFrom(kHardware); }

Omn64u omnGetCpuClocks()
{
#if OMN_X86
    return __rdtsc();
#else
    return static_cast<Omn64u>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

OmnStatus omnSetFlushToZero(int value, Omn32u* pUMask) { return omnSetFlushToZeroWith(kHardware, value, pUMask); }

OmnStatus omnSetDenormAreZeros(int value) { return omnSetDenormAreZerosWith(kHardware, value); }

} // namespace common

} // namespace omn
