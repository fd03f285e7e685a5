/*
 * omns_exports.h - the list of every function the library exports, in
 * dispatch-table order.
 *
 * This file is the single source of truth for the exports.  It holds nothing
 * but entries; whoever includes it defines the two entry macros first and so
 * decides what an entry becomes.  From this one list are derived:
 *   - the prototypes of the public header (omns.h),
 *   - the forwarding stubs and their slots (core/stubs.S),
 *   - the per-column declarations and the dispatch table (core/),
 *   - the tests' per-column access to every variant (tests/).
 *
 *   OMN_EXPORT(ret, name, params)
 *       a function with its own variant in each column (omn::px::name,
 *       omn::a6::name, omn::w7::name, omn::t7::name).
 *   OMN_EXPORT_COMMON(ret, name, params)
 *       one function that serves all four columns (omn::common::name).
 *
 * Families are added at their place in the dispatch order as they are built.
 * The file has no include guard on purpose: it is included several times.
 */

/* Status messages */
OMN_EXPORT_COMMON(const char*, omnGetStatusString, (OmnStatus status))

/* Processor identification and floating-point controls */
OMN_EXPORT_COMMON(int,       omnGetCpuType,        (void))
OMN_EXPORT_COMMON(Omn64u,    omnGetCpuClocks,      (void))
OMN_EXPORT_COMMON(OmnStatus, omnSetFlushToZero,    (int value, Omn32u* pUMask))
OMN_EXPORT_COMMON(OmnStatus, omnSetDenormAreZeros, (int value))

/* Version record of the signal-processing group */
OMN_EXPORT(const OmnLibVersion*, omnsGetLibVersion, (void))

/* Aligned memory: 32-byte aligned blocks, all freed by omnsFree */
OMN_EXPORT(Omn32s*,  omnsMalloc_32s,  (int len))
OMN_EXPORT(Omn64f*,  omnsMalloc_64f,  (int len))
OMN_EXPORT(Omn32sc*, omnsMalloc_32sc, (int len))
OMN_EXPORT(Omn64fc*, omnsMalloc_64fc, (int len))
OMN_EXPORT_COMMON(void, omnsFree,     (void* ptr))

/* Copies (no overlap) */
OMN_EXPORT(OmnStatus, omnsCopy_8u,   (const Omn8u* pSrc, Omn8u* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_16s,  (const Omn16s* pSrc, Omn16s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_16sc, (const Omn16sc* pSrc, Omn16sc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_32f,  (const Omn32f* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_32fc, (const Omn32fc* pSrc, Omn32fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_64f,  (const Omn64f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsCopy_64fc, (const Omn64fc* pSrc, Omn64fc* pDst, int len))

/* Moves (overlap allowed) */
OMN_EXPORT(OmnStatus, omnsMove_8u,   (const Omn8u* pSrc, Omn8u* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_16s,  (const Omn16s* pSrc, Omn16s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_16sc, (const Omn16sc* pSrc, Omn16sc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_32f,  (const Omn32f* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_32fc, (const Omn32fc* pSrc, Omn32fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_64f,  (const Omn64f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMove_64fc, (const Omn64fc* pSrc, Omn64fc* pDst, int len))

/* Fills */
OMN_EXPORT(OmnStatus, omnsZero_64f,  (Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsZero_64fc, (Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSet_32s,   (Omn32s val, Omn32s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSet_32sc,  (Omn32sc val, Omn32sc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSet_64f,   (Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSet_64fc,  (Omn64fc val, Omn64fc* pDst, int len))

/* Test vectors */
OMN_EXPORT(OmnStatus, omnsVectorJaehne_32s, (Omn32s* pDst, int len, Omn32s magn))
OMN_EXPORT(OmnStatus, omnsVectorJaehne_64f, (Omn64f* pDst, int len, Omn64f magn))
OMN_EXPORT(OmnStatus, omnsVectorRamp_32s,   (Omn32s* pDst, int len, Omn32f offset, Omn32f slope))
OMN_EXPORT(OmnStatus, omnsVectorRamp_64f,   (Omn64f* pDst, int len, Omn32f offset, Omn32f slope))

/* Complex parts: conjugates, real and imaginary parts, splitting and joining */
OMN_EXPORT(OmnStatus, omnsReal_64fc,       (const Omn64fc* pSrc, Omn64f* pDstRe, int len))
OMN_EXPORT(OmnStatus, omnsImag_64fc,       (const Omn64fc* pSrc, Omn64f* pDstIm, int len))
OMN_EXPORT(OmnStatus, omnsCplxToReal_64fc, (const Omn64fc* pSrc, Omn64f* pDstRe, Omn64f* pDstIm, int len))
OMN_EXPORT(OmnStatus, omnsRealToCplx_64f,  (const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConj_64fc_I,     (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsConj_64fc,       (const Omn64fc* pSrc, Omn64fc* pDst, int len))

/* Packed real spectra (Pack, Perm, Ccs) expanded to the full complex
   spectrum of len values; ConjFlip reverses and conjugates. */
OMN_EXPORT(OmnStatus, omnsConjFlip_64fc,   (const Omn64fc* pSrc, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConjCcs_64fc_I,  (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsConjCcs_64fc,    (const Omn64fc* pSrc, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConjPack_64fc_I, (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsConjPack_64fc,   (const Omn64f* pSrc, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConjPerm_64fc_I, (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsConjPerm_64fc,   (const Omn64f* pSrc, Omn64fc* pDst, int len))

/* Sample-format conversions.  24-bit samples are packed, three bytes each,
   low byte first, and passed as bytes; lengths count samples. */
OMN_EXPORT(OmnStatus, omnsConvert_8s16s,      (const Omn8s* pSrc, Omn16s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_16s32s,     (const Omn16s* pSrc, Omn32s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32s16s,     (const Omn32s* pSrc, Omn16s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_8s32f,      (const Omn8s* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_8u32f,      (const Omn8u* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_16s32f,     (const Omn16s* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_16u32f,     (const Omn16u* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32s64f,     (const Omn32s* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32s32f,     (const Omn32s* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32f8s_Sfs,  (const Omn32f* pSrc, Omn8s* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f8u_Sfs,  (const Omn32f* pSrc, Omn8u* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f16s_Sfs, (const Omn32f* pSrc, Omn16s* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f16u_Sfs, (const Omn32f* pSrc, Omn16u* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_64f32s_Sfs, (const Omn64f* pSrc, Omn32s* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f32s_Sfs, (const Omn32f* pSrc, Omn32s* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f64f,     (const Omn32f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_64f32f,     (const Omn64f* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_16s32f_Sfs, (const Omn16s* pSrc, Omn32f* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_16s64f_Sfs, (const Omn16s* pSrc, Omn64f* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32s32f_Sfs, (const Omn32s* pSrc, Omn32f* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32s64f_Sfs, (const Omn32s* pSrc, Omn64f* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32s16s_Sfs, (const Omn32s* pSrc, Omn16s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_24u32u,     (const Omn8u* pSrc, Omn32u* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32u24u_Sfs, (const Omn32u* pSrc, Omn8u* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_24u32f,     (const Omn8u* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32f24u_Sfs, (const Omn32f* pSrc, Omn8u* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_24s32s,     (const Omn8u* pSrc, Omn32s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32s24s_Sfs, (const Omn32s* pSrc, Omn8u* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_24s32f,     (const Omn8u* pSrc, Omn32f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsConvert_32f24s_Sfs, (const Omn32f* pSrc, Omn8u* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_16s16f,     (const Omn16s* pSrc, Omn16f* pDst, int len, int rndMode))
OMN_EXPORT(OmnStatus, omnsConvert_16f16s_Sfs, (const Omn16f* pSrc, Omn16s* pDst, int len, int rndMode, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsConvert_32f16f,     (const Omn32f* pSrc, Omn16f* pDst, int len, int rndMode))
OMN_EXPORT(OmnStatus, omnsConvert_16f32f,     (const Omn16f* pSrc, Omn32f* pDst, int len))

/* Cartesian and polar forms */
OMN_EXPORT(OmnStatus, omnsCartToPolar_64fc, (const Omn64fc* pSrc, Omn64f* pDstMagn, Omn64f* pDstPhase, int len))
OMN_EXPORT(OmnStatus, omnsCartToPolar_64f,  (const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDstMagn, Omn64f* pDstPhase, int len))
OMN_EXPORT(OmnStatus, omnsPolarToCart_64fc, (const Omn64f* pSrcMagn, const Omn64f* pSrcPhase, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsPolarToCart_64f,  (const Omn64f* pSrcMagn, const Omn64f* pSrcPhase, Omn64f* pDstRe, Omn64f* pDstIm, int len))

/* Reversal and byte order */
OMN_EXPORT(OmnStatus, omnsFlip_64f,        (const Omn64f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsFlip_64f_I,      (Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSwapBytes_24u_I, (Omn8u* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSwapBytes_24u,   (const Omn8u* pSrc, Omn8u* pDst, int len))

/* Element-wise arithmetic on doubles and double complex.  Two-source forms
   take the second source as minuend and dividend. */
OMN_EXPORT(OmnStatus, omnsAddC_64f_I,     (Omn64f val, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsAddC_64fc_I,    (Omn64fc val, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSubC_64f_I,     (Omn64f val, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSubC_64fc_I,    (Omn64fc val, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSubCRev_64f_I,  (Omn64f val, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSubCRev_64fc_I, (Omn64fc val, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMulC_64f_I,     (Omn64f val, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMulC_64fc_I,    (Omn64fc val, Omn64fc* pSrcDst, int len))

/* Scaled integer arithmetic: exact 64-bit accumulator, then the scale
   factor.  Two-source forms take the second source as minuend and dividend. */
OMN_EXPORT(OmnStatus, omnsAddC_32s_ISfs,     (Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsAddC_32sc_ISfs,    (Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubC_32s_ISfs,     (Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubC_32sc_ISfs,    (Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubCRev_32s_ISfs,  (Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubCRev_32sc_ISfs, (Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMulC_32s_ISfs,     (Omn32s val, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMulC_32sc_ISfs,    (Omn32sc val, Omn32sc* pSrcDst, int len, int scaleFactor))

/* Element-wise arithmetic on doubles (continued) */
OMN_EXPORT(OmnStatus, omnsAddC_64f,       (const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsAddC_64fc,      (const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSubC_64f,       (const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSubC_64fc,      (const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSubCRev_64f,    (const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSubCRev_64fc,   (const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMulC_64f,       (const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMulC_64fc,      (const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len))

/* Scaled integer arithmetic (continued) */
OMN_EXPORT(OmnStatus, omnsAddC_32s_Sfs,      (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsAddC_32sc_Sfs,     (const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubC_32s_Sfs,      (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubC_32sc_Sfs,     (const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubCRev_32s_Sfs,   (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSubCRev_32sc_Sfs,  (const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMulC_32s_Sfs,      (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMulC_32sc_Sfs,     (const Omn32sc* pSrc, Omn32sc val, Omn32sc* pDst, int len, int scaleFactor))

/* Element-wise arithmetic on doubles (continued) */
OMN_EXPORT(OmnStatus, omnsAdd_64f_I,      (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsAdd_64fc_I,     (const Omn64fc* pSrc, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSub_64f_I,      (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSub_64fc_I,     (const Omn64fc* pSrc, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMul_64f_I,      (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMul_64fc_I,     (const Omn64fc* pSrc, Omn64fc* pSrcDst, int len))

/* Scaled integer arithmetic (continued) */
OMN_EXPORT(OmnStatus, omnsAdd_32s_ISfs,      (const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsAdd_32sc_ISfs,     (const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSub_32s_ISfs,      (const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSub_32sc_ISfs,     (const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32s_ISfs,      (const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32sc_ISfs,     (const Omn32sc* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor))

/* Element-wise arithmetic on doubles (continued) */
OMN_EXPORT(OmnStatus, omnsAdd_64f,        (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsAdd_64fc,       (const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSub_64f,        (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSub_64fc,       (const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMul_64f,        (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMul_64fc,       (const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len))

/* Scaled integer arithmetic (continued) */
OMN_EXPORT(OmnStatus, omnsAdd_32s_Sfs,       (const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsAdd_32sc_Sfs,      (const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSub_32s_Sfs,       (const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsSub_32sc_Sfs,      (const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32s_Sfs,       (const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32sc_Sfs,      (const Omn32sc* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32s32sc_ISfs,  (const Omn32s* pSrc, Omn32sc* pSrcDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMul_32s32sc_Sfs,   (const Omn32s* pSrc1, const Omn32sc* pSrc2, Omn32sc* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsAddProduct_32s_Sfs,(const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pSrcDst, int len, int scaleFactor))

/* Element-wise arithmetic on doubles (continued) */
OMN_EXPORT(OmnStatus, omnsAddProduct_64f, (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsAddProduct_64fc,(const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqr_64f_I,      (Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqr_64fc_I,     (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqr_64f,        (const Omn64f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSqr_64fc,       (const Omn64fc* pSrc, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsDiv_64f,        (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsDiv_64fc,       (const Omn64fc* pSrc1, const Omn64fc* pSrc2, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsDivC_64f,       (const Omn64f* pSrc, Omn64f val, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsDivC_64fc,      (const Omn64fc* pSrc, Omn64fc val, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsDiv_64f_I,      (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsDiv_64fc_I,     (const Omn64fc* pSrc, Omn64fc* pSrcDst, int len))

/* Scaled integer arithmetic (continued) */
OMN_EXPORT(OmnStatus, omnsDiv_32s_Sfs,       (const Omn32s* pSrc1, const Omn32s* pSrc2, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsDiv_32s_ISfs,      (const Omn32s* pSrc, Omn32s* pSrcDst, int len, int scaleFactor))

/* Element-wise arithmetic on doubles (continued) */
OMN_EXPORT(OmnStatus, omnsDivC_64f_I,     (Omn64f val, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsDivC_64fc_I,    (Omn64fc val, Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqrt_64f_I,     (Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqrt_64fc_I,    (Omn64fc* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsSqrt_64f,       (const Omn64f* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsSqrt_64fc,      (const Omn64fc* pSrc, Omn64fc* pDst, int len))
OMN_EXPORT(OmnStatus, omnsAbs_64f_I,      (Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsAbs_64f,        (const Omn64f* pSrc, Omn64f* pDst, int len))

/* Scaled integer arithmetic (continued) */
OMN_EXPORT(OmnStatus, omnsAbs_32s_I,         (Omn32s* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsAbs_32s,           (const Omn32s* pSrc, Omn32s* pDst, int len))

/* Magnitude and squared magnitude */
OMN_EXPORT(OmnStatus, omnsMagnitude_64fc,         (const Omn64fc* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMagnitude_64f,          (const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMagnitude_32sc_Sfs,     (const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor))
OMN_EXPORT(OmnStatus, omnsMagSquared_32sc32s_Sfs, (const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor))

/* Phase */
OMN_EXPORT(OmnStatus, omnsPhase_64fc,     (const Omn64fc* pSrc, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsPhase_64f,      (const Omn64f* pSrcRe, const Omn64f* pSrcIm, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsPhase_32sc_Sfs, (const Omn32sc* pSrc, Omn32s* pDst, int len, int scaleFactor))

/* Integer shifts */
OMN_EXPORT(OmnStatus, omnsLShiftC_32s_I, (Omn32s val, Omn32s* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsLShiftC_32s,   (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len))
OMN_EXPORT(OmnStatus, omnsRShiftC_32s_I, (Omn32s val, Omn32s* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsRShiftC_32s,   (const Omn32s* pSrc, Omn32s val, Omn32s* pDst, int len))

/* Products of packed real spectra; len counts elements of the full
   spectrum.  MulPackConj conjugates the array it overwrites. */
OMN_EXPORT(OmnStatus, omnsMulPack_64f_I,     (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMulPerm_64f_I,     (const Omn64f* pSrc, Omn64f* pSrcDst, int len))
OMN_EXPORT(OmnStatus, omnsMulPack_64f,       (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMulPerm_64f,       (const Omn64f* pSrc1, const Omn64f* pSrc2, Omn64f* pDst, int len))
OMN_EXPORT(OmnStatus, omnsMulPackConj_64f_I, (const Omn64f* pSrc, Omn64f* pSrcDst, int len))

/* Up- and down-sampling without filtering; the phase carries across calls */
OMN_EXPORT(OmnStatus, omnsSampleUp_64f,    (const Omn64f* pSrc, int srcLen, Omn64f* pDst, int* pDstLen, int factor, int* pPhase))
OMN_EXPORT(OmnStatus, omnsSampleUp_64fc,   (const Omn64fc* pSrc, int srcLen, Omn64fc* pDst, int* pDstLen, int factor, int* pPhase))
OMN_EXPORT(OmnStatus, omnsSampleDown_64f,  (const Omn64f* pSrc, int srcLen, Omn64f* pDst, int* pDstLen, int factor, int* pPhase))
OMN_EXPORT(OmnStatus, omnsSampleDown_64fc, (const Omn64fc* pSrc, int srcLen, Omn64fc* pDst, int* pDstLen, int factor, int* pPhase))

/* Version record of the accuracy-class group */
OMN_EXPORT(const OmnLibVersion*, omnvmGetLibVersion, (void))
