#include "ZULMRSBSPInstanceCounters.h"

#include <gtest/gtest.h>

#include <string>

#include "ZULTestChildProcess.h"

namespace
{
/// What the child writes when told so.
ZULTest::ChildResult RunTheChild(const std::string& mode)
{
    return ZULTest::RunChild(std::string(ZUL_UNLOAD_CHILD) + " " + mode);
}

std::string Lines(int polyhedra, int polygons, int points, int planes)
{
    return "*** ZULMRSBSPPolyhedron Counter :\t" + std::to_string(polyhedra) + "\t ***\n" +
           "*** ZULMRSBSPPolygon Counter :\t" + std::to_string(polygons) + "\t ***\n" +
           "*** ZULMRSBSPPoint Counter :\t" + std::to_string(points) + "\t ***\n" +
           "*** ZULMRSBSPPlane Counter :\t" + std::to_string(planes) + "\t ***\n";
}

TEST(InstanceCounters, NothingMade)
{
    const ZULTest::ChildResult result = RunTheChild("nothing");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, Lines(1, 0, 0, 0));
}

TEST(InstanceCounters, PlanesOfEveryKindAreCountedCopiesAreNot)
{
    const ZULTest::ChildResult result = RunTheChild("planes");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, Lines(1, 0, 0, 12));
}

TEST(InstanceCounters, PointsAreNotCounted)
{
    const ZULTest::ChildResult result = RunTheChild("points");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, Lines(1, 0, 0, 6));
}

TEST(InstanceCounters, PolygonsAndPolyhedraAreCounted)
{
    const ZULTest::ChildResult result = RunTheChild("polyhedra");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, Lines(3, 1, 0, 0));
}

TEST(InstanceCounters, TheHostMayHaveRedirectedTheStream)
{
    const ZULTest::ChildResult result = RunTheChild("redirected");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output,
              "host: *** ZULMRSBSPPolyhedron Counter :\t1\t ***\n"
              "host: *** ZULMRSBSPPolygon Counter :\t0\t ***\n"
              "host: *** ZULMRSBSPPoint Counter :\t0\t ***\n"
              "host: *** ZULMRSBSPPlane Counter :\t1\t ***\n");
}

TEST(InstanceCounters, PlanesMayLiveUntilTheEndAndBeyond)
{
    const ZULTest::ChildResult result = RunTheChild("late");
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, Lines(1, 0, 0, 3));
}
}  // namespace
