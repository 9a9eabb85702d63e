#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

// Shared objects die by their last release only.
static_assert(!std::is_destructible_v<ZULMRSBSPPolygon> && !std::is_destructible_v<ZULMRSBSPPolyhedron>);
static_assert(std::has_virtual_destructor_v<ZULMRSBSPPolygon> &&
              std::has_virtual_destructor_v<ZULMRSBSPPolyhedron>);
static_assert(!std::is_final_v<ZULMRSBSPPolygon> && !std::is_final_v<ZULMRSBSPPolyhedron>);
static_assert(ZULMRSNoError == 0 && ZULMRSErrorInvalidInput == 1 && ZULMRSErrorPointsNotUpdated == 46);

namespace
{
/// Writes down which virtual operation was called.
class RecordingPolygon : public ZULMRSBSPPolygon
{
public:
    explicit RecordingPolygon(std::string& log) : m_Log(log) {}

    void ReserveNbEdges(std::size_t nbEdges) override
    {
        m_Log += "ReserveNbEdges " + std::to_string(nbEdges) + "\n";
        ZULMRSBSPPolygon::ReserveNbEdges(nbEdges);
    }
    void AddBoundaries(const std::vector<ZULMRSBSPPlane*>& planes) override
    {
        m_Log += "AddBoundaries\n";
        ZULMRSBSPPolygon::AddBoundaries(planes);
    }
    void AddBoundary(ZULMRSBSPPlane* plane, std::size_t position, char orientation) override
    {
        m_Log += "AddBoundary at " + std::to_string(position) + "\n";
        ZULMRSBSPPolygon::AddBoundary(plane, position, orientation);
    }
    void AddBoundary(ZULMRSBSPPlane* plane, char orientation) override
    {
        m_Log += (plane != nullptr ? "AddBoundary plane " : "AddBoundary null ") +
                 std::to_string(static_cast<signed char>(orientation)) + "\n";
        ZULMRSBSPPolygon::AddBoundary(plane, orientation);
    }
    ZULMRSErrorTypes ReverseLoop() override
    {
        m_Log += "ReverseLoop\n";
        return ZULMRSBSPPolygon::ReverseLoop();
    }
    ZULMRSErrorTypes ReverseLoopWithoutPoint() override
    {
        m_Log += "ReverseLoopWithoutPoint\n";
        return ZULMRSBSPPolygon::ReverseLoopWithoutPoint();
    }

protected:
    ~RecordingPolygon() override { m_Log += "destroyed\n"; }

private:
    std::string& m_Log;
};

TEST(PolygonInterface, ADerivedClassSeesEveryCall)
{
    std::string log;
    const OwnedPlane plane = MakePlane(1, 0, 0, 0);
    {
        const OwnedPolygon polygon(new RecordingPolygon(log));
        polygon->ReserveNbEdges(2);
        polygon->AddBoundary(plane.get(), static_cast<char>(-1));
        polygon->AddBoundary(nullptr, std::size_t{0}, 1);
        polygon->ReverseLoop();
        polygon->ReverseLoopWithoutPoint();
        EXPECT_EQ(plane->GetRefCount(), 1);
    }
    EXPECT_EQ(log,
              "ReserveNbEdges 2\nAddBoundary plane -1\nAddBoundary at 0\nReverseLoop\n"
              "ReverseLoopWithoutPoint\ndestroyed\n");
    EXPECT_EQ(plane->GetRefCount(), 0);
}

TEST(PolygonInterface, AddBoundariesGoesThroughTheVirtualAddBoundary)
{
    std::string log;
    const OwnedPlane plane = MakePlane(1, 0, 0, 0);
    const OwnedPolygon polygon(new RecordingPolygon(log));
    polygon->AddBoundaries({plane.get(), nullptr, plane.get()});
    EXPECT_EQ(log, "AddBoundaries\nAddBoundary plane 0\nAddBoundary null 0\nAddBoundary plane 0\n");
    EXPECT_EQ(polygon->GetNbEdges(), 2U);
}

class DerivedPolyhedron : public ZULMRSBSPPolyhedron
{
public:
    explicit DerivedPolyhedron(int& destroyed) : m_Destroyed(destroyed) {}

protected:
    ~DerivedPolyhedron() override { ++m_Destroyed; }

private:
    int& m_Destroyed;
};

TEST(PolyhedronInterface, ItsDestructorIsVirtual)
{
    int destroyed = 0;
    std::string log;
    ZULMRSBSPPolyhedron* const polyhedron = new DerivedPolyhedron(destroyed);
    {
        const OwnedPolygon polygon(new RecordingPolygon(log));
        polyhedron->AddAPolygon(polygon.get(), 1);
    }
    EXPECT_EQ(log, "");
    polyhedron->AddRef();
    polyhedron->Release();
    EXPECT_EQ(destroyed, 0);
    polyhedron->Release();
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(log, "destroyed\n");
}

#if ZUL_TEST_HAS_SLOTS
TEST(PolygonInterface, VirtualOperationsKeepTheirSlots)
{
    using Polygon = ZULMRSBSPPolygon;
    using AddAt = void (Polygon::*)(ZULMRSBSPPlane*, std::size_t, char);
    using AddLast = void (Polygon::*)(ZULMRSBSPPlane*, char);
    EXPECT_EQ(SlotOf(&Polygon::ReserveNbEdges), 0U);
    EXPECT_EQ(SlotOf(&Polygon::AddBoundaries), 1U);
    EXPECT_EQ(SlotOf(static_cast<AddAt>(&Polygon::AddBoundary)), 2U);
    EXPECT_EQ(SlotOf(static_cast<AddLast>(&Polygon::AddBoundary)), 3U);
    EXPECT_EQ(SlotOf(&Polygon::ReverseLoop), 4U);
    EXPECT_EQ(SlotOf(&Polygon::ReverseLoopWithoutPoint), 5U);

    // The destructor takes the last slots: what a derived class adds comes behind its two entries.
    struct Extended : Polygon {
        virtual void Added() {}
    };
    EXPECT_EQ(SlotOf(&Extended::Added), 8U);
}

TEST(PolyhedronInterface, TheDestructorIsItsOnlyVirtualOperation)
{
    struct Extended : ZULMRSBSPPolyhedron {
        virtual void Added() {}
    };
    EXPECT_EQ(SlotOf(&Extended::Added), 2U);
}
#endif

template <class Part, class Object>
std::size_t OffsetIn(const Object& object, const Part& part)
{
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&part) -
                                    reinterpret_cast<const char*>(&object));
}

TEST(PolygonInterface, FieldsLieInTheirOrder)
{
    constexpr std::size_t pointer = sizeof(void*);
    constexpr std::size_t array = sizeof(std::vector<void*>);
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->AddRef();
    polygon->AddRef();
    EXPECT_EQ(PeekAt<std::int32_t>(*polygon, pointer), 2);
    EXPECT_EQ(PeekAt<std::int32_t>(*polygon, pointer + 4), 0);
    EXPECT_EQ(PeekAt<const void*>(*polygon, pointer + 8), square.m_SupportingPlane.get());
    EXPECT_EQ(OffsetIn(*polygon, polygon->GetAllEdges()), 2 * pointer + 8);
    EXPECT_EQ(OffsetIn(*polygon, polygon->GetPoints()), 2 * pointer + 8 + array);
    EXPECT_EQ(OffsetIn(*polygon, polygon->GetAllEdgeOrientations()), 2 * pointer + 8 + 2 * array);
    EXPECT_EQ(OffsetIn(*polygon, polygon->GetAttribute()), 2 * pointer + 8 + 3 * array);
    EXPECT_EQ(sizeof(ZULMRSBSPPolygon), 2 * pointer + 8 + 3 * array + 8);
    EXPECT_EQ(OffsetIn(polygon->GetAttribute(), polygon->GetAttribute().m_Index), 4U);
    polygon->Release();
    polygon->Release();
}

TEST(PolyhedronInterface, FieldsLieInTheirOrder)
{
    constexpr std::size_t pointer = sizeof(void*);
    constexpr std::size_t array = sizeof(std::vector<void*>);
    const OwnedPolyhedron polyhedron(new ZULMRSBSPPolyhedron());
    polyhedron->AddRef();
    EXPECT_EQ(OffsetIn(*polyhedron, polyhedron->GetPolygons()), pointer);
    EXPECT_EQ(OffsetIn(*polyhedron, polyhedron->GetPolygonsOrientations()), pointer + array);
    EXPECT_EQ(PeekAt<std::int32_t>(*polyhedron, pointer + 2 * array), 1);
    EXPECT_EQ(sizeof(ZULMRSBSPPolyhedron), 2 * pointer + 2 * array);
    polyhedron->Release();
}
}  // namespace
