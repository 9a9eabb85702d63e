#ifndef ZULMRSBSPPlane_h
#define ZULMRSBSPPlane_h

#include <array>
#include <cstdint>
#include <tuple>

#include "ZULExpDynamic.h"
#include "ZULExpFloatRingExtensionTS.h"
#include "ZULExpInterval.h"
#include "ZULMRSBSPReferenceCount.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathPoint.h"
#include "ZULMathVector.h"
#include "ZULPooledObject.h"

/// How a plane is defined.
enum ZULMRSBSPPlaneType : int { ZULMRSBSPPlaneType_Cartesian = 0, ZULMRSBSPPlaneType_3Points = 1 };

/// Four numbers of one arithmetic and whether the caller owns the array. A null pointer: the object cannot
/// deliver in this arithmetic. An owned array is freed by the caller with delete; one that is not owned is a
/// cache of the object and stays valid while the object lives unchanged.
template <class Number>
using ZULMRSBSPQuadruple = std::tuple<const std::array<Number, 4>*, bool>;

/// A plane a x + b y + c z + d = 0. The normal (a, b, c) is never normalised; a point is in front where the
/// sum is positive. Shared and reference counted: created with one owner, destroyed only by the last
/// Release(). Const operations may run on one plane from many threads at once.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane : public ZULPooledObject
{
public:
    /// Copies take over the source's count value, and nothing else.
    ZULMRSBSPPlane(const ZULMRSBSPPlane& other);
    ZULMRSBSPPlane& operator=(const ZULMRSBSPPlane& other);

    /// How the plane is defined.
    virtual ZULMRSBSPPlaneType GetType() const = 0;

    /// True when the normal is exactly a signed unit axis vector; axis is then 0, 1 or 2.
    virtual bool IsCanonical(int& axis) const = 0;

    /// The equation (a, b, c, d) in each arithmetic; see ZULMRSBSPQuadruple for ownership.
    virtual ZULMRSBSPQuadruple<ZULExpDynamic> GetStdEquation_ExpDynamic() const = 0;
    /// The same in intervals.
    virtual ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const = 0;
    /// The same in exact numbers.
    virtual ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetStdEquation_FloatRing() const = 0;

    /// The four coefficients as doubles (approximate where the plane is not defined by doubles).
    virtual std::array<double, 4> GetCoords() const;
    /// Coefficient 0 (a) to 3 (d); the index is not checked.
    virtual double GetDouble(int index) const;
    /// The first three coefficients as doubles.
    virtual ZULMathVector GetNormalVector() const;

    /// The equation in the arithmetic of the type argument.
    template <class Number>
    ZULMRSBSPQuadruple<Number> GetStdEquationTpl() const;

    /// The projection of the origin; see ProjectPointOnPlane.
    ZULMathPoint GetPointOnPlane() const;
    /// Squared Euclidean distance; infinite or not a number for a normal of length zero.
    double GetSquareDistanceTo(const ZULMathPoint& point) const;
    /// Orthogonal projection. A squared normal length that is not above 1e-7 is a fatal error
    /// (ZULFatalError); where its handler returns, the projection goes on with that length.
    ZULMathPoint ProjectPointOnPlane(const ZULMathPoint& point) const;

    void AddRef() { m_Count.Add(); }
    /// Lets go of one ownership; the last one destroys the object.
    void Release()
    {
        if (m_Count.Drop()) {
            delete this;
        }
    }
    static void ReleaseObject(ZULMRSBSPPlane* object) { ZULMRSBSPReference::Release(object); }
    /// Exchanges the object held by a slot; null is allowed on both sides. Two threads must not use one slot
    /// at once.
    static void Replace(ZULMRSBSPPlane*& slot, ZULMRSBSPPlane* object)
    {
        ZULMRSBSPReference::Replace(slot, object);
    }
    /// Number of owners minus one.
    std::int32_t GetRefCount() const { return m_Count.Get(); }

protected:
    /// One owner; counts one construction.
    ZULMRSBSPPlane();
    virtual ~ZULMRSBSPPlane();

private:
    ZULMRSBSPReferenceCount m_Count;

    /// Constructions since load; plain and unsynchronised, a diagnostic only.
    static unsigned int m_GID;
    friend struct ZULMRSBSPInstanceCounters;
};

template <>
inline ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSPPlane::GetStdEquationTpl<ZULExpDynamic>() const
{
    return GetStdEquation_ExpDynamic();
}
template <>
inline ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSPPlane::GetStdEquationTpl<ZULExpInterval>() const
{
    return GetStdEquation_ExpInterval();
}
template <>
inline ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>
ZULMRSBSPPlane::GetStdEquationTpl<ZULExpFloatRingExtensionTS>() const
{
    return GetStdEquation_FloatRing();
}

/// Creation of unshared planes, each with one owner (the caller), and plane equations as doubles. No equation
/// is normalised.
namespace ZULMRSBSPPlaneNS
{
/// A plane through three points, counter-clockwise seen from its front. Collinear points give the equation
/// (0, 0, 0, 0). Null only when memory is exhausted.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane* Create3PointsPlane(const std::array<double, 3>& p1,
                                                             const std::array<double, 3>& p2,
                                                             const std::array<double, 3>& p3);
/// The same for the points in one array.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane* Create3PointsPlane(
    const std::array<std::array<double, 3>, 3>& points);
/// The same for points as values.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane* Create3PointsPlane(const ZULMathPoint& p1, const ZULMathPoint& p2,
                                                             const ZULMathPoint& p3);

/// A plane of the given coefficients; null when a, b and c are all exactly 0 (nothing is counted then) or
/// memory is exhausted.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane* CreateCartesianPlane(const std::array<double, 4>& equation);
/// The same for single coefficients.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPlane* CreateCartesianPlane(double a, double b, double c, double d);

/// The plane through three points, normal (p2 - p1) x (p3 - p1).
ZULMRSPlaneBasedInfra_API std::array<double, 4> CreatePlaneEquation(const ZULMathPoint& p1,
                                                                    const ZULMathPoint& p2,
                                                                    const ZULMathPoint& p3);
/// The plane through a point, normal u x v.
ZULMRSPlaneBasedInfra_API std::array<double, 4> CreatePlaneEquation(const ZULMathPoint& point,
                                                                    const ZULMathVector& u,
                                                                    const ZULMathVector& v);
/// The plane through a point with the given normal.
ZULMRSPlaneBasedInfra_API std::array<double, 4> CreatePlaneEquation(const ZULMathPoint& point,
                                                                    const ZULMathVector& normal);
}  // namespace ZULMRSBSPPlaneNS

#endif
