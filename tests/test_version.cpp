// The version records: eight of them, one per column and group.
#include <gtest/gtest.h>

#include <string.h>

#include "core/dispatch.h"
#include "tests/columns.h"

using namespace omn;

namespace {

struct Expected {
    const char* label;
    const char* signalName;
    const char* vecMathName;
};

const Expected kExpected[4] = {
    { "px", "omnspxl.lib", "omnvmpxl.lib" },
    { "a6", "omnsa6l.lib", "omnvma6l.lib" },
    { "w7", "omnsw7l.lib", "omnvmw7l.lib" },
    { "t7", "omnst7l.lib", "omnvmt7l.lib" },
};

void expectLabel(const char (&targetCpu)[4], const char* label)
{
    char expected[4] = {};   // NUL-padded
    memcpy(expected, label, strlen(label));
    EXPECT_EQ(0, memcmp(targetCpu, expected, 4)) << label;
}

} // namespace

class VersionTest : public test::ColumnTest {};

TEST_P(VersionTest, SignalProcessingRecord)
{
    const OmnLibVersion* v = V(omnsGetLibVersion)();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->major, 4);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->majorBuild, 8);
    EXPECT_EQ(v->build, 85);
    expectLabel(v->targetCpu, kExpected[col()].label);
    EXPECT_STREQ(v->Name, kExpected[col()].signalName);
    EXPECT_STREQ(v->Version, "v4.1 beta");
    EXPECT_STREQ(v->BuildDate, "Apr 22 2004");
    EXPECT_EQ(V(omnsGetLibVersion)(), v);   // constant record
}

TEST_P(VersionTest, AccuracyClassRecord)
{
    const OmnLibVersion* v = V(omnvmGetLibVersion)();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->major, 4);
    EXPECT_EQ(v->minor, 0);
    EXPECT_EQ(v->majorBuild, 10);
    EXPECT_EQ(v->build, 17);
    expectLabel(v->targetCpu, kExpected[col()].label);
    EXPECT_STREQ(v->Name, kExpected[col()].vecMathName);
    EXPECT_STREQ(v->Version, "v4.0");
    EXPECT_STREQ(v->BuildDate, "Apr 20 2004");
    EXPECT_NE(v, V(omnsGetLibVersion)());
}

OMN_ALL_COLUMNS(VersionTest);

TEST(Version, DispatchedRecordsNameTheSelectedColumn)
{
    const int column = omnSelectColumn();
    expectLabel(omnsGetLibVersion()->targetCpu, kExpected[column].label);
    expectLabel(omnvmGetLibVersion()->targetCpu, kExpected[column].label);
}
