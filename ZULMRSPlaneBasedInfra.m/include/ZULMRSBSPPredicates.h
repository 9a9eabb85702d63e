#ifndef ZULMRSBSPPredicates_h
#define ZULMRSBSPPredicates_h

#include <array>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSExtendedBool.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathPoint.h"

/// Exact geometric predicates: the sign is that of the exact value on the exact input, for every finite
/// input. No state; safe from any thread, whatever its rounding mode, denormal treatment and exception masks,
/// which are left as they were. Nothing is reported; nothing is allocated unless the exact stage needs large
/// numbers.
namespace ZULMRSBSPPredicates
{
/// Sign (-1, 0, 1) of a d - b c. SignOf2x2Determinant(a, b, c, d) = -SignOf2x2Determinant(b, a, d, c).
ZULMRSPlaneBasedInfra_API int SignOf2x2Determinant(double a, double b, double c, double d);
/// Sign of the determinant of B - A and D - C: (x2 - x0)(x7 - x5) - (x3 - x1)(x6 - x4); points A = (x0, x1)
/// to D = (x6, x7).
ZULMRSPlaneBasedInfra_API int SignOf2x2DiffDeterminant(double x0, double x1, double x2, double x3, double x4,
                                                       double x5, double x6, double x7);
/// Sign of the dot product of B - A and D - C, points as above.
ZULMRSPlaneBasedInfra_API int SignOf2x2DotProduct(double x0, double x1, double x2, double x3, double x4,
                                                  double x5, double x6, double x7);
/// Sign of u . v.
ZULMRSPlaneBasedInfra_API int SignOf3DimDotProduct(const std::array<double, 3>& u,
                                                   const std::array<double, 3>& v);
/// Sign of the determinant of the rows (a1, a2, a3), (a4, a5, a6), (a7, a8, a9).
ZULMRSPlaneBasedInfra_API int SignOf3x3Determinant(double a1, double a2, double a3, double a4, double a5,
                                                   double a6, double a7, double a8, double a9);
/// Sign of the determinant of the three normals; 0 exactly when the planes do not meet in one point.
ZULMRSPlaneBasedInfra_API int SignOf3PlanesDeterminant(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                                       const ZULMRSBSPPlane& p3);

/// Side of the plane on which the point lies: true in front (a x + b y + c z + d > 0), false behind,
/// undetermined exactly on it. The array form reads x, y, z and ignores its fourth element.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                   const std::array<double, 4>& point);
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                   const ZULMathPoint& point);
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                   const ZULMRSBSPPoint& point);
/// The same in doubles only: wrong answers are possible within rounding distance of the plane, and a sum that
/// is not a number answers false.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlaneFast(const ZULMRSBSPPlane& plane,
                                                                       const ZULMathPoint& point);
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlaneFast(const ZULMRSBSPPlane& plane,
                                                                       const ZULMRSBSPPoint& point);

/// True when the normals are proportional. Never undetermined.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool ArePlanesParallel(const ZULMRSBSPPlane& p,
                                                               const ZULMRSBSPPlane& q);
/// True when the equations are proportional, with either sign. Never undetermined.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool ArePlanesCoincident(const ZULMRSBSPPlane& p,
                                                                 const ZULMRSBSPPlane& q);
/// For planes known to be coincident: true when they face the same way. Never undetermined.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool CoincidentOrientation(const ZULMRSBSPPlane& p,
                                                                   const ZULMRSBSPPlane& q);
/// True when the normal is not the zero vector. Never undetermined.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPlaneValid(const ZULMRSBSPPlane& plane);
}  // namespace ZULMRSBSPPredicates

#endif
