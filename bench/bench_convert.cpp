// Conversions in every column against a plain loop that does the same job,
// and the half-float narrowing also against the F16C instruction as a
// hardware reference (benchmark only; the library never uses it).  The
// source array is 4 KiB, so everything stays in the first-level cache;
// bytes processed count what is read plus what is written.
#include <stdint.h>
#include <string.h>

#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define OMN_BENCH_X86 1
#endif

#include "bench/bench_common.h"
#include "core/variants.h"

using namespace omn;
using omn::bench::Size;

namespace {

struct Data {
    int n;
    std::vector<float> f32;
    std::vector<double> f64;
    std::vector<int16_t> s16;
    std::vector<int32_t> s32;
    std::vector<int16_t> o16;
    std::vector<uint16_t> oh;
    std::vector<float> o32;
    std::vector<double> o64;
    std::vector<uint8_t> o24;
    explicit Data(int len)
        : n(len), f32(len), f64(len), s16(len), s32(len), o16(len), oh(len), o32(len), o64(len), o24(3 * size_t(len))
    {
        uint32_t x = 12345;
        for (int i = 0; i < len; ++i) {
            x = x * 1103515245u + 12345u;
            f32[i] = static_cast<float>(static_cast<int32_t>(x) >> 12) * 0.01f;   // about +-5000, fractions
            f64[i] = f32[i] * 1.000001;
            s16[i] = static_cast<int16_t>(x >> 8);
            s32[i] = static_cast<int32_t>(x) >> 6;                               // some beyond 24 bits
        }
    }
};

// ---- plain loops ------------------------------------------------------------------

void plain32f16s(const float* s, int16_t* d, int n)
{
    for (int i = 0; i < n; ++i) {
        float v = s[i];
        v = v < -32768.0f ? -32768.0f : (v > 32767.0f ? 32767.0f : v);
        d[i] = static_cast<int16_t>(v >= 0 ? v + 0.5f : v - 0.5f);   // half away from zero
    }
}
void plain16s32f(const int16_t* s, float* d, int n) { for (int i = 0; i < n; ++i) d[i] = s[i]; }
void plain64f32f(const double* s, float* d, int n) { for (int i = 0; i < n; ++i) d[i] = static_cast<float>(s[i]); }
void plain32f64f(const float* s, double* d, int n) { for (int i = 0; i < n; ++i) d[i] = s[i]; }
void plain32s24s(const int32_t* s, uint8_t* d, int n)
{
    for (int i = 0; i < n; ++i) {
        const int32_t v = s[i] < -8388608 ? -8388608 : (s[i] > 8388607 ? 8388607 : s[i]);
        d[3 * i] = static_cast<uint8_t>(v);
        d[3 * i + 1] = static_cast<uint8_t>(v >> 8);
        d[3 * i + 2] = static_cast<uint8_t>(v >> 16);
    }
}
// The compiler's own half type, converted by the runtime's software routine.
void plain32f16f(const float* s, uint16_t* d, int n)
{
    for (int i = 0; i < n; ++i) {
        const _Float16 h = static_cast<_Float16>(s[i]);
        memcpy(d + i, &h, 2);
    }
}

#if defined(OMN_BENCH_X86)
__attribute__((target("f16c"))) void f16c32f16f(const float* s, uint16_t* d, int n)
{
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i a = _mm_cvtps_ph(_mm_loadu_ps(s + i), _MM_FROUND_TO_NEAREST_INT);
        const __m128i b = _mm_cvtps_ph(_mm_loadu_ps(s + i + 4), _MM_FROUND_TO_NEAREST_INT);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_unpacklo_epi64(a, b));
    }
    for (; i < n; ++i)
        d[i] = static_cast<uint16_t>(_mm_extract_epi16(_mm_cvtps_ph(_mm_set_ss(s[i]), _MM_FROUND_TO_NEAREST_INT), 0));
}
#endif

// ---- one form ------------------------------------------------------------------------

using Body = void (*)(Data&, int column);   // column -1: the reference

struct Form {
    const char* name;
    size_t srcElem, dstElem;
    Body body;
};

#define COLUMNS(fn) { &px::fn, &a6::fn, &w7::fn, &t7::fn }

const Form kForms[] = {
    { "Convert_32f16s_Sfs", 4, 2, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn32f*, Omn16s*, int, int, int) = COLUMNS(omnsConvert_32f16s_Sfs);
          if (c < 0) plain32f16s(d.f32.data(), d.o16.data(), d.n); else f[c](d.f32.data(), d.o16.data(), d.n, 1, 0); } },
    { "Convert_16s32f", 2, 4, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn16s*, Omn32f*, int) = COLUMNS(omnsConvert_16s32f);
          if (c < 0) plain16s32f(d.s16.data(), d.o32.data(), d.n); else f[c](d.s16.data(), d.o32.data(), d.n); } },
    { "Convert_64f32f", 8, 4, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn64f*, Omn32f*, int) = COLUMNS(omnsConvert_64f32f);
          if (c < 0) plain64f32f(d.f64.data(), d.o32.data(), d.n); else f[c](d.f64.data(), d.o32.data(), d.n); } },
    { "Convert_32f64f", 4, 8, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn32f*, Omn64f*, int) = COLUMNS(omnsConvert_32f64f);
          if (c < 0) plain32f64f(d.f32.data(), d.o64.data(), d.n); else f[c](d.f32.data(), d.o64.data(), d.n); } },
    { "Convert_32s24s_Sfs", 4, 3, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn32s*, Omn8u*, int, int) = COLUMNS(omnsConvert_32s24s_Sfs);
          if (c < 0) plain32s24s(d.s32.data(), d.o24.data(), d.n); else f[c](d.s32.data(), d.o24.data(), d.n, 0); } },
    { "Convert_32f16f", 4, 2, [](Data& d, int c) {
          static OmnStatus (*const f[4])(const Omn32f*, Omn16f*, int, int) = COLUMNS(omnsConvert_32f16f);
          if (c < 0) plain32f16f(d.f32.data(), d.oh.data(), d.n); else f[c](d.f32.data(), d.oh.data(), d.n, 1); } },
};

void run(benchmark::State& st, const Form& form, int column, const Size& size, Body body)
{
    const int n = static_cast<int>(size.bytes / form.srcElem);
    Data d(n);
    for (auto _ : st) {
        body(d, column);
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * n * static_cast<int64_t>(form.srcElem + form.dstElem));
}

int registerAll()
{
    const Size size = bench::kInCache;
    for (const Form& form : kForms) {
        const Form* f = &form;
        for (int c = 0; c < 4; ++c)
            bench::configure(benchmark::RegisterBenchmark(bench::name(form.name, bench::kColumnNames[c], size).c_str(),
                [f, c, size](benchmark::State& st) { run(st, *f, c, size, f->body); }), size);
        bench::configure(benchmark::RegisterBenchmark(bench::name(form.name, "ref-plain", size).c_str(),
            [f, size](benchmark::State& st) { run(st, *f, -1, size, f->body); }), size);
    }
#if defined(OMN_BENCH_X86)
    if (__builtin_cpu_supports("f16c")) {
        const Form* f = &kForms[5];
        bench::configure(benchmark::RegisterBenchmark(bench::name(f->name, "ref-f16c", size).c_str(),
            [f, size](benchmark::State& st) {
                run(st, *f, -1, size, [](Data& d, int) { f16c32f16f(d.f32.data(), d.oh.data(), d.n); });
            }), size);
    }
#endif
    return 0;
}

const int kRegistered = registerAll();

} // namespace
