#include "ZULMRSBSPPredicatesEvaluator.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestPolygons.h"

using ZULTest::MakePlane;
using ZULTest::MakePoint;
using ZULTest::OwnedPlane;
using ZULTest::OwnedPoint;

namespace
{
using Evaluator = ZULMRSBSPPredicatesEvaluator;

/// Answers by its own lights and tells what it was asked.
class Contrarian : public Evaluator
{
public:
    explicit Contrarian(std::vector<int>& calls) : m_Calls(calls) {}
    Contrarian(const Contrarian&) = delete;
    Contrarian& operator=(const Contrarian&) = delete;
    ~Contrarian() override { m_Calls.push_back(0); }

    ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                             const ZULMRSBSPPoint& point) override
    {
        m_Calls.push_back(1);
        return ExchangeBool(Evaluator::IsPointInFrontOfPlane(plane, point));
    }
    ZULMRSExtendedBool ArePointsEqual(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q) override
    {
        m_Calls.push_back(2);
        return ExchangeBool(Evaluator::ArePointsEqual(p, q));
    }
    void clear() override { m_Calls.push_back(3); }

private:
    static ZULMRSExtendedBool ExchangeBool(ZULMRSExtendedBool answer)
    {
        return static_cast<ZULMRSExtendedBool>(-static_cast<int>(answer));
    }

    std::vector<int>& m_Calls;
};

struct Scene {
    OwnedPlane m_Plane = MakePlane(1, 2, 3, -14);
    OwnedPlane m_Nearly = MakePlane(1, 2, 3, -14.000000000000002);
    OwnedPoint m_On = MakePoint(1, 2, 3);
    OwnedPoint m_Front = MakePoint(2, 2, 3);
    OwnedPoint m_Behind = MakePoint(1, 2, 2.9999999999999996);
    bool m_IsValid = false;
    /// The same place as m_On, by planes.
    OwnedPlane m_X = MakePlane(2, 0, 0, -2);
    OwnedPlane m_Y = MakePlane(0, 1, 0, -2);
    OwnedPlane m_Z = MakePlane(1, 1, 1, -6);
    OwnedPoint m_Meeting =
        OwnedPoint(ZULMRSBSPPointNS::CreatePoint(m_X.get(), m_Y.get(), m_Z.get(), m_IsValid, false));

    std::vector<const ZULMRSBSPPlane*> GetPlanes() const
    {
        return {m_Plane.get(), m_Nearly.get(), m_X.get(), m_Y.get(), m_Z.get()};
    }
    std::vector<const ZULMRSBSPPoint*> GetPoints() const
    {
        return {m_On.get(), m_Front.get(), m_Behind.get(), m_Meeting.get()};
    }
};

TEST(PredicatesEvaluator, TellsTheSideOfAPoint)
{
    const Scene scene;
    ASSERT_TRUE(scene.m_IsValid);
    Evaluator evaluator;
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Front), ZULMRSExtendedTrue);
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Behind), ZULMRSExtendedFalse);
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_On), ZULMRSExtendedUndetermined);
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Meeting), ZULMRSExtendedUndetermined);
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Nearly, *scene.m_Meeting), ZULMRSExtendedFalse);
}

TEST(PredicatesEvaluator, TellsWhetherPointsAreEqual)
{
    const Scene scene;
    Evaluator evaluator;
    EXPECT_EQ(evaluator.ArePointsEqual(*scene.m_On, *scene.m_Meeting), ZULMRSExtendedTrue);
    EXPECT_EQ(evaluator.ArePointsEqual(*scene.m_On, *MakePoint(1, 2, 3)), ZULMRSExtendedTrue);
    EXPECT_EQ(evaluator.ArePointsEqual(*scene.m_Meeting, *scene.m_Behind), ZULMRSExtendedFalse);
}

TEST(PredicatesEvaluator, AnswersAsThePredicates)
{
    const Scene scene;
    Evaluator evaluator;
    for (const ZULMRSBSPPoint* p : scene.GetPoints()) {
        for (const ZULMRSBSPPlane* plane : scene.GetPlanes()) {
            EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*plane, *p),
                      ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *p));
        }
        for (const ZULMRSBSPPoint* q : scene.GetPoints()) {
            EXPECT_EQ(evaluator.ArePointsEqual(*p, *q), ZULMRSBSPPredicates::ArePointsEqual(*p, *q));
        }
    }
}

TEST(PredicatesEvaluator, AsksAnewEveryTime)
{
    const auto plane = ZULTest::Own(new ZULTest::PlaneStub({1, 0, 0, -1}));
    const OwnedPoint point = MakePoint(2, 0, 0);
    Evaluator evaluator;
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    const std::size_t nbCalls = plane->m_Calls.size();
    EXPECT_GT(nbCalls, 0U);
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->m_Calls.size(), 2 * nbCalls);
}

TEST(PredicatesEvaluator, ClearChangesNothing)
{
    const Scene scene;
    Evaluator evaluator;
    evaluator.clear();
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Front), ZULMRSExtendedTrue);
    evaluator.clear();
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Front), ZULMRSExtendedTrue);
}

TEST(PredicatesEvaluator, HasNoState)
{
    EXPECT_EQ(sizeof(Evaluator), sizeof(void*));
    EXPECT_TRUE(std::is_polymorphic_v<Evaluator>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Evaluator>);
    EXPECT_TRUE(std::is_nothrow_default_constructible_v<Evaluator>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<Evaluator>);
    EXPECT_TRUE(std::is_nothrow_copy_assignable_v<Evaluator>);
    const Scene scene;
    const Evaluator evaluator;
    Evaluator copy(evaluator);
    EXPECT_EQ(copy.IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Behind), ZULMRSExtendedFalse);
    copy = evaluator;
    EXPECT_EQ(copy.ArePointsEqual(*scene.m_On, *scene.m_On), ZULMRSExtendedTrue);
}

#if ZUL_TEST_HAS_SLOTS
TEST(PredicatesEvaluator, SlotsComeInOrder)
{
    // This ABI gives the destructor the first two.
    EXPECT_EQ(ZULTest::SlotOf(&Evaluator::IsPointInFrontOfPlane), 2U);
    EXPECT_EQ(ZULTest::SlotOf(&Evaluator::ArePointsEqual), 3U);
    EXPECT_EQ(ZULTest::SlotOf(&Evaluator::clear), 4U);
}
#endif

TEST(PredicatesEvaluator, ADerivedClassOverridesEverySlot)
{
    const Scene scene;
    std::vector<int> calls;
    Evaluator* const evaluator = new Contrarian(calls);
    EXPECT_EQ(evaluator->IsPointInFrontOfPlane(*scene.m_Plane, *scene.m_Front), ZULMRSExtendedFalse);
    EXPECT_EQ(evaluator->ArePointsEqual(*scene.m_On, *scene.m_Meeting), ZULMRSExtendedFalse);
    evaluator->clear();
    delete evaluator;
    EXPECT_EQ(calls, (std::vector<int>{1, 2, 3, 0}));
}
}  // namespace
