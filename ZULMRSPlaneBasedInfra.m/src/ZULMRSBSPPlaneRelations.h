#ifndef ZULMRSBSPPlaneRelations_h
#define ZULMRSBSPPlaneRelations_h

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

#include "ZULMRSBSPEquation.h"
#include "ZULMRSBSPFilter.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPPlaneRows.h"
#include "ZULMRSBSPSign.h"
#include "ZULMRSBSPSignKernels.h"
#include "ZULMRSBSPStages.h"

/// How two or three equations relate. Everything here stands inside a ZULExpFloatScope.
namespace ZULMRSBSPPlaneRelations
{
inline bool AreCartesian(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    return ZULMRSBSPIsCartesian(p) && ZULMRSBSPIsCartesian(q);
}

//---------------------------------------------------------------- from the integers that planes keep

// These need no floating-point scope.

inline ZULMRSBSPSign DeterminantOfNormalsByIntegers(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                                    const ZULMRSBSPPlane& p3)
{
    const ZULMRSBSPIntegerForm* p = ZULMRSBSPDirectReads::ExactIntegers(&p1);
    const ZULMRSBSPIntegerForm* q = ZULMRSBSPDirectReads::ExactIntegers(&p2);
    const ZULMRSBSPIntegerForm* r = ZULMRSBSPDirectReads::ExactIntegers(&p3);
    if (p == nullptr || q == nullptr || r == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact,
                                    ZULMRSBSPIntegerForms::DeterminantOfNormals(*p, *q, *r));
}

/// The columns of the minors that are all zero where normals, or equations, are proportional.
constexpr std::array<std::array<std::size_t, 2>, 3> ColumnsOfNormals = {{{0, 1}, {0, 2}, {1, 2}}};
constexpr std::array<std::array<std::size_t, 2>, 6> ColumnsOfEquations = {
    {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 2}, {1, 3}}};

/// P_i Q_j - P_j Q_i of two planes, or of two points.
inline ZULMRSBSPSign MinorByIntegers(const ZULMRSBSPIntegerForm& p, const ZULMRSBSPIntegerForm& q,
                                     std::size_t i, std::size_t j)
{
    return ZULMRSBSPStages::Counted(ZULMRSBSPStages::StageOfIntegers(p.IsExact() && q.IsExact()),
                                    ZULMRSBSPIntegerForms::Minor(p, q, i, j));
}

/// The first minor that is not zero, or not certainly; zero when there is none.
template <class Columns>
ZULMRSBSPSign FirstMinor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, const Columns& columns)
{
    const ZULMRSBSPIntegerForm* a = ZULMRSBSPDirectReads::Integers(p);
    const ZULMRSBSPIntegerForm* b = ZULMRSBSPDirectReads::Integers(q);
    if (a == nullptr || b == nullptr) {
        return ZULMRSBSPSign::Undecided();
    }
    for (const auto& [i, j] : columns) {
        const ZULMRSBSPSign minor = MinorByIntegers(*a, *b, i, j);
        if (!minor.IsZero()) {
            return minor;
        }
    }
    return ZULMRSBSPSign::Zero();
}

//---------------------------------------------------------------- three normals

template <class Number>
ZULMRSBSPSign EvaluateNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2, const ZULMRSBSPPlane& p3)
{
    const ZULMRSBSPEquation<Number> p(p1);
    const ZULMRSBSPEquation<Number> q(p2);
    const ZULMRSBSPEquation<Number> r(p3);
    if (!p || !q || !r) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPStages::SignOfDeep(ZULMRSBSPFormulas::Determinant3x3<Number>(
        {p[0], p[1], p[2]}, {q[0], q[1], q[2]}, {r[0], r[1], r[2]}));
}

inline ZULMRSBSPSign FilterNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                   const ZULMRSBSPPlane& p3)
{
    return ZULMRSBSPStages::Run<ZULExpDynamic>([&] { return EvaluateNormals<ZULExpDynamic>(p1, p2, p3); });
}
inline ZULMRSBSPSign NormalsByRows(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                   const ZULMRSBSPPlane& p3)
{
    return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact,
                                    ZULMRSBSPPlaneRows::DeterminantOfNormals(p1, p2, p3));
}
inline ZULMRSBSPSign IntervalNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                     const ZULMRSBSPPlane& p3)
{
    return ZULMRSBSPStages::RunChecked<ZULExpInterval>(
        [&] { return EvaluateNormals<ZULExpInterval>(p1, p2, p3); });
}
inline ZULMRSBSPSign ExactNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                  const ZULMRSBSPPlane& p3)
{
    return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(
        [&] { return EvaluateNormals<ZULExpFloatRingExtensionTS>(p1, p2, p3); });
}

/// The normal of a plane known to be Cartesian, coefficient by coefficient.
inline std::array<double, 3> CartesianNormal(const ZULMRSBSPPlane& plane)
{
    if (const std::array<double, 4>* coords = ZULMRSBSPDirectReads::Coords(plane)) [[likely]] {
        return {(*coords)[0], (*coords)[1], (*coords)[2]};
    }
    return {plane.GetDouble(0), plane.GetDouble(1), plane.GetDouble(2)};
}

inline ZULMRSBSPSign DeterminantOfNormals(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                          const ZULMRSBSPPlane& p3)
{
    if (AreCartesian(p1, p2) && ZULMRSBSPIsCartesian(p3)) [[likely]] {
        const std::array<double, 3> p = CartesianNormal(p1);
        const std::array<double, 3> q = CartesianNormal(p2);
        const std::array<double, 3> r = CartesianNormal(p3);
        return ZULMRSBSPKernel<ZULMRSBSPDeterminant3x3Kernel>::Decide(
            {p[0], p[1], p[2], q[0], q[1], q[2], r[0], r[1], r[2]});
    }
    return ZULMRSBSPStages::FirstDecided(
        [&] { return FilterNormals(p1, p2, p3); }, [&] { return NormalsByRows(p1, p2, p3); },
        [&] { return IntervalNormals(p1, p2, p3); }, [&] { return ExactNormals(p1, p2, p3); });
}

//---------------------------------------------------------------- minors of two equations

template <class Number>
ZULMRSBSPSign EvaluateMinor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i, std::size_t j)
{
    const ZULMRSBSPEquation<Number> a(p);
    const ZULMRSBSPEquation<Number> b(q);
    if (!a || !b) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPStages::SignOf(ZULMRSBSPFormulas::Determinant2x2(a[i], a[j], b[i], b[j]));
}

inline ZULMRSBSPSign ShortcutMinor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i,
                                   std::size_t j)
{
    using ZULMRSBSPFilter::FactorSign;
    const ZULMRSBSPEquation<ZULExpDynamic> a(p);
    const ZULMRSBSPEquation<ZULExpDynamic> b(q);
    if (!a || !b) {
        return ZULMRSBSPSign::Undecided();
    }
    return ZULMRSBSPShortcut::SignOfOpenSum(FactorSign(a[i]) * FactorSign(b[j]),
                                            -(FactorSign(a[j]) * FactorSign(b[i])));
}
inline ZULMRSBSPSign FilterMinor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i,
                                 std::size_t j)
{
    return ZULMRSBSPStages::Run<ZULExpDynamic>([&] {
        const ZULMRSBSPSign sign = ShortcutMinor(p, q, i, j);
        return sign.IsDecided() ? sign : EvaluateMinor<ZULExpDynamic>(p, q, i, j);
    });
}
inline ZULMRSBSPSign MinorByRows(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i,
                                 std::size_t j)
{
    return ZULMRSBSPStages::Counted(ZULMRSBSPStage::Exact, ZULMRSBSPPlaneRows::Minor(p, q, i, j));
}
inline ZULMRSBSPSign ExactMinor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i,
                                std::size_t j)
{
    return ZULMRSBSPStages::RunChecked<ZULExpFloatRingExtensionTS>(
        [&] { return EvaluateMinor<ZULExpFloatRingExtensionTS>(p, q, i, j); });
}

/// A coefficient of a plane known to be Cartesian.
inline double Coefficient(const ZULMRSBSPPlane& plane, std::size_t i)
{
    const std::array<double, 4>* coords = ZULMRSBSPDirectReads::Coords(plane);
    return coords != nullptr ? (*coords)[i] : plane.GetDouble(static_cast<int>(i));
}

/// Sign of P_i Q_j - P_j Q_i. Without an interval stage unless both planes are Cartesian.
inline ZULMRSBSPSign Minor(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, bool areCartesian, std::size_t i,
                           std::size_t j)
{
    if (areCartesian) {
        return ZULMRSBSPKernel<ZULMRSBSPDeterminant2x2Kernel>::Decide(
            {Coefficient(p, i), Coefficient(p, j), Coefficient(q, i), Coefficient(q, j)});
    }
    return ZULMRSBSPStages::FirstDecided([&] { return FilterMinor(p, q, i, j); },
                                         [&] { return MinorByRows(p, q, i, j); },
                                         [&] { return ExactMinor(p, q, i, j); });
}

inline bool AreParallel(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const bool areCartesian = AreCartesian(p, q);
    if (!Minor(p, q, areCartesian, 0, 1).IsZero() || !Minor(p, q, areCartesian, 0, 2).IsZero()) {
        return false;
    }
    // For two Cartesian planes the last minor is taken with its columns exchanged.
    return (areCartesian ? Minor(p, q, true, 2, 1) : Minor(p, q, false, 1, 2)).IsZero();
}

/// Eight minors of the cyclic columns; two of the six different ones come twice, in opposite order.
inline bool AreCoincident(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const bool areCartesian = AreCartesian(p, q);
    for (std::size_t step = 1; step <= 2; ++step) {
        for (std::size_t i = 0; i < 4; ++i) {
            if (!Minor(p, q, areCartesian, i, (i + step) % 4).IsZero()) {
                return false;
            }
        }
    }
    return true;
}

//---------------------------------------------------------------- orientation of coincident planes

/// Both nonzero (a NaN is), and not of one sign.
inline bool AreOpposite(double x, double y)
{
    const bool bothPositive = x > 0.0 && y > 0.0;
    const bool bothNegative = x < 0.0 && y < 0.0;
    return x != 0.0 && y != 0.0 && !bothPositive && !bothNegative;
}

template <class Number>
ZULMRSBSPSign CoefficientSign(const Number& x)
{
    return ZULMRSBSPStages::SignOf(x);
}
inline ZULMRSBSPSign CoefficientSign(const ZULExpDynamic& x)
{
    return ZULMRSBSPFilter::FactorSign(x);
}

template <class Number>
ZULMRSBSPSign CoefficientProduct(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q, std::size_t i)
{
    return ZULMRSBSPStages::Run<Number>([&] {
        const ZULMRSBSPEquation<Number> a(p);
        const ZULMRSBSPEquation<Number> b(q);
        return a && b ? CoefficientSign(a[i]) * CoefficientSign(b[i]) : ZULMRSBSPSign::Undecided();
    });
}

/// A product that stays undecided counts as not negative.
inline bool HaveSameOrientation(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const bool areCartesian = AreCartesian(p, q);
    for (std::size_t i = 0; i < 4; ++i) {
        const bool opposite =
            areCartesian ? AreOpposite(p.GetDouble(static_cast<int>(i)), q.GetDouble(static_cast<int>(i)))
                         : ZULMRSBSPStages::FirstDecided(
                               [&] { return CoefficientProduct<ZULExpDynamic>(p, q, i); },
                               [&] { return CoefficientProduct<ZULExpInterval>(p, q, i); },
                               [&] { return CoefficientProduct<ZULExpFloatRingExtensionTS>(p, q, i); })
                               .IsNegative();
        if (opposite) {
            return false;
        }
    }
    return true;
}

//---------------------------------------------------------------- validity

/// What one stage knows of "the normal is not zero".
enum class Validity { Valid, Invalid, Open };

template <class Number>
Validity ValidityOfNormal(const std::array<Number, 4>& equation)
{
    const std::array<ZULMRSBSPSign, 3> signs = {CoefficientSign(equation[0]), CoefficientSign(equation[1]),
                                                CoefficientSign(equation[2])};
    if (std::any_of(signs.begin(), signs.end(), [](ZULMRSBSPSign s) { return !s.IsDecided(); })) {
        return Validity::Open;
    }
    const bool isZero = std::all_of(signs.begin(), signs.end(), [](ZULMRSBSPSign s) { return s.IsZero(); });
    return isZero ? Validity::Invalid : Validity::Valid;
}

/// An equation that is missing counts as zero. Read through the plane's own accessors, whose answer is the
/// point here; the library's three-points plane would answer with these numbers, and with none where the
/// intervals met a fault.
template <class Number>
Validity ValidityIn(const ZULMRSBSPPlane& plane)
{
    if (!std::is_same_v<Number, ZULExpDynamic> && ZULMRSBSPDirectReads::Is3PointsPlane(plane)) {
        const ZULMRSBSPEnvironment<Number> environment;
        const ZULMRSBSPEquation<Number> equation(plane);
        auto validity = static_cast<int>(ValidityOfNormal(*equation));
        ZULExpProcessor::Pin(validity);
        const bool isFaulted =
            std::is_same_v<Number, ZULExpInterval> && (_statusfp() & ZULExpFloatFault) != 0;
        return isFaulted ? Validity::Invalid : static_cast<Validity>(validity);
    }
    const ZULMRSBSPQuadrupleHolder<Number> equation(plane.GetStdEquationTpl<Number>());
    return equation ? ValidityOfNormal(*equation) : Validity::Invalid;
}

inline bool IsValid(const ZULMRSBSPPlane& plane)
{
    if (ZULMRSBSPIsCartesian(plane)) {
        const std::array<double, 4> e = ZULMRSBSPCoords(plane);
        return e[0] != 0.0 || e[1] != 0.0 || e[2] != 0.0;
    }
    Validity validity = ValidityIn<ZULExpDynamic>(plane);
    if (validity == Validity::Open) {
        validity = ValidityIn<ZULExpInterval>(plane);
    }
    if (validity == Validity::Open) {
        validity = ValidityIn<ZULExpFloatRingExtensionTS>(plane);
    }
    return validity == Validity::Valid;
}
}  // namespace ZULMRSBSPPlaneRelations

#endif
