#include "ZULMRSBSPStageStatistics.h"

#include <gtest/gtest.h>

#include <thread>

#include "ZULMRSBSPPredicates.h"
#include "ZULTestSupport.h"

namespace
{
using ZULTest::Own;

/// What a piece of work added to the counts.
template <class Work>
ZULMRSBSPStageStatistics CountsOf(const Work& work)
{
    const ZULMRSBSPStageStatistics before = ZULMRSBSPStageStatistics::Get();
    work();
    const ZULMRSBSPStageStatistics after = ZULMRSBSPStageStatistics::Get();
    return {after.m_Shortcut - before.m_Shortcut, after.m_Filter - before.m_Filter,
            after.m_Interval - before.m_Interval, after.m_Exact - before.m_Exact};
}

void ExpectCounts(const ZULMRSBSPStageStatistics& counts, std::uint64_t shortcut, std::uint64_t filter,
                  std::uint64_t interval, std::uint64_t exact)
{
    const std::uint64_t once = ZULMRSBSPStageStatistics::IsCounting() ? 1 : 0;
    EXPECT_EQ(counts.m_Shortcut, once * shortcut);
    EXPECT_EQ(counts.m_Filter, once * filter);
    EXPECT_EQ(counts.m_Interval, once * interval);
    EXPECT_EQ(counts.m_Exact, once * exact);
}

TEST(ZULMRSBSPStageStatisticsTest, EveryDecisionCountsForItsStage)
{
    using ZULMRSBSPPredicates::SignOf2x2Determinant;
    ExpectCounts(CountsOf([] { SignOf2x2Determinant(1, -1, 1, 1); }), 0, 0, 0, 1);
    // Rows that do not fit integers of fixed length.
    ExpectCounts(CountsOf([] { SignOf2x2Determinant(0x1p100, -1, 0x1p100, 1); }), 1, 0, 0, 0);
    ExpectCounts(CountsOf([] { SignOf2x2Determinant(0x1p101, 1, 0x1p100, 1); }), 0, 1, 0, 0);
    ExpectCounts(CountsOf([] { SignOf2x2Determinant(0x1p100, 1, 0x1p100, 1); }), 0, 0, 1, 0);
    ExpectCounts(CountsOf([] { SignOf2x2Determinant(0.1 * 0x1p100, 0.3, 0.1 * 0x1p100, 0.3); }), 0, 0, 0, 1);
}

TEST(ZULMRSBSPStageStatisticsTest, KeptIntegersCountAsAFilterWhereTheyAreCut)
{
    const auto point = Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)));
    const auto exact = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 1, 1, 0));
    const auto cut = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(1, 1, 1, 0x1p-70));
    const auto ask = [&point](const auto& plane) {
        return [&] { ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *point); };
    };
    ExpectCounts(CountsOf(ask(exact)), 0, 0, 0, 1);
    ExpectCounts(CountsOf(ask(cut)), 0, 1, 0, 0);
}

TEST(ZULMRSBSPStageStatisticsTest, SignsCountForThePredicateThatNeedsThem)
{
    const auto p = Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)));
    const auto q = Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 4)));
    const auto countsOf = [](ZULMRSBSPPredicate predicate) {
        return ZULMRSBSPStageStatistics::Get(predicate).m_Exact;
    };
    const std::uint64_t ordersBefore = countsOf(ZULMRSBSPPredicate::LexicographicOrder);
    const std::uint64_t sidesBefore = countsOf(ZULMRSBSPPredicate::IsPointInFrontOfPlane);
    ZULMRSBSPPredicates::LexicographicOrder(*p, *q);
    const bool isCounting = ZULMRSBSPStageStatistics::IsCounting();
    EXPECT_EQ(countsOf(ZULMRSBSPPredicate::LexicographicOrder) - ordersBefore, isCounting ? 3U : 0U);
    EXPECT_EQ(countsOf(ZULMRSBSPPredicate::IsPointInFrontOfPlane), sidesBefore);
}

TEST(ZULMRSBSPStageStatisticsTest, PredicatesHaveTheirNames)
{
    EXPECT_STREQ(ZULMRSBSPStageStatistics::GetName(ZULMRSBSPPredicate::SignOf2x2Determinant),
                 "SignOf2x2Determinant");
    EXPECT_STREQ(ZULMRSBSPStageStatistics::GetName(ZULMRSBSPPredicate::IsCrossingOBB), "IsCrossingOBB");
    constexpr auto none = static_cast<ZULMRSBSPPredicate>(ZULMRSBSPStageStatistics::NbPredicates);
    EXPECT_STREQ(ZULMRSBSPStageStatistics::GetName(none), "");
    EXPECT_EQ(ZULMRSBSPStageStatistics::Get(none).m_Exact, 0U);
}

TEST(ZULMRSBSPStageStatisticsTest, APlaneOfThePointItselfIsAShortcut)
{
    ZULMRSBSPPoint* point = ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3));
    ExpectCounts(CountsOf([point] { ZULMRSBSPPredicates::IsPointInFrontOfPlane(*point->GetP1(), *point); }),
                 1, 0, 0, 0);
    point->Release();
}

TEST(ZULMRSBSPStageStatisticsTest, ThreadsThatHaveEndedStillCount)
{
    const auto work = [] {
        std::thread thread([] {
            for (int index = 0; index < 100; ++index) {
                ZULMRSBSPPredicates::SignOf2x2Determinant(3, 1, 1, 1);
            }
        });
        thread.join();
    };
    ExpectCounts(CountsOf(work), 0, 0, 0, 100);
}
}  // namespace
