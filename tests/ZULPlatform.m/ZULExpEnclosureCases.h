#ifndef ZULExpEnclosureCases_h
#define ZULExpEnclosureCases_h

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "ZULExpInterval.h"
#include "ZULExpReference.h"
#include "ZULExpRounding.h"

// Every interval operation against exact numbers: the result encloses, and no double fits closer. Each check
// returns an empty text, or the first case that fails.
namespace ZULExpEnclosureCases
{
using ZULExpReference::Compare;
using ZULExpReference::Exact;
using ZULExpReference::Random;

struct Bounds {
    double m_Lower;
    double m_Upper;
};

enum Operation { Addition, Subtraction, Multiplication, Division };

/// Finite: a point, some units in the last place wide, or anything between two numbers.
inline Bounds RandomBounds(Random& random)
{
    const auto scale = static_cast<ZULExpReference::Scale>(random() % ZULExpReference::NbScales);
    const double x = ZULExpReference::RandomDouble(random, scale);
    double y = x;
    const std::uint64_t kind = random() % 4;
    if (kind == 1) {
        const std::uint64_t steps = 1 + random() % 3;
        for (std::uint64_t i = 0; i < steps; ++i) {
            y = std::nextafter(y, std::numeric_limits<double>::max());
        }
    } else if (kind > 1) {
        y = ZULExpReference::RandomDouble(random, kind == 2 ? scale : ZULExpReference::Mixed);
    }
    return {std::min(x, y), std::max(x, y)};
}

inline ZULExpInterval Compute(Operation operation, const ZULExpInterval& x, const ZULExpInterval& y)
{
    switch (operation) {
        case Addition:
            return x + y;
        case Subtraction:
            return x - y;
        case Multiplication:
            return x * y;
        default:
            return x / y;
    }
}

/// A fraction; the denominator is positive. Without one it is the numerator alone.
struct Fraction {
    Exact m_Numerator;
    Exact m_Denominator;
    bool m_IsWhole = false;
};

inline Fraction ComputeExactly(Operation operation, double x, double y)
{
    switch (operation) {
        case Addition:
            return {Exact(x) + Exact(y), {}, true};
        case Subtraction:
            return {Exact(x) - Exact(y), {}, true};
        case Multiplication:
            return {Exact(x) * Exact(y), {}, true};
        default:
            return y > 0.0 ? Fraction{Exact(x), Exact(y), false} : Fraction{-Exact(x), -Exact(y), false};
    }
}

inline int CompareWithFraction(double x, const Fraction& y)
{
    if (std::isinf(x) || y.m_IsWhole) {
        return Compare(x, y.m_Numerator);
    }
    return Compare(Exact(x) * y.m_Denominator, y.m_Numerator);
}

inline std::string Describe(Operation operation, Bounds x, Bounds y, const ZULExpInterval& result)
{
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "operation %d: [%a, %a] and [%a, %a] give [%a, %a]", operation,
                  x.m_Lower, x.m_Upper, y.m_Lower, y.m_Upper, result.LowerBound(), result.UpperBound());
    return text.data();
}

/// True when the result is the narrowest interval that holds the four combinations of bounds.
inline bool IsNarrowestEnclosure(Operation operation, Bounds x, Bounds y, const ZULExpInterval& result)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double closerLower = std::nextafter(result.LowerBound(), infinity);
    const double closerUpper = std::nextafter(result.UpperBound(), -infinity);
    bool isLowerTight = false;
    bool isUpperTight = false;
    const int nbX = x.m_Lower == x.m_Upper ? 1 : 2;
    const int nbY = y.m_Lower == y.m_Upper ? 1 : 2;
    for (int i = 0; i < nbX; ++i) {
        for (int j = 0; j < nbY; ++j) {
            const Fraction exact =
                ComputeExactly(operation, i == 0 ? x.m_Lower : x.m_Upper, j == 0 ? y.m_Lower : y.m_Upper);
            if (CompareWithFraction(result.LowerBound(), exact) > 0 ||
                CompareWithFraction(result.UpperBound(), exact) < 0) {
                return false;
            }
            isLowerTight = isLowerTight || CompareWithFraction(closerLower, exact) > 0;
            isUpperTight = isUpperTight || CompareWithFraction(closerUpper, exact) < 0;
        }
    }
    return isLowerTight && isUpperTight;
}

inline bool IsWholeLine(const ZULExpInterval& x)
{
    return std::isinf(x.LowerBound()) && x.LowerBound() < 0.0 && std::isinf(x.UpperBound()) &&
           x.UpperBound() > 0.0 && x.Sign() == ZULExpSignUncertain;
}

inline std::string CheckOperation(Operation operation, std::uint64_t seed, int nbCases)
{
    Random random(seed);
    for (int i = 0; i < nbCases; ++i) {
        const Bounds x = RandomBounds(random);
        const Bounds y = RandomBounds(random);
        ZULExpInterval result;
        {
            const ZULExpRounding rounding;
            result = Compute(operation, ZULExpInterval(x.m_Lower, x.m_Upper),
                             ZULExpInterval(y.m_Lower, y.m_Upper));
        }
        const bool isByZero = operation == Division && y.m_Lower <= 0.0 && y.m_Upper >= 0.0;
        if (isByZero ? !IsWholeLine(result) : !IsNarrowestEnclosure(operation, x, y, result)) {
            return Describe(operation, x, y, result);
        }
    }
    return {};
}

template <class T>
T Determinant(const std::array<T, 9>& a)
{
    return a[0] * (a[4] * a[8] - a[5] * a[7]) - a[1] * (a[3] * a[8] - a[5] * a[6]) +
           a[2] * (a[3] * a[7] - a[4] * a[6]);
}

/// Whole formulas, of which a compiler sees more at once: determinants, easy and nearly or exactly singular.
inline std::string CheckDeterminants(std::uint64_t seed, int nbCases)
{
    Random random(seed);
    for (int i = 0; i < nbCases; ++i) {
        std::array<double, 9> a{};
        for (double& x : a) {
            x = ZULExpReference::RandomDouble(
                random, i % 2 == 0 ? ZULExpReference::Easy : ZULExpReference::NearDegenerate);
        }
        for (std::size_t k = 0; k < 3 && i % 4 != 0; ++k) {
            a[6 + k] = a[k] + a[3 + k];
        }
        std::array<ZULExpInterval, 9> intervals;
        std::array<Exact, 9> numbers;
        for (std::size_t k = 0; k < 9; ++k) {
            intervals[k] = a[k];
            numbers[k] = Exact(a[k]);
        }
        ZULExpInterval result;
        {
            const ZULExpRounding rounding;
            result = Determinant(intervals);
        }
        const Exact exact = Determinant(numbers);
        if (Compare(result.LowerBound(), exact) > 0 || Compare(result.UpperBound(), exact) < 0 ||
            (result.Sign() != ZULExpSignUncertain && result.Sign() != exact.Sign())) {
            return "determinant " + std::to_string(i);
        }
    }
    return {};
}

/// What a compiler could compute beforehand, rounding to nearest.
inline std::string CheckConstants()
{
    const ZULExpRounding rounding;
    const ZULExpInterval third = ZULExpInterval(1.0) / ZULExpInterval(3.0);
    const ZULExpInterval tenth = ZULExpInterval(1.0) / ZULExpInterval(10.0);
    const ZULExpInterval sum = tenth + third;
    const ZULExpInterval square = ZULExpInterval(0.1) * ZULExpInterval(0.1);
    const ZULExpInterval difference = ZULExpInterval(1.0) - ZULExpInterval(1e-30);
    for (const ZULExpInterval& x : {third, tenth, sum, square, difference}) {
        if (!(x.LowerBound() < x.UpperBound())) {
            return "a constant was not rounded outwards";
        }
    }
    const ZULExpInterval zero = ZULExpInterval(0.5) * ZULExpInterval(3.0) - ZULExpInterval(1.5);
    return zero.Sign() == ZULExpSignZero ? std::string() : "exact constants gave more than a point";
}

inline std::string CheckAll(int nbCases)
{
    std::string failure = CheckConstants();
    for (const Operation operation : {Addition, Subtraction, Multiplication, Division}) {
        failure = failure.empty() ? CheckOperation(operation, 20 + operation, nbCases) : failure;
    }
    return failure.empty() ? CheckDeterminants(30, nbCases / 5) : failure;
}
}  // namespace ZULExpEnclosureCases

#endif
