#ifndef ZULMRSBSPPredicates_h
#define ZULMRSBSPPredicates_h

#include <array>

#include "ZULListValZULMathPoint.h"
#include "ZULMRSBSPLine.h"
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
/// The same for three coordinates.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                   const ZULMathPoint& point);
/// The same for a point of planes; undetermined also where its planes do not meet in one point.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                   const ZULMRSBSPPoint& point);
/// The side in doubles only: wrong answers are possible within rounding distance of the plane, and a sum that
/// is not a number answers false.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointInFrontOfPlaneFast(const ZULMRSBSPPlane& plane,
                                                                       const ZULMathPoint& point);
/// The same for a point of planes, from the coefficients of the four planes.
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

/// True when the points are one place in space, however each is defined. Never undetermined; the points are
/// assumed valid (a missing plane answers false, coordinates that are not numbers equal nothing).
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool ArePointsEqual(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q);
/// True when p comes after q: its x is greater, or with equal x its y, or with equal x and y its z. False
/// otherwise, for equal points too: a strict weak order, for valid points. Neither point is changed; threads
/// may order the same points at once.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool LexicographicOrder(ZULMRSBSPPoint& p, ZULMRSBSPPoint& q);
/// True when the point's planes are three different objects that meet in one point; undetermined when one is
/// missing.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointValid(const ZULMRSBSPPoint& point);
/// True when the point lies on both planes of the line, otherwise false.
ZULMRSPlaneBasedInfra_API ZULMRSExtendedBool IsPointOnLine(const ZULMRSBSPLine& line,
                                                           const ZULMRSBSPPoint& point);
/// Sign of n1 . (d x n2), n the normals of the planes, d the direction from q1 to q2.
ZULMRSPlaneBasedInfra_API int SignOfTripleProduct(const ZULMRSBSPPlane& p1, const ZULMRSBSPPlane& p2,
                                                  const ZULMRSBSPPoint& q1, const ZULMRSBSPPoint& q2);
/// Sign of (d1 x d2) . n, n the normal of the plane, d1 the direction from q1 to q2, d2 from q2 to q3.
ZULMRSPlaneBasedInfra_API int SignOfTripleProduct(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& q1,
                                                  const ZULMRSBSPPoint& q2, const ZULMRSBSPPoint& q3);
/// Sign of nz^2 - s^2 |n|^2 with n = (B - A) x (C - A): positive when the normal of the triangle A, B, C
/// makes with the z axis, whichever way it points, an angle whose cosine exceeds |s|. 2 only for input that
/// is not finite.
ZULMRSPlaneBasedInfra_API int GetSignOfNormalSignAngleDiff(const std::array<ZULMathPoint, 3>& triangle,
                                                           double s);
/// 1 when the plane has corners of the box (positions 1 to 8 of the list; more are not read) strictly on both
/// sides, else 0. side may be null; it receives undetermined (0) in the first case, else the side on which
/// the corners lie, or 2, which is no answer of a predicate, when all lie on the plane.
ZULMRSPlaneBasedInfra_API int IsCrossingOBB(const ZULMRSBSPPlane& plane,
                                            const ZULListValZULMathPoint& corners, ZULMRSExtendedBool* side);
}  // namespace ZULMRSBSPPredicates

#endif
