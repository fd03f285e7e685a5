// The bad-input sweep: every variant of every export in every column, with
// each pointer null in turn, with lengths 0, -1 and INT_MIN, and with every
// pointer null and the length bad at once (which of the two checks comes
// first), driven by the export list itself.  What each argument is comes from
// its type and name in the list; tests/robustness/exceptions.h holds the few
// places a prototype does not say it.  Every array carries guard zones, and
// after a rejected call nothing of any array may have changed.  A second pass
// makes small valid calls of the plain vector functions and checks that
// nothing outside the arrays they were given was written.
#include <gtest/gtest.h>

#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/columns.h"
#include "tests/robustness/args.h"
#include "tests/robustness/exceptions.h"

namespace omn {
namespace robust {
namespace {

constexpr OmnStatus kNull = -8;
constexpr OmnStatus kSize = -6;

/* A guarded array: kGuard pattern bytes, the array, kGuard pattern bytes. */
constexpr size_t kGuard = 256;
constexpr size_t kArrayBytes = 16 * 1024;
constexpr uint8_t kFill = 0x5A;

struct Guarded {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(kGuard + kArrayBytes + kGuard + 64, kFill);
    uint8_t* array()
    {
        /* 32-byte aligned start, as a caller's aligned block would be. */
        const uintptr_t p = reinterpret_cast<uintptr_t>(bytes.data() + kGuard);
        return reinterpret_cast<uint8_t*>((p + 31) & ~uintptr_t(31));
    }
    void reset() { memset(bytes.data(), kFill, bytes.size()); }
    /* The first changed byte relative to array(), or SIZE_MAX. */
    ptrdiff_t firstChange(size_t from, size_t to) const
    {
        const uint8_t* base = bytes.data();
        const ptrdiff_t origin = const_cast<Guarded*>(this)->array() - base;
        for (size_t i = from; i < to && i < bytes.size(); ++i)
            if (base[i] != kFill)
                return static_cast<ptrdiff_t>(i) - origin;
        return PTRDIFF_MAX;
    }
};

struct Tally {
    uint64_t calls = 0;
    uint64_t validCalls = 0;
    std::vector<std::string> swept;
    std::vector<std::string> notReached;
};

Tally& tally()
{
    static Tally t;
    return t;
}

struct Arg {
    Kind kind;
    std::string name;
    size_t elem;
    void* ptr = nullptr;
    long long ival = 1;
};

template <typename A>
A materialize(const Arg& a)
{
    if constexpr (std::is_pointer_v<A>)
        return static_cast<A>(a.ptr);
    else if constexpr (std::is_same_v<A, int>)
        return static_cast<int>(a.ival);
    else if constexpr (std::is_arithmetic_v<A>)
        return A(1);
    else
        return A{};
}

template <typename R, typename... A, size_t... I>
R invoke(R (*fn)(A...), const std::vector<Arg>& args, std::index_sequence<I...>)
{
    return fn(materialize<A>(args[I])...);
}

/* Byte extent a valid call of length n may write through a data pointer of
   elements of elem bytes: n elements, except the 24-bit sample forms, whose
   byte pointers carry three bytes a sample. */
size_t extent(const char* function, size_t elem, int n)
{
    if (elem == 1 && (strstr(function, "24u") || strstr(function, "24s")))
        return 3u * static_cast<size_t>(n);
    return elem * static_cast<size_t>(n);
}

template <typename R, typename... A>
void sweepExport(const char* name, const char* params, R (*const (&fns)[4])(A...))
{
    Tally& t = tally();
    if (const char* reason = unsweptReason(name)) {
        t.notReached.push_back(std::string(name) + ": " + reason);
        return;
    }
    if constexpr (!std::is_same_v<R, OmnStatus>) {
        t.notReached.push_back(std::string(name) + ": returns no status");
        return;
    } else {
        const std::vector<std::string> names = paramNames(params);
        ASSERT_EQ(names.size(), sizeof...(A)) << name << params;
        const Kind kinds[] = { kindOf<A>()..., Kind::Scalar };
        const size_t elems[] = { elemSize<A>()..., 0 };

        std::vector<Arg> args;
        for (size_t i = 0; i < sizeof...(A); ++i) {
            Kind k = kinds[i];
            if (k == Kind::Integer && isLength(names[i].c_str()))
                k = Kind::Length;
            args.push_back(Arg{ k, names[i], elems[i] });
        }
        for (const Arg& a : args) {
            if (a.kind == Kind::Object || a.kind == Kind::ObjectOut || a.kind == Kind::Raw) {
                t.notReached.push_back(std::string(name) + ": takes an object (" + a.name +
                                       "), swept with its family's objects");
                return;
            }
        }

        std::vector<Guarded> arrays(args.size());
        auto wire = [&](std::vector<Arg>& as) {
            for (size_t i = 0; i < as.size(); ++i) {
                if (as[i].kind == Kind::Data)
                    as[i].ptr = arrays[i].array();
                if (as[i].kind == Kind::Length)
                    as[i].ival = 8;
            }
        };
        auto untouched = [&](const char* what) {
            for (size_t i = 0; i < args.size(); ++i) {
                if (args[i].kind != Kind::Data)
                    continue;
                if (writesDespiteReject(name) && strncmp(what, "null", 4) == 0) {
                    arrays[i].reset();
                    continue;
                }
                const ptrdiff_t at = arrays[i].firstChange(0, arrays[i].bytes.size());
                EXPECT_EQ(at, PTRDIFF_MAX) << name << " " << what << ": " << args[i].name
                                           << " written at byte " << at << " by a rejected call";
                arrays[i].reset();
            }
        };

        size_t pointers = 0, lengths = 0;
        for (const Arg& a : args) {
            pointers += a.kind == Kind::Data;
            lengths += a.kind == Kind::Length;
        }

        for (int c = 0; c < 4; ++c) {
            const char* col = test::kColumnNames[c];
            /* Each pointer null in turn, everything else valid. */
            for (size_t i = 0; i < args.size(); ++i) {
                if (args[i].kind != Kind::Data || nullAllowed(name, args[i].name.c_str()))
                    continue;
                std::vector<Arg> as = args;
                wire(as);
                as[i].ptr = nullptr;
                const OmnStatus st = invoke(fns[c], as, std::index_sequence_for<A...>{});
                ++t.calls;
                EXPECT_EQ(st, kNull) << col << " " << name << " with " << args[i].name << " null";
                untouched(("null " + args[i].name).c_str());
            }
            /* Each length 0, -1 and INT_MIN, everything else valid. */
            for (size_t i = 0; i < args.size(); ++i) {
                if (args[i].kind != Kind::Length)
                    continue;
                for (long long bad : { 0LL, -1LL, static_cast<long long>(INT_MIN) }) {
                    std::vector<Arg> as = args;
                    wire(as);
                    as[i].ival = bad;
                    const OmnStatus st = invoke(fns[c], as, std::index_sequence_for<A...>{});
                    ++t.calls;
                    EXPECT_EQ(st, kSize) << col << " " << name << " with " << args[i].name << " = " << bad;
                    untouched(("bad " + args[i].name).c_str());
                }
            }
            /* Every pointer null and the length bad: which check comes first. */
            if (pointers > 0 && lengths > 0) {
                std::vector<Arg> as = args;
                wire(as);
                bool anyNull = false;
                for (Arg& a : as) {
                    if (a.kind == Kind::Data && !nullAllowed(name, a.name.c_str())) {
                        a.ptr = nullptr;
                        anyNull = true;
                    }
                    if (a.kind == Kind::Length)
                        a.ival = 0;
                }
                if (anyNull) {
                    const OmnStatus st = invoke(fns[c], as, std::index_sequence_for<A...>{});
                    ++t.calls;
                    EXPECT_EQ(st, lengthFirst(name) ? kSize : kNull)
                        << col << " " << name << " with null pointers and length 0";
                    untouched("null pointers and length 0");
                }
            }
            /* Small valid calls: whatever they compute, nothing outside the
               arrays they were given may change. */
            if (lengths == 1) {
                for (int n : { 1, 2, 3, 5, 16, 33 }) {
                    std::vector<Arg> as = args;
                    wire(as);
                    for (Arg& a : as)
                        if (a.kind == Kind::Length)
                            a.ival = n;
                    (void)invoke(fns[c], as, std::index_sequence_for<A...>{});
                    ++t.validCalls;
                    for (size_t i = 0; i < as.size(); ++i) {
                        if (as[i].kind != Kind::Data)
                            continue;
                        Guarded& g = arrays[i];
                        const size_t origin = static_cast<size_t>(g.array() - g.bytes.data());
                        const size_t end = origin + extent(name, as[i].elem, n);
                        EXPECT_EQ(g.firstChange(0, origin), PTRDIFF_MAX)
                            << col << " " << name << " n=" << n << ": wrote below " << as[i].name;
                        const ptrdiff_t above = g.firstChange(end, g.bytes.size());
                        EXPECT_EQ(above, PTRDIFF_MAX)
                            << col << " " << name << " n=" << n << ": wrote past " << as[i].name << " at byte "
                            << above;
                        g.reset();
                    }
                }
            }
        }
        t.swept.push_back(name);
    }
}

} // namespace

TEST(RobustnessSweep, EveryExportEveryColumn)
{
#define OMN_EXPORT(ret, name, params) sweepExport(#name, #params, test::name);
#define OMN_EXPORT_COMMON(ret, name, params) sweepExport(#name, #params, test::name);
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

    const Tally& t = tally();
    printf("robustness sweep: %llu rejected calls and %llu valid calls over %zu of %d exports in 4 columns\n",
           static_cast<unsigned long long>(t.calls), static_cast<unsigned long long>(t.validCalls),
           t.swept.size(), kExportCount);
    printf("not swept here (%zu):\n", t.notReached.size());
    for (const std::string& s : t.notReached)
        printf("  %s\n", s.c_str());
    EXPECT_EQ(t.swept.size() + t.notReached.size(), static_cast<size_t>(kExportCount));
}

} // namespace robust
} // namespace omn
