// Copy and Move in every column: sizes across the small, block and
// non-temporal paths, every alignment, the guard bytes around the
// destination, overlap in both directions, and px's whole-element distance.
#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>

#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

// Byte sizes that reach every path: below 64, the 16-byte loop, the block
// loop from 1024, and past the non-temporal thresholds (256 and 512 KiB).
const size_t kByteSizes[] = { 1, 2, 3, 7, 8, 15, 16, 17, 31, 63, 64, 65, 100, 255, 1023, 1024, 1025,
                              4096 + 24, 256 * 1024, 256 * 1024 + 48, 512 * 1024, 512 * 1024 + 16, 700 * 1024 + 8 };

std::vector<uint8_t> pattern(size_t n, uint32_t seed)
{
    std::vector<uint8_t> v(n);
    uint32_t x = seed * 2654435761u + 12345;
    for (auto& b : v) {
        x = x * 1103515245u + 12345u;
        b = static_cast<uint8_t>(x >> 16);
    }
    return v;
}

struct Form {
    const char* name;
    size_t elem;
    OmnStatus (*call)(int col, const void* s, void* d, int len);
};

#define FORM(fn, T) \
    { #fn, sizeof(T), [](int c, const void* s, void* d, int n) { \
          return test::fn[c](static_cast<const T*>(s), static_cast<T*>(d), n); } }

const Form kCopies[] = {
    FORM(omnsCopy_8u, Omn8u),     FORM(omnsCopy_16s, Omn16s), FORM(omnsCopy_16sc, Omn16sc),
    FORM(omnsCopy_32f, Omn32f),   FORM(omnsCopy_32fc, Omn32fc), FORM(omnsCopy_64f, Omn64f),
    FORM(omnsCopy_64fc, Omn64fc),
};
const Form kMoves[] = {
    FORM(omnsMove_8u, Omn8u),     FORM(omnsMove_16s, Omn16s), FORM(omnsMove_16sc, Omn16sc),
    FORM(omnsMove_32f, Omn32f),   FORM(omnsMove_32fc, Omn32fc), FORM(omnsMove_64f, Omn64f),
    FORM(omnsMove_64fc, Omn64fc),
};

} // namespace

class CopyTest : public test::ColumnTest {};

TEST_P(CopyTest, ArgumentChecksPointersFirstThenLength)
{
    uint8_t buf[64] = {};
    for (const Form* set : { kCopies, kMoves }) {
        for (int f = 0; f < 7; ++f) {
            const Form& form = set[f];
            EXPECT_EQ(form.call(col(), nullptr, buf, 0), -8) << form.name;
            EXPECT_EQ(form.call(col(), buf, nullptr, -1), -8) << form.name;
            EXPECT_EQ(form.call(col(), nullptr, nullptr, 4), -8) << form.name;
            EXPECT_EQ(form.call(col(), buf, buf + 32, 0), -6) << form.name;
            EXPECT_EQ(form.call(col(), buf, buf + 32, -5), -6) << form.name;
            EXPECT_EQ(form.call(col(), buf, buf + 32, INT32_MIN), -6) << form.name;
        }
    }
}

TEST_P(CopyTest, CopiesEverySizeAndAlignmentWithoutTouchingNeighbours)
{
    const size_t guard = 64;
    for (const Form& form : kCopies) {
        for (size_t bytes : kByteSizes) {
            if (bytes % form.elem != 0)
                continue;
            // Skip most alignments on the large sizes to keep the run short.
            const size_t offsets = bytes > 4096 ? 2 : 16;
            for (size_t so = 0; so < offsets; ++so) {
                for (size_t dOff : { size_t(0), so ^ 8, (so * 5 + 3) % 16 }) {
                    const std::vector<uint8_t> src = pattern(bytes + 16, static_cast<uint32_t>(bytes + so));
                    std::vector<uint8_t> dst = pattern(bytes + 2 * guard, 7);
                    const std::vector<uint8_t> before = dst;
                    const int len = static_cast<int>(bytes / form.elem);
                    ASSERT_EQ(form.call(col(), src.data() + so, dst.data() + guard + dOff, len), 0);
                    ASSERT_EQ(0, memcmp(dst.data() + guard + dOff, src.data() + so, bytes))
                        << form.name << " bytes " << bytes << " src+" << so << " dst+" << dOff;
                    ASSERT_EQ(0, memcmp(dst.data(), before.data(), guard + dOff)) << form.name;
                    ASSERT_EQ(0, memcmp(dst.data() + guard + dOff + bytes, before.data() + guard + dOff + bytes,
                                        guard - dOff)) << form.name;
                }
            }
        }
    }
}

TEST_P(CopyTest, MoveHandlesOverlapInBothDirections)
{
    // Element distances between source and destination, both signs, for
    // lengths across the paths.
    const long distances[] = { 1, -1, 2, -2, 3, -3, 7, -7, 16, -16, 33, -33, 1000, -1000 };
    const size_t lengths[] = { 1, 5, 17, 64, 333, 4100, 70000 };
    for (const Form& form : kMoves) {
        for (size_t len : lengths) {
            for (long dist : distances) {
                const size_t bytes = len * form.elem;
                std::vector<uint8_t> buf = pattern(bytes + 2000 * form.elem + 128, static_cast<uint32_t>(len * 31 + dist));
                std::vector<uint8_t> expect = buf;
                const size_t base = 1000 * form.elem + 32;
                uint8_t* dst = buf.data() + base;
                const uint8_t* src = dst + dist * static_cast<long>(form.elem);
                memmove(expect.data() + base, expect.data() + base + dist * static_cast<long>(form.elem), bytes);
                ASSERT_EQ(form.call(col(), src, dst, static_cast<int>(len)), 0);
                ASSERT_EQ(buf, expect) << form.name << " len " << len << " distance " << dist;
            }
        }
    }
}

TEST_P(CopyTest, MoveOntoItselfWritesNothing)
{
    std::vector<Omn64f> v(100, 1.5);
    EXPECT_EQ(V(omnsMove_64f)(v.data(), v.data(), 100), 0);
    EXPECT_EQ(v, std::vector<Omn64f>(100, 1.5));
}

TEST_P(CopyTest, MoveByLessThanOneElement)
{
    // px counts the distance in whole elements rounded down: a source less
    // than one element above the destination moves nothing, one below it
    // moves.  The other columns move in both cases.
    for (const Form& form : kMoves) {
        for (long byteOffset : { 1L, 3L, -1L, -3L }) {
            if (form.elem == 1 || static_cast<size_t>(labs(byteOffset)) >= form.elem)
                continue;
            const size_t len = 40, bytes = len * form.elem;
            std::vector<uint8_t> buf = pattern(bytes + 64, static_cast<uint32_t>(form.elem + byteOffset + 9));
            std::vector<uint8_t> moved = buf;
            const size_t base = 16;
            memmove(moved.data() + base, moved.data() + base + byteOffset, bytes);
            const std::vector<uint8_t> untouched = buf;
            ASSERT_EQ(form.call(col(), buf.data() + base + byteOffset, buf.data() + base, static_cast<int>(len)), 0);
            const bool pxSkips = col() == 0 && byteOffset > 0;
            EXPECT_EQ(buf, pxSkips ? untouched : moved) << form.name << " offset " << byteOffset;
        }
    }
}

TEST_P(CopyTest, SameSizeFormsAreOneRoutine)
{
    // Same element size, same bytes moved, whatever the type says.
    std::vector<uint8_t> src = pattern(4096, 5), a(4096), b(4096);
    ASSERT_EQ(V(omnsCopy_16sc)(reinterpret_cast<const Omn16sc*>(src.data()), reinterpret_cast<Omn16sc*>(a.data()), 1024), 0);
    ASSERT_EQ(V(omnsCopy_32f)(reinterpret_cast<const Omn32f*>(src.data()), reinterpret_cast<Omn32f*>(b.data()), 1024), 0);
    EXPECT_EQ(a, b);
    // NaN payloads and signalling NaNs pass bit for bit.
    const uint64_t bits[] = { 0x7FF0000000000001ull, 0xFFF8000000000123ull, 0x8000000000000000ull, 0x0000000000000001ull };
    Omn64f in[4], out[4];
    memcpy(in, bits, sizeof in);
    ASSERT_EQ(V(omnsCopy_64f)(in, out, 4), 0);
    EXPECT_EQ(0, memcmp(in, out, sizeof in));
    ASSERT_EQ(V(omnsMove_64f)(in, out, 4), 0);
    EXPECT_EQ(0, memcmp(in, out, sizeof in));
}

OMN_ALL_COLUMNS(CopyTest);
