/*
 * columns.h - the tests' access to every column's variant of every export,
 * derived from the export list:  omn::test::name[c]  is the variant of column
 * c (0 px, 1 a6, 2 w7, 3 t7).  Tests of a function run over all four through
 * the ColumnTest fixture, whatever column this machine selects at load.
 */
#ifndef OMN_TESTS_COLUMNS_H
#define OMN_TESTS_COLUMNS_H

#include <gtest/gtest.h>

#include <string>

#include "core/variants.h"

namespace omn {
namespace test {

#define OMN_EXPORT(ret, name, params) \
    inline constexpr ret (*const name[4]) params = { &px::name, &a6::name, &w7::name, &t7::name };
#define OMN_EXPORT_COMMON(ret, name, params) \
    inline constexpr ret (*const name[4]) params = { &common::name, &common::name, &common::name, &common::name };
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON

inline const char* const kColumnNames[4] = { "px", "a6", "w7", "t7" };

class ColumnTest : public ::testing::TestWithParam<int> {
protected:
    int col() const { return GetParam(); }
};

struct ColumnName {
    std::string operator()(const ::testing::TestParamInfo<int>& info) const { return kColumnNames[info.param]; }
};

} // namespace test
} // namespace omn

/* The variant of the current column: V(omnsCopy_64f)(src, dst, n). */
#define V(name) (::omn::test::name[GetParam()])

#define OMN_ALL_COLUMNS(Suite) \
    INSTANTIATE_TEST_SUITE_P(Columns, Suite, ::testing::Values(0, 1, 2, 3), ::omn::test::ColumnName())

#endif /* OMN_TESTS_COLUMNS_H */
