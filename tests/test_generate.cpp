// VectorRamp and VectorJaehne in every column, against long-double
// references and the rounding and saturation cases.
#include <gtest/gtest.h>

#include <math.h>
#include <stdint.h>

#include <vector>

#include "tests/columns.h"

using namespace omn;

class GenerateTest : public test::ColumnTest {};

TEST_P(GenerateTest, ArgumentChecksInOrder)
{
    Omn64f d[2];
    Omn32s k[2];
    const int c = col();
    EXPECT_EQ(test::omnsVectorRamp_64f[c](nullptr, 0, 0, 0), -8);
    EXPECT_EQ(test::omnsVectorRamp_64f[c](d, 0, 0, 0), -6);
    EXPECT_EQ(test::omnsVectorRamp_32s[c](nullptr, -1, 0, 0), -8);
    EXPECT_EQ(test::omnsVectorRamp_32s[c](k, -1, 0, 0), -6);
    // pointer, then length, then the magnitude
    EXPECT_EQ(test::omnsVectorJaehne_64f[c](nullptr, 0, -1.0), -8);
    EXPECT_EQ(test::omnsVectorJaehne_64f[c](d, 0, -1.0), -6);
    EXPECT_EQ(test::omnsVectorJaehne_64f[c](d, 2, -1.0), -38);
    EXPECT_EQ(test::omnsVectorJaehne_64f[c](d, 1, -1e-300), -38);
    EXPECT_EQ(test::omnsVectorJaehne_32s[c](nullptr, 0, -1), -8);
    EXPECT_EQ(test::omnsVectorJaehne_32s[c](k, 0, -1), -6);
    EXPECT_EQ(test::omnsVectorJaehne_32s[c](k, 2, -1), -38);
}

TEST_P(GenerateTest, Ramp64fIsComputedFromTheIndex)
{
    struct Row { float offset, slope; };
    const Row rows[] = { { 0.f, 1.f }, { -3.5f, 0.1f }, { 1e6f, -1e-3f }, { 0.3f, 1e-7f }, { 2.f, 0.f } };
    for (const Row& r : rows) {
        for (int len : { 1, 2, 3, 10, 1001 }) {
            std::vector<Omn64f> d(len);
            ASSERT_EQ(V(omnsVectorRamp_64f)(d.data(), len, r.offset, r.slope), 0);
            for (int i = 0; i < len; ++i) {
                // One product and one sum, each rounded to double: no error
                // accumulates over the index.
                const long double exact = static_cast<long double>(i) * r.slope + r.offset;
                EXPECT_NEAR(static_cast<double>(d[i]), static_cast<double>(exact),
                            4e-16 * (fabs(static_cast<double>(exact)) + fabs(i * static_cast<double>(r.slope))))
                    << i;
            }
            EXPECT_EQ(d[0], static_cast<double>(r.offset));
        }
    }
}

TEST_P(GenerateTest, Ramp32sRoundsHalfAwayFromZeroAndSaturates)
{
    struct Row { float offset, slope; int i; Omn32s want; };
    const Row rows[] = {
        { 0.5f, 0.f, 5, 1 },           { -0.5f, 0.f, 5, -1 },
        { 2.5f, 0.f, 0, 3 },           { -2.5f, 0.f, 0, -3 },
        { 0.49999997f, 0.f, 0, 0 },    { -0.49999997f, 0.f, 0, 0 },
        { 0.f, 0.5f, 3, 2 },           { 0.f, -0.5f, 3, -2 },
        { 3e9f, 0.f, 2, 2147483647 },  { -3e9f, 0.f, 2, INT32_MIN },
        { 2147483520.f, 0.f, 0, 2147483520 }, { 2147483647.f, 0.f, 0, 2147483647 },
        { -2147483648.f, 0.f, 0, INT32_MIN }, { 0.f, 1e9f, 3, 2147483647 },
        { INFINITY, 0.f, 0, 2147483647 }, { -INFINITY, 1.f, 1, INT32_MIN },
        { NAN, 0.f, 0, INT32_MIN },
    };
    for (const Row& r : rows) {
        std::vector<Omn32s> d(r.i + 1);
        ASSERT_EQ(V(omnsVectorRamp_32s)(d.data(), r.i + 1, r.offset, r.slope), 0);
        EXPECT_EQ(d[r.i], r.want) << "offset " << r.offset << " slope " << r.slope << " i " << r.i;
    }
    std::vector<Omn32s> all(7);
    ASSERT_EQ(V(omnsVectorRamp_32s)(all.data(), 7, 0.5f, 0.f), 0);
    EXPECT_EQ(all, std::vector<Omn32s>(7, 1));
}

TEST_P(GenerateTest, JaehneAgainstLongDouble)
{
    for (int len : { 2, 3, 16, 1000 }) {
        for (double magn : { 0.0, 1.0, 32767.5 }) {
            std::vector<Omn64f> d(len);
            ASSERT_EQ(V(omnsVectorJaehne_64f)(d.data(), len, magn), 0);
            const long double c = 1.5707963267948966L / len;
            for (int i = 0; i < len; ++i) {
                const long double ref = sinl(static_cast<long double>(i) * i * c) * magn;
                // The angle is formed in double; allow for its rounding.
                const double tol = 1e-15 * magn * (1.0 + static_cast<double>(i) * i * static_cast<double>(c));
                EXPECT_NEAR(d[i], static_cast<double>(ref), tol) << "len " << len << " i " << i;
            }
        }
    }
    Omn64f one = 5.0;
    ASSERT_EQ(V(omnsVectorJaehne_64f)(&one, 1, 3.0), 0);
    EXPECT_EQ(one, 0.0);
}

TEST_P(GenerateTest, Jaehne32sRoundsToNearestAwayFromZero)
{
    for (int len : { 2, 7, 100 }) {
        for (Omn32s magn : { 0, 1, 1000, 2147483647 }) {
            std::vector<Omn32s> d(len);
            ASSERT_EQ(V(omnsVectorJaehne_32s)(d.data(), len, magn), 0);
            const long double c = 1.5707963267948966L / len;
            for (int i = 0; i < len; ++i) {
                const long double v = sinl(static_cast<long double>(i) * i * c) * magn;
                const long double r = v >= 0 ? floorl(v + 0.5L) : ceill(v - 0.5L);
                EXPECT_LE(fabsl(d[i] - r), magn > 1000 ? 2.0L : 0.0L) << "len " << len << " magn " << magn << " i " << i;
                EXPECT_LE(labs(d[i]), static_cast<long>(magn));
            }
        }
    }
    Omn32s one = 7;
    ASSERT_EQ(V(omnsVectorJaehne_32s)(&one, 1, 9), 0);
    EXPECT_EQ(one, 0);
}

OMN_ALL_COLUMNS(GenerateTest);
