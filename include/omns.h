/*
 * omns.h - public interface of the omns signal-processing primitives library.
 *
 * Every function declared here is reached through a slot that the library
 * fills once, when it is loaded, with the variant of one processor column
 * (px, a6, w7 or t7).  All functions check their arguments and return an
 * OmnStatus (0 success, negative error, positive warning) unless noted.
 */
#ifndef OMNS_H
#define OMNS_H

#ifdef __cplusplus
extern "C" {
#endif

/* ---- element types ---------------------------------------------------- */
typedef unsigned char      Omn8u;
typedef signed char        Omn8s;
typedef unsigned short     Omn16u;
typedef signed short       Omn16s;
typedef unsigned int       Omn32u;
typedef signed int         Omn32s;
typedef float              Omn32f;
typedef double             Omn64f;
typedef unsigned long long Omn64u;
typedef signed long long   Omn64s;

/* 16-bit floating point: 1 sign bit, 5 exponent bits (bias 15), 10 fraction
   bits, held as its bit pattern. */
typedef Omn16u Omn16f;

/* Complex elements: real part first, no gap. */
typedef struct { Omn16s re; Omn16s im; } Omn16sc;
typedef struct { Omn32s re; Omn32s im; } Omn32sc;
typedef struct { Omn32f re; Omn32f im; } Omn32fc;
typedef struct { Omn64f re; Omn64f im; } Omn64fc;

/* ---- status ------------------------------------------------------------ */
typedef int OmnStatus;

enum {
    omnStatusCpuNotSupported      = -9998,
    omnStatusNegativeShift        = -32,
    omnStatusBadSampleFactor      = -31,
    omnStatusBadSamplePhase       = -30,
    omnStatusBadMrFirFactor       = -29,
    omnStatusBadMrFirPhase        = -28,
    omnStatusBadRelativeFrequency = -27,
    omnStatusBadFirLength         = -26,
    omnStatusBadIirOrder          = -25,
    omnStatusNegativeLevel        = -19,
    omnStatusBadThresholdBounds   = -18,
    omnStatusContextMismatch      = -17,
    omnStatusBadFftFlag           = -16,
    omnStatusBadFftOrder          = -15,
    omnStatusDivideByZero         = -10,
    omnStatusNoMemory             = -9,
    omnStatusNullPointer          = -8,
    omnStatusBadSize              = -6,
    omnStatusOk                   = 0,
    omnStatusSqrtNegative         = 3,
    omnStatusInvThreshZero        = 4,
    omnStatusEvenMedianMask       = 5,
    omnStatusDivZeroValues        = 6,
    omnStatusLnZero               = 7,
    omnStatusLnNegative           = 8,
    omnStatusNanArgument          = 9,
    omnStatusOverflow             = 12,
    omnStatusUnderflow            = 17,
    omnStatusSingularity          = 18,
    omnStatusDomain               = 19
};
enum {
    omnStatusBadTonePhase          = -44,
    omnStatusBadToneFrequency      = -45,
    omnStatusBadToneMagnitude      = -46,
    omnStatusBadTriangleAsymmetry  = -40,
    omnStatusBadTrianglePhase      = -41,
    omnStatusBadTriangleFrequency  = -42,
    omnStatusBadTriangleMagnitude  = -43,
    omnStatusNegativeMagnitude     = -38,
    omnStatusKaiserTooHuge         = -39
};

/* ---- version record ------------------------------------------------------ */
typedef struct {
    int         major;
    int         minor;
    int         majorBuild;
    int         build;
    char        targetCpu[4];   /* column label, NUL-padded: "px", "a6", "w7", "t7" */
    const char* Name;
    const char* Version;
    const char* BuildDate;
} OmnLibVersion;

/* ---- the exported functions ---------------------------------------------- */
#if defined(_WIN32)
#  define OMNAPI
#else
#  define OMNAPI __attribute__((visibility("default")))
#endif

#define OMN_EXPORT(ret, name, params)        OMNAPI ret name params;
#define OMN_EXPORT_COMMON(ret, name, params) OMNAPI ret name params;
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

#ifdef __cplusplus
}
#endif

#endif /* OMNS_H */
