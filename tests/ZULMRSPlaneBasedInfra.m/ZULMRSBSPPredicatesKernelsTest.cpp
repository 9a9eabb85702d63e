#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"

// The kernels on plain doubles, held against exact arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

/// What a kernel is: its exported function, its stages, its exact value and its random input.
struct Determinant2x2Case {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPDeterminant2x2Kernel>;
    static int Answer(const Stages::Inputs& x) { return SignOf2x2Determinant(x[0], x[1], x[2], x[3]); }
    static int Exact(const Stages::Inputs& x)
    {
        const auto e = ToDyadic(x);
        return (e[0] * e[3] - e[1] * e[2]).Sign();
    }
    static Stages::Inputs Degenerate(Random& random)
    {
        const double a = random.Integer(-100, 100);
        const double b = random.Integer(-100, 100);
        const double factor = random.Integer(-8, 8);
        return {a, b, a * factor, b * factor};
    }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        const int row = random.Integer(range.first, range.second);
        const int other = random.Integer(range.first, range.second);
        x = {std::ldexp(x[0], row), std::ldexp(x[1], row), std::ldexp(x[2], other), std::ldexp(x[3], other)};
    }
};

template <class Inputs>
void ScaleTogether(Random& random, Inputs& x, std::pair<int, int> range)
{
    random.ScaleByPowerOfTwo(x, range.first, range.second);
}

/// Points A, B, C, D with D - C along, or across, B - A.
std::array<double, 8> TwoVectors(Random& random, bool isAcross)
{
    std::array<double, 8> x{};
    for (double& number : x) {
        number = random.Integer(-50, 50);
    }
    const double factor = random.Integer(-8, 8);
    const double u = x[2] - x[0];
    const double v = x[3] - x[1];
    x[6] = x[4] + factor * (isAcross ? -v : u);
    x[7] = x[5] + factor * (isAcross ? u : v);
    return x;
}

struct DifferenceDeterminantCase {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPDifferenceDeterminantKernel>;
    static int Answer(const Stages::Inputs& x)
    {
        return SignOf2x2DiffDeterminant(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7]);
    }
    static int Exact(const Stages::Inputs& x)
    {
        const auto e = ToDyadic(x);
        return ((e[2] - e[0]) * (e[7] - e[5]) - (e[3] - e[1]) * (e[6] - e[4])).Sign();
    }
    static Stages::Inputs Degenerate(Random& random) { return TwoVectors(random, false); }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        ScaleTogether(random, x, range);
    }
};

struct DifferenceDotProductCase {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPDifferenceDotProductKernel>;
    static int Answer(const Stages::Inputs& x)
    {
        return SignOf2x2DotProduct(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7]);
    }
    static int Exact(const Stages::Inputs& x)
    {
        const auto e = ToDyadic(x);
        return ((e[2] - e[0]) * (e[6] - e[4]) + (e[3] - e[1]) * (e[7] - e[5])).Sign();
    }
    static Stages::Inputs Degenerate(Random& random) { return TwoVectors(random, true); }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        ScaleTogether(random, x, range);
    }
};

struct DotProductCase {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPDotProductKernel>;
    static int Answer(const Stages::Inputs& x)
    {
        return SignOf3DimDotProduct({x[0], x[1], x[2]}, {x[3], x[4], x[5]});
    }
    static int Exact(const Stages::Inputs& x)
    {
        const auto e = ToDyadic(x);
        return (e[0] * e[3] + e[1] * e[4] + e[2] * e[5]).Sign();
    }
    static Stages::Inputs Degenerate(Random& random)
    {
        const Point3 u = SmallVector(random, 50);
        const Point3 w = SmallVector(random, 50);
        return {u[0],
                u[1],
                u[2],
                u[1] * w[2] - u[2] * w[1],
                u[2] * w[0] - u[0] * w[2],
                u[0] * w[1] - u[1] * w[0]};
    }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        ScaleTogether(random, x, range);
    }
};

struct EquationCase {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPEquationKernel>;
    static int Answer(const Stages::Inputs& x) { return Stages::Sign(x); }
    static int Exact(const Stages::Inputs& x)
    {
        return DyadicSide(ToDyadic(Plane4{x[0], x[1], x[2], x[3]}), Point3{x[4], x[5], x[6]});
    }
    static Stages::Inputs Degenerate(Random& random)
    {
        const Point3 n = SmallVector(random, 50);
        const Point3 p = SmallVector(random, 50);
        return {n[0], n[1], n[2], -(n[0] * p[0] + n[1] * p[1] + n[2] * p[2]), p[0], p[1], p[2]};
    }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        // The whole equation; the point stays.
        const int exponent = random.Integer(range.first, range.second);
        for (std::size_t i = 0; i < 4; ++i) {
            x[i] = std::ldexp(x[i], exponent);
        }
    }
};

struct Determinant3x3Case {
    using Stages = ZULMRSBSPKernel<ZULMRSBSPDeterminant3x3Kernel>;
    static int Answer(const Stages::Inputs& x)
    {
        return SignOf3x3Determinant(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7], x[8]);
    }
    static int Exact(const Stages::Inputs& x)
    {
        const std::array<DyadicPoint, 3> rows = {ToDyadic(Point3{x[0], x[1], x[2]}),
                                                 ToDyadic(Point3{x[3], x[4], x[5]}),
                                                 ToDyadic(Point3{x[6], x[7], x[8]})};
        return DyadicDeterminant(rows, 0, 1, 2).Sign();
    }
    static Stages::Inputs Degenerate(Random& random)
    {
        std::array<Point3, 3> rows = {SmallVector(random, 50), SmallVector(random, 50), Point3{}};
        const int s = random.Integer(-8, 8);
        const int t = random.Integer(-8, 8);
        for (std::size_t i = 0; i < 3; ++i) {
            rows[2][i] = s * rows[0][i] + t * rows[1][i];
        }
        std::swap(rows[2], rows[static_cast<std::size_t>(random.Integer(0, 2))]);
        return {rows[0][0], rows[0][1], rows[0][2], rows[1][0], rows[1][1],
                rows[1][2], rows[2][0], rows[2][1], rows[2][2]};
    }
    static void Scale(Random& random, Stages::Inputs& x, std::pair<int, int> range)
    {
        for (std::size_t row = 0; row < 3; ++row) {
            const int exponent = random.Integer(range.first, range.second);
            for (std::size_t i = 0; i < 3; ++i) {
                x[3 * row + i] = std::ldexp(x[3 * row + i], exponent);
            }
        }
    }
};

template <class Case>
typename Case::Stages::Inputs RandomInputs(Random& random, Regime regime, Position position)
{
    typename Case::Stages::Inputs inputs{};
    if (position == Position::General) {
        for (double& input : inputs) {
            input = random.Number(regime);
        }
        return inputs;
    }
    inputs = Case::Degenerate(random);
    Case::Scale(random, inputs, ScaleOf(regime));
    Blur(random, position, inputs);
    return inputs;
}

template <class Inputs>
std::string Text(const Inputs& inputs)
{
    std::ostringstream text;
    text << std::hexfloat;
    for (const double input : inputs) {
        text << input << ' ';
    }
    return text.str();
}

template <class Case>
class ZULMRSBSPKernelTest : public testing::Test
{
};
using AllCases = testing::Types<Determinant2x2Case, DifferenceDeterminantCase, DifferenceDotProductCase,
                                DotProductCase, EquationCase, Determinant3x3Case>;
TYPED_TEST_SUITE(ZULMRSBSPKernelTest, AllCases);

TYPED_TEST(ZULMRSBSPKernelTest, AnswersTheExactSignInEveryRegime)
{
    Random random(20'011);
    ForAllKinds(CasesPerPredicate, [&random](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto inputs = RandomInputs<TypeParam>(random, regime, position);
            ASSERT_EQ(TypeParam::Answer(inputs), TypeParam::Exact(inputs))
                << NameOf(regime) << ' ' << Text(inputs);
        }
    });
}

TYPED_TEST(ZULMRSBSPKernelTest, EveryStageIsRightWhereItDecides)
{
    using Stages = typename TypeParam::Stages;
    Random random(20'012);
    ForAllKinds(CasesPerPredicate / 4, [&random](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto inputs = RandomInputs<TypeParam>(random, regime, position);
            const int expected = TypeParam::Exact(inputs);
            const ZULExpFloatScope scope;
            const ZULMRSBSPSign shortcut = Stages::Shortcut(inputs);
            ASSERT_TRUE(!shortcut.IsDecided() || shortcut.ToKernelResult() == expected) << Text(inputs);
            _clearfp();
            const ZULMRSBSPSign filter = Stages::Filter(inputs);
            ASSERT_TRUE(!filter.IsDecided() || filter.ToKernelResult() == expected) << Text(inputs);
            const ZULMRSBSPSign shortExact = Stages::ByIntegers(inputs);
            ASSERT_TRUE(!shortExact.IsDecided() || shortExact.ToKernelResult() == expected) << Text(inputs);
            const ZULMRSBSPSign interval = Stages::Interval(inputs);
            ASSERT_TRUE(!interval.IsDecided() || interval.ToKernelResult() == expected) << Text(inputs);
            ASSERT_EQ(Stages::Exact(inputs).ToKernelResult(), expected) << Text(inputs);
        }
    });
}

#if ZUL_HAS_SSE2
TYPED_TEST(ZULMRSBSPKernelTest, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    Random random(20'013);
    ForAllKinds(20'000 / ZUL_TEST_CASES_DIVISOR,
                [&random](Regime regime, Position position, std::size_t count) {
                    for (std::size_t i = 0; i < count; ++i) {
                        const auto inputs = RandomInputs<TypeParam>(random, regime, position);
                        const int expected = TypeParam::Exact(inputs);
                        for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
                            int answer = 99;
                            const auto left = RunUnder(word, [&] { answer = TypeParam::Answer(inputs); });
                            ASSERT_EQ(answer, expected) << std::hex << word << ' ' << Text(inputs);
                            ASSERT_EQ(left, word);
                        }
                    }
                });
}
#endif

TYPED_TEST(ZULMRSBSPKernelTest, AllZeroInputIsZeroAndRaisesNothing)
{
    const ZULExpFloatScope scope;
    EXPECT_EQ(TypeParam::Answer({}), 0);
    EXPECT_EQ(_statusfp(), 0U);
}

TYPED_TEST(ZULMRSBSPKernelTest, InputThatIsNotFiniteNeitherCrashesNorHangs)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    Random random(20'014);
    for (const double bad : {infinity, -infinity, notANumber, -notANumber}) {
        for (int i = 0; i < 2'000; ++i) {
            auto inputs = RandomInputs<TypeParam>(random, Regime::Mixed, Position::General);
            for (double& input : inputs) {
                input = random.OneIn(3) ? bad : input;
            }
            const int answer = TypeParam::Answer(inputs);
            ASSERT_TRUE(answer >= -1 && answer <= 2) << answer;
        }
        typename TypeParam::Stages::Inputs inputs;
        inputs.fill(bad);
        const int answer = TypeParam::Answer(inputs);
        EXPECT_TRUE(answer >= -1 && answer <= 2) << answer;
    }
}

TEST(ZULMRSBSPKernelEdges, EqualProductsAreZero)
{
    EXPECT_EQ(SignOf2x2Determinant(1.0, 1.0, 1.0, 1.0), 0);
}

TEST(ZULMRSBSPKernelEdges, ProductsNearTheLargestNumberKeepTheirSign)
{
    const double large = 1.3e154;
    EXPECT_EQ(SignOf2x2Determinant(large, large, large, large), 0);
    EXPECT_EQ(SignOf2x2Determinant(large, large, large, std::nextafter(large, 0.0)), -1);
    EXPECT_EQ(SignOf2x2Determinant(large, large, std::nextafter(large, 0.0), large), 1);
    const double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(SignOf2x2Determinant(largest, largest, largest, largest), 0);
    EXPECT_EQ(SignOf2x2Determinant(largest, largest, largest, -largest), -1);
}

TEST(ZULMRSBSPKernelEdges, ProductsThatUnderflowKeepTheirSign)
{
    EXPECT_EQ(SignOf2x2Determinant(1e-200, 1e-200, 1e-200, 1e-200), 0);
    EXPECT_EQ(SignOf2x2Determinant(1e-200, 1e-200, std::nextafter(1e-200, 0.0), 1e-200), 1);
    const double smallest = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(SignOf2x2Determinant(smallest, smallest, smallest, 2 * smallest), 1);
    EXPECT_EQ(SignOf3x3Determinant(smallest, smallest, 0, smallest, 2 * smallest, 0, 0, 0, smallest), 1);
    EXPECT_EQ(SignOf3DimDotProduct({smallest, -smallest, 0.0}, {smallest, smallest, 0.0}), 0);
    EXPECT_EQ(SignOf2x2DotProduct(0, 0, smallest, smallest, 0, 0, smallest, -smallest), 0);
    EXPECT_EQ(SignOf2x2DiffDeterminant(0, 0, smallest, smallest, 0, 0, smallest, smallest), 0);
}

TEST(ZULMRSBSPKernelEdges, ConventionsOfTheTwoDimensionalKernels)
{
    // A = (0, 0), B = (1, 0), C = (0, 0), D = (0, 1): counter-clockwise, and perpendicular.
    EXPECT_EQ(SignOf2x2DiffDeterminant(0, 0, 1, 0, 0, 0, 0, 1), 1);
    EXPECT_EQ(SignOf2x2DiffDeterminant(0, 0, 0, 1, 0, 0, 1, 0), -1);
    EXPECT_EQ(SignOf2x2DotProduct(0, 0, 1, 0, 0, 0, 0, 1), 0);
    EXPECT_EQ(SignOf2x2DotProduct(1, 1, 3, 2, 0, 0, 2, 1), 1);
    EXPECT_EQ(SignOf2x2DotProduct(1, 1, 3, 2, 2, 1, 0, 0), -1);
}
}  // namespace
