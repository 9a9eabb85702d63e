#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PlanesPointKit.h"
#include "ZULMRSBSPEquation.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestGeometry.h"

// A three-planes point whose planes keep exact integers makes its numbers when they are first asked for: the
// same ones that it would have made at once.
namespace
{
using namespace ThreePlanesPointKit;
using ZULTest::Random;
using ZULTest::Regime;
using ZULTest::Silence;
using Numbers = std::array<ZULExpDynamic, 4>;

constexpr int Cases = 4'000 / ZUL_TEST_CASES_DIVISOR;

/// The numbers of a triple in the order given, with W not certainly negative; none when a fault was met.
std::optional<Numbers> MadeAtOnce(const Triple& planes)
{
    using ZULMRSBSPFormulas::Convert;
    const ZULExpFloatScope scope;
    static Numbers numbers;  // memory that outlives the scope
    numbers = ZULMRSBSPFormulas::MeetingPoint(Convert<ZULExpDynamic>(planes[0]->GetCoords()),
                                              Convert<ZULExpDynamic>(planes[1]->GetCoords()),
                                              Convert<ZULExpDynamic>(planes[2]->GetCoords()));
    if (scope.IsFaulted()) {
        return std::nullopt;
    }
    return numbers[3].Sign() == ZULExpSignNegative ? Negated(numbers) : numbers;
}

/// Bit for bit, but for the sign of zeros.
bool AreSame(const ZULExpDynamic& x, const ZULExpDynamic& y)
{
    const bool areZeros = x.GetValue() == 0.0 && y.GetValue() == 0.0;
    return (areZeros || ZULTest::AreSameBits(x.GetValue(), y.GetValue())) &&
           ZULTest::AreSameBits(x.GetMagnitude(), y.GetMagnitude()) && x.GetCount() == y.GetCount();
}
testing::AssertionResult HasNumbers(const ZULMRSBSP3PlanesPoint& point,
                                    const std::optional<Numbers>& expected)
{
    const Numbers* kept = CacheOf(point);
    if ((kept != nullptr) != expected.has_value()) {
        return testing::AssertionFailure() << "validity " << (kept != nullptr);
    }
    for (std::size_t i = 0; i < 4 && kept != nullptr; ++i) {
        if (!AreSame((*kept)[i], (*expected)[i])) {
            return testing::AssertionFailure() << "number " << i;
        }
    }
    return testing::AssertionSuccess();
}

bool HaveExactIntegers(const Triple& planes)
{
    return std::all_of(planes.begin(), planes.end(), [](const ZULMRSBSPPlane* plane) {
        return ZULMRSBSPDirectReads::ExactIntegers(plane) != nullptr;
    });
}

/// A copy takes the planes without their references; these are supplied here.
void AddReferences(const ZULMRSBSP3PlanesPoint& copy)
{
    for (ZULMRSBSPPlane* plane : copy.GetPlanes()) {
        plane->AddRef();
    }
}
PointOwner CopyOf(const ZULMRSBSP3PlanesPoint& point)
{
    PointOwner copy(new ZULMRSBSP3PlanesPoint(point));
    AddReferences(*copy);
    return copy;
}

/// What the tests go over: planes in every regime, in every order of the triple.
template <class Check>
void ForManyTriples(std::uint64_t seed, const Check& check)
{
    const Silence silence;
    Random random(seed);
    std::size_t nbLazy = 0;
    std::size_t nbInvalid = 0;
    for (const Regime regime : ZULTest::AllRegimes) {
        for (int n = 0; n < Cases; ++n) {
            Equations equations = random.PlaneTriple(regime);
            const Fixture f(equations);
            if (f.m_IsValid) {
                nbLazy += HaveExactIntegers(f.GetTriple()) ? 1 : 0;
                nbInvalid += MadeAtOnce(f.GetTriple()) ? 0 : 1;
                ASSERT_NO_FATAL_FAILURE(check(random, f)) << ZULTest::NameOf(regime);
            }
        }
    }
    EXPECT_GT(nbLazy, static_cast<std::size_t>(Cases));
    EXPECT_GT(nbInvalid, static_cast<std::size_t>(Cases) / 4);
}

TEST(LazyRepresentation, TheNumbersAreThoseOfTheOrderGiven)
{
    ForManyTriples(63'001, [](Random&, const Fixture& f) {
        ASSERT_TRUE(HasNumbers(*f.m_Point, MadeAtOnce(f.GetTriple())));
    });
}

TEST(LazyRepresentation, ThePlanesAreExchangedWhetherTheNumbersAreMadeOrNot)
{
    ForManyTriples(63'002, [](Random&, const Fixture& f) {
        ASSERT_GT(ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*f.m_Point->GetP1(), *f.m_Point->GetP2(),
                                                                *f.m_Point->GetP3()),
                  0);
        const auto planes = f.m_Point->GetPlanes();
        ASSERT_TRUE(planes == f.GetTriple() || planes == f.GetExchanged());
        CacheOf(*f.m_Point);
        ASSERT_EQ(f.m_Point->GetPlanes(), planes);
    });
}

TEST(LazyRepresentation, CopiesOfWhatIsNotMadeYet)
{
    ForManyTriples(63'003, [](Random&, const Fixture& f) {
        const auto expected = MadeAtOnce(f.GetTriple());
        // Copied, and assigned, before anyone has asked.
        const PointOwner copy = CopyOf(*f.m_Point);
        const Fixture second(
            Equations{f.m_Planes[0]->GetCoords(), f.m_Planes[1]->GetCoords(), f.m_Planes[2]->GetCoords()});
        bool isValid = false;
        const PointOwner assigned(new ZULMRSBSP3PlanesPoint(Triple{}, isValid));
        *assigned = *second.m_Point;
        AddReferences(*assigned);
        ASSERT_TRUE(HasNumbers(*assigned, expected));
        ASSERT_TRUE(HasNumbers(*second.m_Point, expected));
        ASSERT_TRUE(HasNumbers(*copy, expected));
        ASSERT_TRUE(HasNumbers(*f.m_Point, expected));
        ASSERT_EQ(ZULMRSBSPDirectReads::Integers(*copy)->m_Values,
                  ZULMRSBSPDirectReads::Integers(*f.m_Point)->m_Values);
        ASSERT_EQ(ZULMRSBSPDirectReads::Integers(*assigned)->m_Error,
                  ZULMRSBSPDirectReads::Integers(*f.m_Point)->m_Error);
    });
}

TEST(LazyRepresentation, AReplacedPlaneStartsAnew)
{
    ForManyTriples(63'004, [](Random& random, const Fixture& f) {
        for (int n = 0; n < 2; ++n) {
            Triple planes = f.m_Point->GetPlanes();
            ZULMRSBSPPlane*& replaced = planes[static_cast<std::size_t>(random.Integer(0, 2))];
            Plane4 equation = replaced->GetCoords();
            const double factor = random.Sign() * (random.OneIn(2) ? 1.0 : 0.5);
            std::transform(equation.begin(), equation.end(), equation.begin(),
                           [factor](double x) { return factor * x; });
            const PlaneOwner plane = Cartesian(equation);
            ASSERT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(plane.get(), replaced));
            replaced = plane.get();
            // Halving a denormal may have rounded it to another plane, which does not meet the others.
            if (ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*planes[0], *planes[1], *planes[2]) == 0) {
                return;
            }
            // Asked before the next replacement, or not.
            if (n == 1 || random.OneIn(2)) {
                ASSERT_TRUE(HasNumbers(*f.m_Point, MadeAtOnce(planes)));
            }
        }
    });
}

TEST(LazyRepresentation, NoNumbersWhereMakingThemOverflows)
{
    const Fixture f(Huge);
    ASSERT_TRUE(f.m_IsValid);
    ASSERT_TRUE(HaveExactIntegers(f.GetTriple()));
    EXPECT_EQ(CacheOf(*f.m_Point), nullptr);
    EXPECT_EQ(CacheOf(*f.m_Point), nullptr);
    const PointOwner copy = CopyOf(*f.m_Point);
    EXPECT_EQ(CacheOf(*copy), nullptr);
}

#if ZUL_HAS_SSE2
TEST(LazyRepresentation, TheFirstOneToAskMayComeWithAnyEnvironment)
{
    Random random(63'005);
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        const Fixture f(random.PlaneTriple(Regime::Easy));
        ASSERT_TRUE(f.m_IsValid);
        const auto expected = MadeAtOnce(f.GetTriple());
        const Numbers* kept = nullptr;
        EXPECT_EQ(ZULTest::RunUnder(word, [&] { kept = CacheOf(*f.m_Point); }), word);
        EXPECT_NE(kept, nullptr);
        EXPECT_TRUE(HasNumbers(*f.m_Point, expected));
    }
}
#endif

//---------------------------------------------------------------- threads

/// Each thread asks all points in an order of its own; the first one to reach a point makes its numbers.
TEST(LazyRepresentation, EightThreadsAskForTheFirstTime)
{
    constexpr std::size_t nbThreads = 8;
    constexpr std::size_t nbPoints = 400;
    Random random(63'006);
    std::vector<Fixture> points;
    std::vector<std::optional<Numbers>> expected;
    while (points.size() < nbPoints) {
        Equations equations = random.PlaneTriple(random.OneIn(5) ? Regime::Huge : Regime::Easy);
        if (random.OneIn(2)) {
            for (Plane4& equation : equations) {
                equation = random.Plane(Regime::Degenerate);
            }
        }
        const Silence silence;
        Fixture f(equations);
        if (f.m_IsValid) {
            expected.push_back(MadeAtOnce(f.GetTriple()));
            points.push_back(std::move(f));
        }
    }
    std::atomic<std::size_t> nbReady{0};
    std::atomic<std::size_t> nbWrong{0};
    const auto ask = [&](std::size_t thread) {
        ++nbReady;
        while (nbReady.load() < nbThreads) {
            std::this_thread::yield();
        }
        for (std::size_t n = 0; n < nbPoints; ++n) {
            // Pairs of threads go the same way at the same time.
            const std::size_t i = (n + thread / 2 * (nbPoints / 4)) % nbPoints;
            const ZULMRSBSP3PlanesPoint& point = *points[i].m_Point;
            const PointOwner copy = thread % 3 == 0 ? CopyOf(point) : nullptr;
            nbWrong += HasNumbers(copy != nullptr ? *copy : point, expected[i]) ? 0 : 1;
            nbWrong += ZULMRSBSPPredicates::IsPointInFrontOfPlane(*points[i].m_Planes[0], point) ==
                               ZULMRSExtendedUndetermined
                           ? 0
                           : 1;
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < nbThreads; ++i) {
        threads.emplace_back(ask, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nbWrong.load(), 0U);
}
}  // namespace
