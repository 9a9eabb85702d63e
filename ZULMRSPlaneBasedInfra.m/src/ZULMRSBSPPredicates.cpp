#include "ZULMRSBSPPredicates.h"

#include <algorithm>

#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPlaneRelations.h"
#include "ZULMRSBSPPointRelations.h"
#include "ZULMRSBSPSignKernels.h"

namespace ZULMRSBSPPredicates
{
namespace
{
/// A decision that has been made inside a floating-point scope, and stays there.
int Settled(int result)
{
    ZULExpProcessor::Pin(result);
    return result;
}
int Settled(ZULMRSBSPSign sign)
{
    return Settled(sign.ToKernelResult());
}

ZULMRSExtendedBool ToSide(int kernelResult)
{
    return ZULMRSBSPSign::FromNumber(kernelResult).ToAnswer();
}

// Apart, so that what comes before needs no frame.
[[gnu::noinline]] ZULMRSExtendedBool SideCarefully(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (ZULMRSBSPOrientation::IsOwnPlane(plane, point)) {
        ZULMRSBSPStageCounters::Count(ZULMRSBSPStage::Shortcut);
        return ZULMRSExtendedUndetermined;
    }
    const ZULMRSBSPSign sign = ZULMRSBSPOrientation::SideByKeptIntegers(plane, point);
    if (sign.IsDecided()) {
        return sign.ToAnswer();
    }
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::AtPoint(plane, point)));
}

/// The answer of a predicate that is true or false, never undetermined.
ZULMRSExtendedBool ToTruth(int isTrue)
{
    return isTrue != 0 ? ZULMRSExtendedTrue : ZULMRSExtendedFalse;
}
}  // namespace

int SignOf2x2Determinant(double a, double b, double c, double d)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf2x2Determinant);
    return ZULMRSBSPKernel<ZULMRSBSPDeterminant2x2Kernel>::Sign({a, b, c, d});
}

int SignOf2x2DiffDeterminant(double x0, double x1, double x2, double x3, double x4, double x5, double x6,
                             double x7)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf2x2DiffDeterminant);
    return ZULMRSBSPKernel<ZULMRSBSPDifferenceDeterminantKernel>::Sign({x0, x1, x2, x3, x4, x5, x6, x7});
}

int SignOf2x2DotProduct(double x0, double x1, double x2, double x3, double x4, double x5, double x6,
                        double x7)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf2x2DotProduct);
    return ZULMRSBSPKernel<ZULMRSBSPDifferenceDotProductKernel>::Sign({x0, x1, x2, x3, x4, x5, x6, x7});
}

int SignOf3DimDotProduct(const std::array<double, 3>& u, const std::array<double, 3>& v)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf3DimDotProduct);
    return ZULMRSBSPKernel<ZULMRSBSPDotProductKernel>::Sign({u[0], u[1], u[2], v[0], v[1], v[2]});
}

int SignOf3x3Determinant(double a1, double a2, double a3, double a4, double a5, double a6, double a7,
                         double a8, double a9)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf3x3Determinant);
    return ZULMRSBSPKernel<ZULMRSBSPDeterminant3x3Kernel>::Sign({a1, a2, a3, a4, a5, a6, a7, a8, a9});
}

int SignOf3PlanesDeterminant(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2, const ZULMRSBSPPlane& p3)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOf3PlanesDeterminant);
    const ZULMRSBSPSign sign = ZULMRSBSPPlaneRelations::DeterminantOfNormalsByIntegers(p1, p2, p3);
    if (sign.IsDecided()) {
        return sign.ToKernelResult();
    }
    const ZULExpFloatScope scope;
    return Settled(ZULMRSBSPPlaneRelations::DeterminantOfNormals(p1, p2, p3));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const std::array<double, 4>& point)
{
    return IsPointInFrontOfPlane(plane, ZULMathPoint(point[0], point[1], point[2]));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::IsPointInFrontOfPlane);
    const ZULMRSBSPSign sign = ZULMRSBSPOrientation::AtCoordinatesByIntegers(plane, point);
    if (sign.IsDecided()) {
        return sign.ToAnswer();
    }
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::AtCoordinates(plane, point)));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::IsPointInFrontOfPlane);
    // A three-planes point lies on its own planes by its integers too, so these may come before identities.
    if (ZULMRSBSPDirectReads::Is3PlanesPoint(point)) [[likely]] {
        const ZULMRSBSPSign sign = ZULMRSBSPOrientation::ByIntegers(plane, point);
        if (sign.IsDecided()) {
            return sign.ToAnswer();
        }
    }
    return SideCarefully(plane, point);
}

ZULMRSExtendedBool IsPointInFrontOfPlaneFast(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::FastAtCoordinates(plane, point)));
}

ZULMRSExtendedBool IsPointInFrontOfPlaneFast(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (ZULMRSBSPOrientation::IsOwnPlane(plane, point)) {
        return ZULMRSExtendedUndetermined;
    }
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::FastAtPoint(plane, point)));
}

ZULMRSExtendedBool ArePlanesParallel(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::ArePlanesParallel);
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULMRSBSPSign minors =
        ZULMRSBSPPlaneRelations::FirstMinor(p, q, ZULMRSBSPPlaneRelations::ColumnsOfNormals);
    if (minors.IsDecided()) {
        return ToTruth(static_cast<int>(minors.IsZero()));
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::AreParallel(p, q))));
}

ZULMRSExtendedBool ArePlanesCoincident(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::ArePlanesCoincident);
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULMRSBSPSign minors =
        ZULMRSBSPPlaneRelations::FirstMinor(p, q, ZULMRSBSPPlaneRelations::ColumnsOfEquations);
    if (minors.IsDecided()) {
        return ToTruth(static_cast<int>(minors.IsZero()));
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::AreCoincident(p, q))));
}

ZULMRSExtendedBool CoincidentOrientation(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::CoincidentOrientation);
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::HaveSameOrientation(p, q))));
}

ZULMRSExtendedBool IsPlaneValid(const ZULMRSBSPPlane& plane)
{
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::IsValid(plane))));
}

ZULMRSExtendedBool ArePointsEqual(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::ArePointsEqual);
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULMRSBSPSign distance = ZULMRSBSPPointRelations::DistanceByIntegers(p, q);
    if (distance.IsDecided()) {
        return ToTruth(static_cast<int>(distance.IsZero()));
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPointRelations::DistanceInStages(p, q).IsZero())));
}

ZULMRSExtendedBool LexicographicOrder(ZULMRSBSPPoint& p, ZULMRSBSPPoint& q)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::LexicographicOrder);
    if (&p == &q) {
        return ZULMRSExtendedFalse;
    }
    const ZULMRSBSPSign order = ZULMRSBSPPointRelations::OrderByIntegers(p, q);
    if (order.IsDecided()) {
        return ToTruth(static_cast<int>(order.IsPositive()));
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPointRelations::ComesAfter(p, q))));
}

ZULMRSExtendedBool IsPointValid(const ZULMRSBSPPoint& point)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::IsPointValid);
    if (point.GetP1() == nullptr || point.GetP2() == nullptr || point.GetP3() == nullptr) {
        return ZULMRSExtendedUndetermined;
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPointRelations::HaveMeetingPoint(point))));
}

ZULMRSExtendedBool IsPointOnLine(const ZULMRSBSPLine& line, const ZULMRSBSPPoint& point)
{
    return ToTruth(
        static_cast<int>(IsPointInFrontOfPlane(line.GetP1(), point) == ZULMRSExtendedUndetermined &&
                         IsPointInFrontOfPlane(line.GetP2(), point) == ZULMRSExtendedUndetermined));
}

int SignOfTripleProduct(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2, const ZULMRSBSPPoint& q1,
                        const ZULMRSBSPPoint& q2)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOfTripleProduct);
    const ZULExpFloatScope scope;
    return Settled(ZULMRSBSPPointRelations::SignOfProduct(
        ZULMRSBSPPointRelations::DirectionBetweenNormals{p1, p2, q1, q2}));
}

int SignOfTripleProduct(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& q1, const ZULMRSBSPPoint& q2,
                        const ZULMRSBSPPoint& q3)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::SignOfTripleProduct);
    const ZULExpFloatScope scope;
    return Settled(
        ZULMRSBSPPointRelations::SignOfProduct(ZULMRSBSPPointRelations::NormalOfPath{plane, q1, q2, q3}));
}

int GetSignOfNormalSignAngleDiff(const std::array<ZULMathPoint, 3>& triangle, double s)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::GetSignOfNormalSignAngleDiff);
    const auto& [a, b, c] = triangle;
    return ZULMRSBSPKernel<ZULMRSBSPNormalAngleKernel>::Sign(
        {a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z, s});
}

int IsCrossingOBB(const ZULMRSBSPPlane& plane, const ZULListValZULMathPoint& corners,
                  ZULMRSExtendedBool* side)
{
    const ZULMRSBSPCountedPredicate counted(ZULMRSBSPPredicate::IsCrossingOBB);
    constexpr int nbCorners = 8;
    const ZULExpFloatScope scope;
    const int common =
        Settled(ZULMRSBSPPointRelations::CommonSide(plane, corners, std::min(nbCorners, corners.Size())));
    if (side != nullptr) {
        *side = static_cast<ZULMRSExtendedBool>(common);
    }
    return static_cast<int>(common == 0);
}
}  // namespace ZULMRSBSPPredicates
