/*
 * alloc_faults.h - runs an allocating call once per allocation point with
 * that allocation failing, and checks the -9 and that nothing leaks.
 *
 *   omn::test::expectNoMemoryPaths([&](bool* ok) {
 *       OmnFooSpec* spec = nullptr;
 *       const OmnStatus st = omn::test::omnsFooInitAlloc[c](&spec, 8);
 *       if (st == 0) omn::test::omnsFooFree[c](spec);   // a success cleans up
 *       *ok = st == 0;
 *       return st;
 *   });
 *
 * The call is made with the 1st, 2nd, ... allocation failing until a run
 * reaches its end without the injected failure firing; every failing run
 * must return -9, and after every run (the successful one included) as many
 * blocks must have gone back through omnsFree as were taken.
 */
#ifndef OMN_TESTS_ALLOC_FAULTS_H
#define OMN_TESTS_ALLOC_FAULTS_H

#include <gtest/gtest.h>

#include "core/alloc.h"

namespace omn {
namespace test {

/* Counting on for the life of the object; the seam disarmed on both ends. */
class AllocTracking {
public:
    AllocTracking() { omnAllocTestFailAt(0); omnAllocTestTrack(true); }
    ~AllocTracking() { omnAllocTestFailAt(0); omnAllocTestTrack(false); }
    AllocTracking(const AllocTracking&) = delete;
    AllocTracking& operator=(const AllocTracking&) = delete;
};

/* call(bool* ok) makes the allocating call, releases what a success
   returned, sets *ok to whether it succeeded, and returns its status.
   Returns the number of allocation points found. */
template <typename Call>
unsigned expectNoMemoryPaths(Call call, unsigned maxPoints = 10000)
{
    AllocTracking tracking;
    for (unsigned k = 1; k <= maxPoints; ++k) {
        const OmnAllocStats before = omnAllocTestStats();
        omnAllocTestFailAt(k);
        bool ok = false;
        const auto status = call(&ok);
        const bool injected = omnAllocTestFailAt(0);
        const OmnAllocStats after = omnAllocTestStats();
        EXPECT_EQ(after.allocated - before.allocated, after.freed - before.freed)
            << "blocks leaked with allocation " << k << " failing";
        if (!injected) {
            EXPECT_TRUE(ok) << "the call failed without an injected failure";
            return k - 1;
        }
        EXPECT_FALSE(ok) << "allocation " << k << " failed and the call still succeeded";
        EXPECT_EQ(status, -9) << "allocation " << k << " failing";
    }
    ADD_FAILURE() << "more than " << maxPoints << " allocation points";
    return maxPoints;
}

} // namespace test
} // namespace omn

#endif /* OMN_TESTS_ALLOC_FAULTS_H */
