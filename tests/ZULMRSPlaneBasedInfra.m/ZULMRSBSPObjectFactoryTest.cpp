#include "ZULMRSBSPObjectFactory.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "ZULMRSBSPObjectFactoryImpl.h"
#include "ZULTestAllocation.h"
#include "ZULTestChildProcess.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

namespace
{
using Plane = ZULTest::Owner<ZULMRSBSPPlane>;
using Point = ZULTest::Owner<ZULMRSBSPPoint>;
using Calls = std::vector<std::string>;

/// Records what reaches it.
class FakePlaneFactory : public ZULMRSBSPPlaneFactory
{
public:
    explicit FakePlaneFactory(Calls& calls) : m_Calls(calls) {}
    ~FakePlaneFactory() override { m_Calls.emplace_back("~plane"); }
    ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) override
    {
        m_Calls.push_back("gridding " + std::to_string(box.GetExtents().x) + " " + std::to_string(tolerance));
        return ZULMRSErrorGriddingTolerance;
    }
    ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                unsigned int flags) override
    {
        m_Calls.push_back("plane " + std::to_string(equation[3]) + " " + std::to_string(flags));
        isOpposite = true;
        return nullptr;
    }
    void QuantizePlaneEquation(std::array<double, 4>& equation) override { equation[0] = 42.0; }
    std::uint64_t Size() override
    {
        m_Calls.emplace_back("plane size");
        return 100;
    }
    ZULMRSErrorTypes Tass() override
    {
        m_Calls.emplace_back("plane tass");
        return m_TassResult;
    }

    Calls& m_Calls;
    ZULMRSErrorTypes m_TassResult = ZULMRSNoError;
};

class FakePointFactory : public ZULMRSBSPPointFactory
{
public:
    explicit FakePointFactory(Calls& calls) : m_Calls(calls) {}
    ~FakePointFactory() override { m_Calls.emplace_back("~point"); }
    ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                const ZULMathPoint* coordinates) override
    {
        m_Calls.push_back("point of planes and coordinates " + std::to_string(coordinates->x));
        m_Planes = {p1, p2, p3};
        return nullptr;
    }
    ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) override
    {
        m_Calls.push_back("point of coordinates " + std::to_string(coordinates.x));
        return nullptr;
    }
    ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) override
    {
        m_Calls.emplace_back("point of triple");
        m_Planes = planes;
        isValid = true;
        return nullptr;
    }
    ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes, ZULMRSBSPPoint*,
                                      ZULMRSBSPPoint*, ZULMRSBSPPlane*) override
    {
        m_Calls.emplace_back("point on edge");
        m_Planes = planes;
        return nullptr;
    }
    std::uint64_t Size() override
    {
        m_Calls.emplace_back("point size");
        return 7;
    }
    ZULMRSErrorTypes Tass() override
    {
        m_Calls.emplace_back("point tass");
        return m_TassResult;
    }

    Calls& m_Calls;
    std::array<ZULMRSBSPPlane*, 3> m_Planes{};
    ZULMRSErrorTypes m_TassResult = ZULMRSNoError;
};

class ZULMRSBSPObjectFactoryImplTest : public testing::Test
{
protected:
    Calls m_Calls;
    FakePointFactory* m_PointFactory = new FakePointFactory(m_Calls);
    FakePlaneFactory* m_PlaneFactory = new FakePlaneFactory(m_Calls);
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory =
        std::make_unique<ZULMRSBSPObjectFactoryImpl>(std::unique_ptr<ZULMRSBSPPointFactory>(m_PointFactory),
                                                     std::unique_ptr<ZULMRSBSPPlaneFactory>(m_PlaneFactory));
};

class ZULMRSBSPObjectFactoryTest : public testing::Test
{
protected:
    Plane CreatePlane(const std::array<double, 4>& equation)
    {
        bool isOpposite = false;
        return ZULTest::Own(m_Factory->CreatePlane(equation, isOpposite, ZULMRSBSPCreatePlane_Quantize));
    }

    ZULTest::LineCapture m_Lines;
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory{ZULMRSCreateObjectFactory(false)};
};
}  // namespace

TEST_F(ZULMRSBSPObjectFactoryImplTest, ForwardsEveryOperation)
{
    bool flag = false;
    const ZULMathOBB box(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {2.0, 0.0, 0.0}, {}));
    EXPECT_EQ(m_Factory->SetGriddingTolerance(box, 0.5), ZULMRSErrorGriddingTolerance);
    EXPECT_EQ(m_Factory->CreatePlane({1.0, 2.0, 3.0, 4.0}, flag, 3), nullptr);
    EXPECT_TRUE(flag);
    const ZULMathPoint coordinates(8.0, 0.0, 0.0);
    EXPECT_EQ(m_Factory->CreatePoint(nullptr, nullptr, nullptr, &coordinates), nullptr);
    EXPECT_EQ(m_Factory->CreatePoint(coordinates), nullptr);
    EXPECT_EQ(m_Factory->CreatePointOnEdge({}, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(m_Factory->Size(), 107U);
    std::array<double, 4> equation{};
    m_Factory->QuantizePlaneEquation(equation);
    EXPECT_EQ(equation[0], 42.0);
    EXPECT_EQ(m_Calls, (Calls{"gridding 2.000000 0.500000", "plane 4.000000 3",
                              "point of planes and coordinates 8.000000", "point of coordinates 8.000000",
                              "point on edge", "plane size", "point size"}));
}

TEST_F(ZULMRSBSPObjectFactoryImplTest, PacksThreePlanesInTheirOrder)
{
    const std::array<Plane, 3> planes = {ZULTest::Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 0, 0, 0)),
                                         ZULTest::Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0, 1, 0, 0)),
                                         ZULTest::Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0, 0, 1, 0))};
    const std::array<ZULMRSBSPPlane*, 3> triple = {planes[0].get(), planes[1].get(), planes[2].get()};
    bool flag = false;
    m_Factory->CreatePoint(triple[0], triple[1], triple[2], flag);
    EXPECT_TRUE(flag);
    EXPECT_EQ(m_PointFactory->m_Planes, triple);
    m_PointFactory->m_Planes = {};
    m_Factory->CreatePoint(triple, flag);
    EXPECT_EQ(m_PointFactory->m_Planes, triple);
    EXPECT_EQ(m_Calls, (Calls{"point of triple", "point of triple"}));
}

TEST_F(ZULMRSBSPObjectFactoryImplTest, TassRunsBothAndPrefersThePointsError)
{
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    m_PointFactory->m_TassResult = ZULMRSErrorInvalidInput;
    EXPECT_EQ(m_Factory->Tass(), ZULMRSErrorInvalidInput);
    m_PlaneFactory->m_TassResult = ZULMRSErrorPointsNotUpdated;
    EXPECT_EQ(m_Factory->Tass(), ZULMRSErrorInvalidInput);
    m_PointFactory->m_TassResult = ZULMRSNoError;
    EXPECT_EQ(m_Factory->Tass(), ZULMRSErrorPointsNotUpdated);
    EXPECT_EQ(m_Calls, (Calls{"point tass", "plane tass", "point tass", "plane tass", "point tass",
                              "plane tass", "point tass", "plane tass"}));
}

TEST_F(ZULMRSBSPObjectFactoryImplTest, ThePlaneFactoryGoesFirst)
{
    m_Factory.reset();
    EXPECT_EQ(m_Calls, (Calls{"~plane", "~point"}));
}

TEST_F(ZULMRSBSPObjectFactoryTest, SizeCountsPlanesAndPointsOfPlanes)
{
    EXPECT_EQ(m_Factory->Size(), 0U);
    const Plane x = CreatePlane({1.0, 0.0, 0.0, -1.0});
    EXPECT_EQ(m_Factory->Size(), 1U);
    const Plane y = CreatePlane({0.0, 1.0, 0.0, -2.0});
    const Plane skew = CreatePlane({0.0, 0.6, 0.8, -3.0});
    bool isValid = false;
    const Point point = ZULTest::Own(m_Factory->CreatePoint(x.get(), y.get(), skew.get(), isValid));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(m_Factory->Size(), 4U);
    const Point same = ZULTest::Own(
        m_Factory->CreatePoint(std::array<ZULMRSBSPPlane*, 3>{x.get(), y.get(), skew.get()}, isValid));
    EXPECT_EQ(same.get(), point.get());
    EXPECT_EQ(m_Factory->Size(), 4U);
}

TEST_F(ZULMRSBSPObjectFactoryTest, TassFreesThePlanesOfThePointsThatItDrops)
{
    {
        const Plane x = CreatePlane({1.0, 0.0, 0.0, -1.0});
        const Plane y = CreatePlane({0.0, 1.0, 0.0, -2.0});
        const Plane skew = CreatePlane({0.0, 0.6, 0.8, -3.0});
        bool isValid = false;
        const Point point = ZULTest::Own(m_Factory->CreatePoint(x.get(), y.get(), skew.get(), isValid));
    }
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 0U);
}

TEST_F(ZULMRSBSPObjectFactoryTest, ObjectsOutliveTheFactory)
{
    const Plane x = CreatePlane({1.0, 0.0, 0.0, -1.0});
    const Point point = ZULTest::Own(m_Factory->CreatePoint({1.0, 2.0, 3.0}));
    m_Factory.reset();
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(point->GetRefCount(), 0);
}

TEST_F(ZULMRSBSPObjectFactoryTest, TheFlagChoosesTheIdentity)
{
    for (const bool isGeometric : {false, true}) {
        const std::unique_ptr<ZULMRSBSPObjectFactory> factory(ZULMRSCreateObjectFactory(isGeometric));
        bool isOpposite = false;
        const Plane first = ZULTest::Own(factory->CreatePlane({2.0, 0.0, 0.0, -4.0}, isOpposite, 0));
        const Plane second = ZULTest::Own(factory->CreatePlane({1.0, 0.0, 0.0, -2.0}, isOpposite, 0));
        EXPECT_EQ(first.get() == second.get(), isGeometric);
    }
}

TEST_F(ZULMRSBSPObjectFactoryTest, EverythingIsFreed)
{
    m_Factory.reset();
    const auto useOne = [this] {
        m_Factory.reset(ZULMRSCreateObjectFactory(true));
        const Plane x = CreatePlane({1.0, 0.0, 0.0, -1.0});
        const Plane y = CreatePlane({0.0, 1.0, 0.0, -2.0});
        const Plane skew = CreatePlane({0.0, 0.6, 0.8, -3.0});
        bool isValid = false;
        const Point a = ZULTest::Own(m_Factory->CreatePoint(x.get(), y.get(), skew.get(), isValid));
        const Point b = ZULTest::Own(m_Factory->CreatePoint({1.0, 2.0, 3.0}));
        const Point c = ZULTest::Own(
            m_Factory->CreatePointOnEdge({x.get(), y.get(), skew.get()}, a.get(), b.get(), skew.get()));
        m_Factory->CreatePoint(nullptr, nullptr, nullptr, isValid);
        m_Factory.reset();
    };
    const ZULTest::LineCapture lines;
    useOne();  // what the task library sets up once
    const std::size_t nbLines = lines.GetText().size();
    const long before = ZULTest::GetLiveBlocks();
    useOne();
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before) << nbLines;
}

TEST(ZULMRSBSPObjectFactoryMemory, WithoutMemoryThereIsNoFactory)
{
    for (int nbBefore = 0; nbBefore < 3; ++nbBefore) {  // the factory, its point factory, its plane factory
        const ZULTest::LineCapture lines;
        ZULMRSBSPObjectFactory* factory = nullptr;
        {
            const ZULTest::AllocationFailure failure(1, nbBefore);
            factory = ZULMRSCreateObjectFactory(false);
        }
        EXPECT_EQ(factory, nullptr) << nbBefore;
        if (nbBefore == 0) {
            EXPECT_EQ(lines.GetText(), "") << "no factory has been made, so none writes statistics";
        }
    }
}

TEST(ZULMRSBSPObjectFactoryInterface, IsAbstractCopyableAndOpenToDerivation)
{
    static_assert(std::is_abstract_v<ZULMRSBSPObjectFactory>);
    static_assert(std::has_virtual_destructor_v<ZULMRSBSPObjectFactory>);
    static_assert(!std::is_default_constructible_v<ZULMRSBSPObjectFactory>);
    static_assert(!std::is_final_v<ZULMRSBSPObjectFactory>);
    static_assert(sizeof(ZULMRSBSPObjectFactory) == sizeof(void*));
    Calls calls;
    ZULMRSBSPObjectFactoryImpl impl(std::make_unique<FakePointFactory>(calls),
                                    std::make_unique<FakePlaneFactory>(calls));
    struct Copyable : ZULMRSBSPObjectFactory {
        ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB&, double) override { return ZULMRSNoError; }
        ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>&, bool&, unsigned int) override
        {
            return nullptr;
        }
        ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*,
                                    const ZULMathPoint*) override
        {
            return nullptr;
        }
        ZULMRSBSPPoint* CreatePoint(const ZULMathPoint&) override { return nullptr; }
        ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*, bool&) override
        {
            return nullptr;
        }
        ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>&, bool&) override { return nullptr; }
        ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>&, ZULMRSBSPPoint*,
                                          ZULMRSBSPPoint*, ZULMRSBSPPlane*) override
        {
            return nullptr;
        }
        std::uint64_t Size() override { return 5; }
        ZULMRSErrorTypes Tass() override { return ZULMRSNoError; }
        void QuantizePlaneEquation(std::array<double, 4>&) override {}
    };
    Copyable original;
    Copyable copy(original);
    EXPECT_EQ(&(copy = original), &copy);
    ZULMRSBSPObjectFactory& asBase = copy;
    EXPECT_EQ(asBase.Size(), 5U);
    // The base part of another class can be assigned; the target stays what it is.
    EXPECT_EQ(&(asBase = impl), &asBase);
    EXPECT_EQ(asBase.Size(), 5U);
}

#if ZUL_TEST_HAS_SLOTS
TEST(ZULMRSBSPObjectFactoryInterface, SlotsStandInTheirOrder)
{
    using Factory = ZULMRSBSPObjectFactory;
    using OfPlanes =
        ZULMRSBSPPoint* (Factory::*)(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*, const ZULMathPoint*);
    using OfCoordinates = ZULMRSBSPPoint* (Factory::*)(const ZULMathPoint&);
    using OfThree = ZULMRSBSPPoint* (Factory::*)(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*, bool&);
    using OfTriple = ZULMRSBSPPoint* (Factory::*)(const std::array<ZULMRSBSPPlane*, 3>&, bool&);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::SetGriddingTolerance), 0U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::CreatePlane), 1U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfPlanes>(&Factory::CreatePoint)), 2U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfCoordinates>(&Factory::CreatePoint)), 3U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfThree>(&Factory::CreatePoint)), 4U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfTriple>(&Factory::CreatePoint)), 5U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::CreatePointOnEdge), 6U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Size), 7U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Tass), 8U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::QuantizePlaneEquation), 9U);
}
#endif

namespace
{
/// The whole text of the child, its one measured number replaced.
std::string ChildText(const std::string& command)
{
    const ZULTest::ChildResult child = ZULTest::RunChild(command);
    EXPECT_EQ(child.m_ExitCode, 0) << child.m_Output;
    std::string text = child.m_Output;
    const std::string label = "release time : ";
    const std::size_t time = text.find(label);
    if (time != std::string::npos) {
        const std::size_t start = time + label.size();
        text.replace(start, text.find('\n', start) - start, "TIME");
    }
    return text;
}

std::string ExpectedChildText(const std::string& releases)
{
    return "ZULMRSBSPPointFactoryImpl::Tass : Nb Points In Factory before Tass= 3 After Tass=1 Reduction : "
           "66.6667%\n"
           "[i] ZULMRSBSPPointOnEdgeFactory::Tass : Nb Points In Factory before Tass= 2 After Tass=1 "
           "Reduction : 50%\n"
           "ZULMRSBSPPlaneFactoryImpl::Tass : Nb Planes In Factory before Tass= 4 After Tass=3 Reduction : "
           "25%\n"
           "======= ~ ZULMRSBSPPlaneFactory Stats ~ ==================\n"
           "Nb Planes Required for New : 5\n"
           "Nb Planes Reused : 1\n"
           "Re-Use Percentage : 20%\n"
           "Factory Size : 3\n"
           "======= ~ ZULMRSBSPPlaneFactory Stats ~ ==================\n"
           "======= ~ ZULMRSBSPPointFactory Stats ~ ==================\n"
           "Nb Points Required for New : 4\n"
           "Nb Points Reused : 1\n"
           "Re-Use Percentage : 25%\n"
           "Factory Size : 1\n"
           "======= ~ ZULMRSBSPPointFactory Stats ~ ==================\n"
           " ~ZULMRSBSPPointFactoryImpl release time : TIME\n" +
           releases +
           "*** ZULMRSBSPPolyhedron Counter :\t1\t ***\n"
           "*** ZULMRSBSPPolygon Counter :\t0\t ***\n"
           "*** ZULMRSBSPPoint Counter :\t0\t ***\n"
           "*** ZULMRSBSPPlane Counter :\t6\t ***\n";
}
}  // namespace

TEST(ZULMRSBSPObjectFactoryProcess, WritesItsStatisticsAndTheLibraryItsCounters)
{
    EXPECT_EQ(ChildText("env -u MRS_DISABLE_PPL " ZUL_FACTORY_CHILD),
              ExpectedChildText("released by tasks\n"));
}

TEST(ZULMRSBSPObjectFactoryProcess, AnyValueOfTheVariableDisablesTasks)
{
    for (const std::string value : {"", "0", "1"}) {
        EXPECT_EQ(ChildText("env MRS_DISABLE_PPL=" + value + " " ZUL_FACTORY_CHILD),
                  ExpectedChildText("released by the caller\n"))
            << value;
    }
}

TEST(ZULMRSBSPObjectFactoryProcess, TheVariableIsReadOnce)
{
    EXPECT_EQ(ChildText("env MRS_DISABLE_PPL= " ZUL_FACTORY_CHILD " unset"),
              ExpectedChildText("released by the caller\n"));
    EXPECT_EQ(ChildText("env -u MRS_DISABLE_PPL " ZUL_FACTORY_CHILD " set"),
              ExpectedChildText("released by tasks\n"));
}
