/*
 * cpu.h - what the library knows of the processor, and its floating-point
 * control operations.  One function serves all columns.
 *
 * Everything that touches the processor goes through OmnCpuAccess, so that
 * tests can replay recorded CPUID answers, FXSAVE images and a simulated
 * MXCSR.  omnHardwareCpuAccess() is the real one.
 */
#ifndef OMN_CORE_CPU_H
#define OMN_CORE_CPU_H

#include <stdint.h>

#include "omns.h"

namespace omn {

struct OmnCpuidRegs {
    uint32_t eax, ebx, ecx, edx;
};

struct OmnCpuAccess {
    int          (*hasCpuid)();              /* EFLAGS bit 21 can be toggled */
    OmnCpuidRegs (*cpuid)(uint32_t leaf);
    void         (*fxsave)(void* area);      /* 512 bytes, 16-aligned */
    uint32_t     (*readMxcsr)();
    void         (*writeMxcsr)(uint32_t word);
};

const OmnCpuAccess& omnHardwareCpuAccess();

/* The CPU information record, filled by one identification pass. */
struct OmnCpuInfo {
    uint32_t family;
    uint32_t stepping;
    uint32_t model;
    uint32_t cpuKind;          /* always 0 */
    uint32_t featureBits;      /* EDX of leaf 1 */
    uint32_t cacheDescA;       /* EAX of leaf 2 */
    uint32_t cacheDescD;       /* EDX of leaf 2 */
    uint32_t hasMmx;
    uint32_t spare;            /* never written by the pass */
    uint32_t hasSse;
    uint32_t hasSse2;
    uint32_t hasHyperThreads;
    uint32_t hasSse3;
    uint32_t hasExtBit29;
};

/* Twelve characters that CPUID leaf 0 must report for a typed processor. */
extern const char kVendorString[13];

void omnCpuInfoFill(const OmnCpuAccess& acc, OmnCpuInfo* info);
int  omnCpuVendorMatches(const OmnCpuAccess& acc);
/* The processor type; fills *info when the vendor matches and info is set. */
int  omnCpuTypeFrom(const OmnCpuAccess& acc, OmnCpuInfo* info = nullptr);

int  omnCpuHasSse(const OmnCpuAccess& acc);
int  omnCpuHasDazInImage(const uint8_t* fxsaveImage);
int  omnCpuHasDaz(const OmnCpuAccess& acc);

uint32_t  omnSetMxcsrBits(const OmnCpuAccess& acc, uint32_t bits, uint32_t mask);
OmnStatus omnSetFlushToZeroWith(const OmnCpuAccess& acc, int value, Omn32u* pUMask);
OmnStatus omnSetDenormAreZerosWith(const OmnCpuAccess& acc, int value);

/* MXCSR bits used by the controls. */
enum : uint32_t {
    kMxcsrDaz           = 0x0040,
    kMxcsrInvalidMask   = 0x0080,
    kMxcsrDenormalMask  = 0x0100,
    kMxcsrExceptionMask = 0x1F80,
    kMxcsrUnderflowMask = 0x0800,
    kMxcsrRounding      = 0x6000,
    kMxcsrFlushToZero   = 0x8000,
};

/* Floating-point environment brackets used by kernels that change the
   rounding for the length of a call.  The writes are skipped when nothing
   changes, since loading a control word is slow. */
uint32_t omnSetMxcsrRounding(uint32_t bits);      /* returns the old MXCSR */
void     omnRestoreMxcsr(uint32_t word);
uint32_t omnReadMxcsr();                          /* the calling thread's MXCSR */
uint16_t omnSetX87ControlBits(uint16_t bits, uint16_t mask);  /* returns the old word */
void     omnRestoreX87Control(uint16_t word);

/* m * cos(p) and m * sin(p) by the processor's own sine and cosine: the x87
   instructions on the phase as stored, the products taken in the unit's
   extended precision and each rounded once to double.  A phase of 2^63 or
   more in size is out of the instructions' range and comes back unchanged.
   Without an x87 unit, the C runtime's sine and cosine, with the same rule
   for such phases. */
void omnProcessorSinCos(double m, double p, double* mCos, double* mSin);

} // namespace omn

#endif /* OMN_CORE_CPU_H */
