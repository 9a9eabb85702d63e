#include "ZULMRSBSPPredicates.h"

#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPlaneRelations.h"
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

/// The answer of a predicate that is true or false, never undetermined.
ZULMRSExtendedBool ToTruth(int isTrue)
{
    return isTrue != 0 ? ZULMRSExtendedTrue : ZULMRSExtendedFalse;
}
}  // namespace

int SignOf2x2Determinant(double a, double b, double c, double d)
{
    return ZULMRSBSPKernel<ZULMRSBSPDeterminant2x2Kernel>::Sign({a, b, c, d});
}

int SignOf2x2DiffDeterminant(double x0, double x1, double x2, double x3, double x4, double x5, double x6,
                             double x7)
{
    return ZULMRSBSPKernel<ZULMRSBSPDifferenceDeterminantKernel>::Sign({x0, x1, x2, x3, x4, x5, x6, x7});
}

int SignOf2x2DotProduct(double x0, double x1, double x2, double x3, double x4, double x5, double x6,
                        double x7)
{
    return ZULMRSBSPKernel<ZULMRSBSPDifferenceDotProductKernel>::Sign({x0, x1, x2, x3, x4, x5, x6, x7});
}

int SignOf3DimDotProduct(const std::array<double, 3>& u, const std::array<double, 3>& v)
{
    return ZULMRSBSPKernel<ZULMRSBSPDotProductKernel>::Sign({u[0], u[1], u[2], v[0], v[1], v[2]});
}

int SignOf3x3Determinant(double a1, double a2, double a3, double a4, double a5, double a6, double a7,
                         double a8, double a9)
{
    return ZULMRSBSPKernel<ZULMRSBSPDeterminant3x3Kernel>::Sign({a1, a2, a3, a4, a5, a6, a7, a8, a9});
}

int SignOf3PlanesDeterminant(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2, const ZULMRSBSPPlane& p3)
{
    const ZULExpFloatScope scope;
    return Settled(ZULMRSBSPPlaneRelations::DeterminantOfNormals(p1, p2, p3));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const std::array<double, 4>& point)
{
    return IsPointInFrontOfPlane(plane, ZULMathPoint(point[0], point[1], point[2]));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const ZULMathPoint& point)
{
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::AtCoordinates(plane, point)));
}

ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    if (ZULMRSBSPOrientation::IsOwnPlane(plane, point)) {
        ZULMRSBSPStageCounters::Count(ZULMRSBSPStage::Shortcut);
        return ZULMRSExtendedUndetermined;
    }
    const ZULExpFloatScope scope;
    return ToSide(Settled(ZULMRSBSPOrientation::AtPoint(plane, point)));
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
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::AreParallel(p, q))));
}

ZULMRSExtendedBool ArePlanesCoincident(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    if (&p == &q) {
        return ZULMRSExtendedTrue;
    }
    const ZULExpFloatScope scope;
    return ToTruth(Settled(static_cast<int>(ZULMRSBSPPlaneRelations::AreCoincident(p, q))));
}

ZULMRSExtendedBool CoincidentOrientation(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
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
}  // namespace ZULMRSBSPPredicates
