/*
 * fft.h - the FFT engine's objects and the per-column declarations of its
 * operations (from fft/fft_list.h).  Internal: nothing here is exported.
 *
 * Both kinds of spec share one record.  Its table pointers are twelve
 * consecutive words that all point to blocks of the library's allocator,
 * so that destruction can walk them as one array.
 */
#ifndef OMN_FFT_FFT_H
#define OMN_FFT_FFT_H

#include "omns.h"

/* Context ids: the first word of every spec. */
enum : Omn32u { kOmnCplxFftSpecId = 7, kOmnRealFftSpecId = 9 };

/* Flag values of the creators. */
enum : int {
    kOmnFftDivFwdByN = 1,   /* forward scaled by 1/N */
    kOmnFftDivInvByN = 2,   /* inverse scaled by 1/N */
    kOmnFftDivBySqrtN = 4,  /* both scaled by 1/sqrt(N) */
    kOmnFftNoDivByAny = 8   /* neither */
};

/* Number of blocking levels a spec can hold: three reach order 30. */
enum : int { kOmnFftMaxLevels = 3 };

struct OmnFftSpecRecord {
    Omn32u id;            /* 7 complex, 9 real; 0 once destroyed */
    Omn32s order;         /* log2 of the transform length */
    Omn32s scaleFwd;      /* nonzero: the forward multiplies by scale */
    Omn32s scaleInv;      /* nonzero: the inverse multiplies by scale */
    Omn64f scale;         /* 1/N or 1/sqrt(N); 0 when neither flag is set */
    Omn32s hint;          /* stored, never read */
    Omn32s bufSize;       /* bytes of work memory a transform uses */
    /* --- twelve table pointers, freed as one array --- */
    void* bitRev;
    void* leafTwiddle;
    void* quadTwiddle;
    void* quadTwiddleHigh;   /* never filled; stays null */
    void* recombFwd;
    void* recombInv;
    void* levelTwiddle[kOmnFftMaxLevels];
    void* levelCross[kOmnFftMaxLevels];
};

enum : int { kOmnFftTableSlots = 12 };

/* The two kinds are distinct types on the same record. */
struct OmnCplxFftSpec : OmnFftSpecRecord {};
struct OmnRealFftSpec : OmnFftSpecRecord {};

#pragma GCC visibility push(hidden)

namespace omn {

#define OMN_FFT_FN(ret, name, params) ret name params;
namespace px {
#include "fft/fft_list.h"
}
namespace a6 {
#include "fft/fft_list.h"
}
namespace w7 {
#include "fft/fft_list.h"
}
namespace t7 {
#include "fft/fft_list.h"
}
#undef OMN_FFT_FN

} // namespace omn

#pragma GCC visibility pop

#endif /* OMN_FFT_FFT_H */
