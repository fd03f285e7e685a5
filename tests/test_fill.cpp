// Set, Zero, Flip and SwapBytes in every column.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "tests/columns.h"

using namespace omn;

namespace {

// Element counts across the small, 16-byte, block and non-temporal paths of
// every element size (32768 x 16 bytes = 512 KiB).
const int kLengths[] = { 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 63, 64, 65, 1000, 32767, 32768, 65536, 131072, 131075 };

template <typename T>
bool sameBits(const T& a, const T& b) { return memcmp(&a, &b, sizeof(T)) == 0; }

// Runs a fill over every length and several byte offsets of the destination
// (including offsets that leave the elements unaligned), checking each
// element and the guard bytes on both sides.
template <typename T, typename Fill>
void checkFill(const char* name, const T& val, Fill fill)
{
    const size_t guard = 32;
    for (int len : kLengths) {
        for (size_t off : { size_t(0), size_t(4), size_t(8), size_t(3), size_t(12) }) {
            if (len > 4096 && off != 0 && off != 8)
                continue;
            std::vector<uint8_t> raw(len * sizeof(T) + 2 * guard + 16, 0xA5);
            uint8_t* base = raw.data() + guard + off;
            ASSERT_EQ(fill(reinterpret_cast<T*>(base), len), 0) << name;
            for (int i = 0; i < len; ++i) {
                T got;
                memcpy(&got, base + i * sizeof(T), sizeof(T));
                ASSERT_TRUE(sameBits(got, val)) << name << " len " << len << " off " << off << " at " << i;
            }
            for (size_t k = 0; k < guard + off; ++k)
                ASSERT_EQ(raw[k], 0xA5) << name << " before, len " << len;
            for (size_t k = guard + off + len * sizeof(T); k < raw.size(); ++k)
                ASSERT_EQ(raw[k], 0xA5) << name << " after, len " << len;
        }
    }
}

} // namespace

class FillTest : public test::ColumnTest {};

TEST_P(FillTest, ArgumentChecks)
{
    Omn64f d[4];
    Omn8u b[12];
    const Omn64f s[4] = {};
    struct Row { const char* what; OmnStatus got; OmnStatus want; };
    const int c = col();
    const Row rows[] = {
        { "Set_32s null", test::omnsSet_32s[c](1, nullptr, 0), -8 },
        { "Set_32sc null", test::omnsSet_32sc[c](Omn32sc{ 1, 2 }, nullptr, 4), -8 },
        { "Set_64f null", test::omnsSet_64f[c](1.0, nullptr, -1), -8 },
        { "Set_64fc null", test::omnsSet_64fc[c](Omn64fc{ 1, 2 }, nullptr, 1), -8 },
        { "Zero_64f null", test::omnsZero_64f[c](nullptr, 0), -8 },
        { "Zero_64fc null", test::omnsZero_64fc[c](nullptr, 3), -8 },
        { "Set_64f len 0", test::omnsSet_64f[c](1.0, d, 0), -6 },
        { "Set_32s len -1", test::omnsSet_32s[c](1, reinterpret_cast<Omn32s*>(d), -1), -6 },
        { "Zero_64f len 0", test::omnsZero_64f[c](d, 0), -6 },
        { "Zero_64fc len min", test::omnsZero_64fc[c](reinterpret_cast<Omn64fc*>(d), INT32_MIN), -6 },
        { "Flip src null", test::omnsFlip_64f[c](nullptr, d, 0), -8 },
        { "Flip dst null", test::omnsFlip_64f[c](s, nullptr, 4), -8 },
        { "Flip len 0", test::omnsFlip_64f[c](s, d, 0), -6 },
        { "Flip_I null", test::omnsFlip_64f_I[c](nullptr, -3), -8 },
        { "Flip_I len -3", test::omnsFlip_64f_I[c](d, -3), -6 },
        { "Swap src null", test::omnsSwapBytes_24u[c](nullptr, b, 0), -8 },
        { "Swap dst null", test::omnsSwapBytes_24u[c](b, nullptr, 1), -8 },
        { "Swap len 0", test::omnsSwapBytes_24u[c](b, b + 6, 0), -6 },
        { "Swap_I null", test::omnsSwapBytes_24u_I[c](nullptr, 0), -8 },
        { "Swap_I len 0", test::omnsSwapBytes_24u_I[c](b, 0), -6 },
    };
    for (const Row& r : rows)
        EXPECT_EQ(r.got, r.want) << r.what;
}

TEST_P(FillTest, SetFillsEveryElementOnly)
{
    const int c = col();
    checkFill<Omn32s>("Set_32s", -123456789, [c](Omn32s* d, int n) { return test::omnsSet_32s[c](-123456789, d, n); });
    const Omn32sc sc{ 0x01020304, -5 };
    checkFill<Omn32sc>("Set_32sc", sc, [c, sc](Omn32sc* d, int n) { return test::omnsSet_32sc[c](sc, d, n); });
    checkFill<Omn64f>("Set_64f", -0.1, [c](Omn64f* d, int n) { return test::omnsSet_64f[c](-0.1, d, n); });
    const Omn64fc fc{ 3.25, -1e300 };
    checkFill<Omn64fc>("Set_64fc", fc, [c, fc](Omn64fc* d, int n) { return test::omnsSet_64fc[c](fc, d, n); });
}

TEST_P(FillTest, SetKeepsNanPayloadsAndNegativeZero)
{
    const uint64_t bitsList[] = { 0x7FF0000000000001ull, 0xFFF80000DEADBEEFull, 0x8000000000000000ull };
    for (uint64_t bits : bitsList) {
        Omn64f val;
        memcpy(&val, &bits, 8);
        std::vector<Omn64f> d(77);
        ASSERT_EQ(V(omnsSet_64f)(val, d.data(), 77), 0);
        for (const Omn64f& x : d)
            ASSERT_TRUE(sameBits(x, val));
    }
}

TEST_P(FillTest, ZeroWritesPositiveZeroBits)
{
    const int c = col();
    const Omn64f z = 0.0;
    checkFill<Omn64f>("Zero_64f", z, [c](Omn64f* d, int n) { return test::omnsZero_64f[c](d, n); });
    const Omn64fc zc{ 0.0, 0.0 };
    checkFill<Omn64fc>("Zero_64fc", zc, [c](Omn64fc* d, int n) { return test::omnsZero_64fc[c](d, n); });
    std::vector<Omn64f> neg(9, -0.0);
    ASSERT_EQ(V(omnsZero_64f)(neg.data(), 9), 0);
    for (Omn64f x : neg)
        EXPECT_FALSE(signbit(x));
}

TEST_P(FillTest, FlipReverses)
{
    for (int len : { 1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 1001 }) {
        for (int off : { 0, 1 }) {
            std::vector<Omn64f> src(len + off), dst(len + off + 1, 99.0), ref(len);
            for (int i = 0; i < len; ++i) {
                src[off + i] = i * 1.5 - 7;
                ref[len - 1 - i] = src[off + i];
            }
            ASSERT_EQ(V(omnsFlip_64f)(src.data() + off, dst.data() + off, len), 0);
            for (int i = 0; i < len; ++i)
                ASSERT_EQ(dst[off + i], ref[i]) << "len " << len << " at " << i;
            EXPECT_EQ(dst[off + len], 99.0);

            std::vector<Omn64f> inplace(src);
            ASSERT_EQ(V(omnsFlip_64f_I)(inplace.data() + off, len), 0);
            for (int i = 0; i < len; ++i)
                ASSERT_EQ(inplace[off + i], ref[i]) << "in place, len " << len << " at " << i;
        }
    }
}

TEST_P(FillTest, FlipInPlaceOfOneChangesNothing)
{
    Omn64f one = -2.5;
    EXPECT_EQ(V(omnsFlip_64f_I)(&one, 1), 0);
    EXPECT_EQ(one, -2.5);
}

TEST_P(FillTest, SwapBytesReversesEachTriple)
{
    const Omn8u abc[3] = { 1, 2, 3 };
    Omn8u out[3];
    ASSERT_EQ(V(omnsSwapBytes_24u)(abc, out, 1), 0);
    EXPECT_EQ(out[0], 3);
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(out[2], 1);

    for (int len : { 1, 2, 5, 16, 333 }) {
        std::vector<Omn8u> src(3 * len + 1), dst(3 * len + 1, 0xEE);
        for (size_t k = 0; k < src.size(); ++k)
            src[k] = static_cast<Omn8u>(k * 7 + 1);
        ASSERT_EQ(V(omnsSwapBytes_24u)(src.data(), dst.data(), len), 0);
        std::vector<Omn8u> inplace(src);
        ASSERT_EQ(V(omnsSwapBytes_24u_I)(inplace.data(), len), 0);
        for (int i = 0; i < len; ++i) {
            for (int b = 0; b < 3; ++b) {
                ASSERT_EQ(dst[3 * i + b], src[3 * i + 2 - b]);
                ASSERT_EQ(inplace[3 * i + b], src[3 * i + 2 - b]);
            }
        }
        EXPECT_EQ(dst[3 * len], 0xEE);
        EXPECT_EQ(inplace[3 * len], src[3 * len]);
    }
}

OMN_ALL_COLUMNS(FillTest);
