/*
 * fft_list.h - the one list of the FFT engine's internal operations.
 *
 * Nothing here is exported: the engine serves the DCT, convolution,
 * correlation and FIR families of the same column, which call it by name
 * (omn::<column>::omnsCplxFftFwd_64fc ...).  fft/fft.h expands this list into
 * per-column declarations and tests/fft_columns.h into per-column arrays.
 *
 * No include guard: the list is expanded several times with different
 * definitions of OMN_FFT_FN(ret, name, params).
 */
OMN_FFT_FN(OmnStatus, omnsCplxFftCreate_64fc,     (OmnCplxFftSpec** ppSpec, int order, int flag, int hint))
OMN_FFT_FN(OmnStatus, omnsRealFftCreate_64f,      (OmnRealFftSpec** ppSpec, int order, int flag, int hint))
OMN_FFT_FN(OmnStatus, omnsCplxFftGetBufSize_64fc, (const OmnCplxFftSpec* pSpec, int* pSize))
OMN_FFT_FN(OmnStatus, omnsRealFftGetBufSize_64f,  (const OmnRealFftSpec* pSpec, int* pSize))
OMN_FFT_FN(OmnStatus, omnsCplxFftFwd_64fc,        (const Omn64fc* pSrc, Omn64fc* pDst, const OmnCplxFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsCplxFftInv_64fc,        (const Omn64fc* pSrc, Omn64fc* pDst, const OmnCplxFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsRealFftFwdPerm_64f,     (const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsRealFftInvPerm_64f,     (const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsRealFftFwdPack_64f,     (const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsRealFftInvPack_64f,     (const Omn64f* pSrc, Omn64f* pDst, const OmnRealFftSpec* pSpec, Omn8u* pBuf))
OMN_FFT_FN(OmnStatus, omnsCplxFftFree_64fc,       (OmnCplxFftSpec* pSpec))
OMN_FFT_FN(OmnStatus, omnsRealFftFree_64f,        (OmnRealFftSpec* pSpec))
