// Differential fuzz target: the input bytes choose an export of the plain
// vector kind (arrays, one length, scalar parameters), its length, its
// parameters and its data; the px variant and the other three columns run on
// copies of the same arrays, and their statuses and every array must agree:
// integers exactly, floating values within a few units of the last place,
// except where a family documents a wider difference between columns
// (tests/fuzz/tolerances.h).  Built with -DOMNS_FUZZ=ON under clang, with
// AddressSanitizer and UndefinedBehaviorSanitizer.
#include <limits.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/variants.h"
#include "tests/fuzz/tolerances.h"
#include "tests/robustness/args.h"
#include "tests/robustness/exceptions.h"

namespace omn {
namespace fuzz {
namespace {

using robust::Kind;

/* The input, read front to back; past its end it reads zeros. */
struct Bytes {
    const uint8_t* p;
    size_t n;
    uint8_t byte() { return n ? (--n, *p++) : 0; }
    void take(void* dst, size_t k)
    {
        uint8_t* d = static_cast<uint8_t*>(dst);
        for (size_t i = 0; i < k; ++i)
            d[i] = byte();
    }
};

constexpr int kMaxLen = 80;
constexpr size_t kArrayBytes = static_cast<size_t>(kMaxLen) * 16 * 3 + 64;

const int kInts[] = { 0, 1, 2, 3, 4, 7, 8, 15, 16, 17, 30, 31, 32, 33, -1, -2, -7, -8, -16, -31, -32, -33,
                      100, -100, INT_MAX, INT_MIN, INT_MAX - 1, INT_MIN + 1 };

template <typename A>
constexpr bool floatElements()
{
    if constexpr (std::is_pointer_v<A>) {
        using U = std::remove_cv_t<std::remove_pointer_t<A>>;
        return std::is_floating_point_v<U> || std::is_same_v<U, Omn32fc> || std::is_same_v<U, Omn64fc>;
    } else {
        return false;
    }
}

template <typename A>
constexpr bool signedElements()
{
    if constexpr (std::is_pointer_v<A>) {
        using U = std::remove_cv_t<std::remove_pointer_t<A>>;
        if constexpr (std::is_arithmetic_v<U>)
            return std::is_signed_v<U>;
        else
            return true;
    } else {
        return false;
    }
}

/* Bytes of one part of an element: a complex element has two. */
template <typename A>
constexpr size_t partSize()
{
    if constexpr (std::is_pointer_v<A>) {
        using U = std::remove_cv_t<std::remove_pointer_t<A>>;
        if constexpr (std::is_same_v<U, Omn64fc>)
            return 8;
        else if constexpr (std::is_same_v<U, Omn32fc> || std::is_same_v<U, Omn32sc>)
            return 4;
        else if constexpr (std::is_same_v<U, Omn16sc>)
            return 2;
        else if constexpr (std::is_void_v<U> || std::is_pointer_v<U>)
            return 1;
        else
            return sizeof(U);
    } else {
        return 0;
    }
}

/* Data for an array: raw bits, or small values that exercise ordinary paths. */
void fillArray(Bytes& in, uint8_t* dst, size_t bytes, size_t part, bool isFloat)
{
    const uint8_t mode = in.byte() % 3;
    for (size_t i = 0; i + part <= bytes; i += part) {
        if (mode == 0) {
            in.take(dst + i, part);
        } else if (!isFloat) {
            const int8_t v = static_cast<int8_t>(in.byte());
            memset(dst + i, v < 0 ? 0xFF : 0, part);
            dst[i] = static_cast<uint8_t>(v);
        } else {
            const double v = static_cast<int8_t>(in.byte()) / (mode == 1 ? 1.0 : 16.0);
            if (part == 8) {
                memcpy(dst + i, &v, 8);
            } else {
                const float f = static_cast<float>(v);
                memcpy(dst + i, &f, 4);
            }
        }
    }
}

template <typename A>
A scalarFrom(Bytes& in)
{
    if constexpr (std::is_same_v<A, int>) {
        return kInts[in.byte() % (sizeof kInts / sizeof kInts[0])];
    } else if constexpr (std::is_floating_point_v<A>) {
        const uint8_t mode = in.byte() % 3;
        if (mode == 0) {
            A v;
            in.take(&v, sizeof v);
            return v;
        }
        return static_cast<A>(static_cast<int8_t>(in.byte()) / (mode == 1 ? 1.0 : 16.0));
    } else {
        A v{};
        in.take(&v, sizeof v);
        return v;
    }
}

template <typename A>
double scalarValue(const A& v)
{
    if constexpr (std::is_arithmetic_v<A>)
        return static_cast<double>(v);
    else if constexpr (std::is_same_v<A, Omn64fc> || std::is_same_v<A, Omn32fc> || std::is_same_v<A, Omn32sc> ||
                       std::is_same_v<A, Omn16sc>)
        return static_cast<double>(v.re);
    else
        return 0.0;
}

/* Compares every part of column c's arrays with px's. */
bool sameOutputs(const Call& call, int c)
{
    for (const ArrayInfo& a : call.arrays) {
        if (a.kind != Kind::Data)
            continue;
        if (memcmp(a.out[0].data(), a.out[c].data(), a.out[0].size()) == 0)
            continue;
        const size_t parts = (a.out[0].size() - 64) / a.part;
        for (size_t p = 0; p < parts; ++p) {
            const size_t at = 32 + p * a.part;
            if (memcmp(&a.out[0][at], &a.out[c][at], a.part) == 0)
                continue;
            const double u = a.value(0, p), v = a.value(c, p);
            if (!a.isFloat) {
                if (tolerateInteger(call, a.name.c_str(), static_cast<int>(p), u, v, c))
                    continue;
            } else {
                if (std::isnan(u) && std::isnan(v))
                    continue;
                const double eps = a.part == 8 ? 0x1p-52 : 0x1p-23;
                const double ulps = a.part == 8 ? 64.0 : 4.0;
                if (std::isfinite(u) && std::isfinite(v) &&
                    std::fabs(u - v) <= ulps * eps * std::fmax(std::fabs(u), std::fabs(v)))
                    continue;
                if (tolerateFloat(call, a.name.c_str(), static_cast<int>(p), u, v, c))
                    continue;
            }
            fprintf(stderr, "%s: column %d differs from px in %s, part %zu: %.17g against px %.17g (len %d)\n",
                    call.name, c, a.name.c_str(), p, v, u, call.len);
            return false;
        }
    }
    return true;
}

template <typename R, typename... A, size_t... I>
R invokeWith(R (*fn)(A...), const std::tuple<A...>& args, std::index_sequence<I...>)
{
    return fn(std::get<I>(args)...);
}

template <typename... A, size_t... I>
void pointArrays(std::tuple<A...>& args, std::vector<ArrayInfo>& arrays, int c, std::index_sequence<I...>)
{
    auto one = [&](auto& slot, size_t i) {
        using T = std::remove_reference_t<decltype(slot)>;
        if constexpr (std::is_pointer_v<T>)
            if (arrays[i].kind == Kind::Data)
                slot = reinterpret_cast<T>(arrays[i].out[c].data() + 32);
    };
    (one(std::get<I>(args), I), ...);
}

template <typename R, typename... A>
struct Runner {
    static bool eligible(const char* name, const char* params)
    {
        if constexpr (!std::is_same_v<R, OmnStatus>) {
            return false;
        } else {
            if (robust::unsweptReason(name))
                return false;
            const std::vector<std::string> names = robust::paramNames(params);
            const Kind kinds[] = { robust::kindOf<A>()..., Kind::Scalar };
            int lengths = 0;
            for (size_t i = 0; i < sizeof...(A); ++i) {
                if (kinds[i] == Kind::Object || kinds[i] == Kind::ObjectOut || kinds[i] == Kind::Raw)
                    return false;
                lengths += kinds[i] == Kind::Integer && robust::isLength(names[i].c_str());
            }
            return lengths == 1 && !excluded(name);
        }
    }

    static void run(const char* name, const char* params, R (*const (&fns)[4])(A...), Bytes& in)
    {
        if constexpr (std::is_same_v<R, OmnStatus>) {
            Call call;
            call.name = name;
            const std::vector<std::string> names = robust::paramNames(params);
            const Kind kinds[] = { robust::kindOf<A>()..., Kind::Scalar };
            const bool floats[] = { floatElements<A>()..., false };
            const bool signs[] = { signedElements<A>()..., false };
            const size_t parts[] = { partSize<A>()..., 0 };
            call.len = 1 + in.byte() % kMaxLen;

            std::tuple<A...> args;
            size_t i = 0;
            call.scalars.assign(sizeof...(A), 0.0);
            auto scalar = [&](auto& slot) {
                using T = std::remove_reference_t<decltype(slot)>;
                if constexpr (std::is_pointer_v<T>)
                    slot = nullptr;
                else if constexpr (std::is_same_v<T, int>)
                    slot = robust::isLength(names[i].c_str()) ? call.len : scalarFrom<int>(in);
                else
                    slot = scalarFrom<T>(in);
                if constexpr (!std::is_pointer_v<T>)
                    call.scalars[i] = scalarValue(slot);
                ++i;
            };
            std::apply([&](auto&... slots) { (scalar(slots), ...); }, args);

            call.arrays.resize(sizeof...(A));
            for (size_t k = 0; k < sizeof...(A); ++k) {
                ArrayInfo& a = call.arrays[k];
                a.name = names[k];
                a.kind = kinds[k];
                a.part = parts[k];
                a.isFloat = floats[k];
                a.isSigned = signs[k];
                if (kinds[k] != Kind::Data)
                    continue;
                a.out[0].assign(kArrayBytes, 0);
                fillArray(in, a.out[0].data() + 32, kArrayBytes - 64, a.part, a.isFloat);
                a.orig = a.out[0];
                for (int c = 1; c < 4; ++c)
                    a.out[c] = a.out[0];
            }
            call.names = names;

            OmnStatus st[4];
            for (int c = 0; c < 4; ++c) {
                pointArrays(args, call.arrays, c, std::index_sequence_for<A...>{});
                st[c] = invokeWith(fns[c], args, std::index_sequence_for<A...>{});
            }
            call.status = st[0];
            for (int c = 1; c < 4; ++c) {
                if (st[c] != st[0] && !tolerateStatus(call, st[0], st[c], c)) {
                    fprintf(stderr, "%s: column %d returned %d, px %d (len %d)\n", name, c, st[c], st[0], call.len);
                    abort();
                }
                if (!sameOutputs(call, c))
                    abort();
            }
        }
    }
};

/* Every export's four variants, as the tests' column table has them. */
namespace cols {
#define OMN_EXPORT(ret, name, params) \
    inline constexpr ret (*const name[4]) params = { &px::name, &a6::name, &w7::name, &t7::name };
#define OMN_EXPORT_COMMON(ret, name, params) \
    inline constexpr ret (*const name[4]) params = { &common::name, &common::name, &common::name, &common::name };
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
} // namespace cols

struct Entry {
    unsigned id;            /* 16 bits of a hash of the name: a stable selector */
    const char* name;
    const char* params;
    const void* fns;
    void (*run)(const Entry&, Bytes&);
};

/* The first two input bytes pick the export with the nearest id at or above
   them, so that a saved input keeps naming the same export when others join
   the list. */
unsigned nameId(const char* name)
{
    uint32_t h = 2166136261u;
    for (const char* p = name; *p; ++p)
        h = (h ^ static_cast<uint8_t>(*p)) * 16777619u;
    return (h ^ (h >> 16)) & 0xFFFF;
}

template <typename R, typename... A>
void trampoline(const Entry& e, Bytes& in)
{
    using Fns = R (*const[4])(A...);
    Runner<R, A...>::run(e.name, e.params, *static_cast<const Fns*>(e.fns), in);
}

template <typename R, typename... A>
void add(std::vector<Entry>& v, const char* name, const char* params, R (*const (&fns)[4])(A...))
{
    if (Runner<R, A...>::eligible(name, params))
        v.push_back(Entry{ nameId(name), name, params, &fns, &trampoline<R, A...> });
}

const std::vector<Entry>& entries()
{
    static const std::vector<Entry> list = [] {
        std::vector<Entry> v;
#define OMN_EXPORT(ret, name, params) add(v, #name, #params, cols::name);
#define OMN_EXPORT_COMMON(ret, name, params) add(v, #name, #params, cols::name);
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
        std::sort(v.begin(), v.end(), [](const Entry& a, const Entry& b) { return a.id < b.id; });
        return v;
    }();
    return list;
}

} // namespace
} // namespace fuzz
} // namespace omn

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace omn::fuzz;
    const std::vector<Entry>& list = entries();
    if (size < 2 || list.empty())
        return 0;
    Bytes in{ data, size };
    const unsigned pick = (static_cast<unsigned>(in.byte()) << 8) | in.byte();
    size_t k = 0;
    while (k < list.size() && list[k].id < pick)
        ++k;
    const Entry& e = list[k % list.size()];
    e.run(e, in);
    return 0;
}

/* With OMNS_FUZZ_LIST set, print what the target can reach and stop; with
   OMNS_FUZZ_SEEDS=dir, write one small valid call of each export there (the
   seed corpus kept in tests/fuzz/corpus) and stop. */
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    if (const char* dir = getenv("OMNS_FUZZ_SEEDS")) {
        const auto& list = omn::fuzz::entries();
        for (size_t i = 0; i < list.size(); ++i) {
            /* index, length 8, then small-value data and parameters */
            uint8_t seed[64];
            seed[0] = static_cast<uint8_t>(list[i].id >> 8);
            seed[1] = static_cast<uint8_t>(list[i].id);
            seed[2] = 7;
            for (size_t k = 3; k < sizeof seed; ++k)
                seed[k] = static_cast<uint8_t>(k % 3 == 0 ? 1 : (k * 37) & 0x3F);
            const std::string path = std::string(dir) + "/" + list[i].name;
            if (FILE* f = fopen(path.c_str(), "wb")) {
                fwrite(seed, 1, sizeof seed, f);
                fclose(f);
            }
        }
        exit(0);
    }
    if (getenv("OMNS_FUZZ_LIST")) {
        for (const auto& e : omn::fuzz::entries())
            printf("%s\n", e.name);
        printf("%zu exports\n", omn::fuzz::entries().size());
        exit(0);
    }
    return 0;
}
