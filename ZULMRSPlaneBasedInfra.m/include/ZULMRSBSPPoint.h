#ifndef ZULMRSBSPPoint_h
#define ZULMRSBSPPoint_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "ZULMRSBSPPlane.h"
#include "ZULPooledObject.h"

/// How a point is defined.
enum ZULMRSBSPPointType : int { ZULMRSBSPPointType_3Planes = 0, ZULMRSBSPPointType_Cartesian = 1 };

/// A point: the intersection of an ordered triple of planes, on each of which it holds a reference. Its
/// representation is the homogeneous quadruple (X, Y, Z, W), the point being (X/W, Y/W, Z/W). Shared and
/// reference counted: created with one owner, destroyed only by the last Release(). Const operations may run
/// on one point from many threads at once.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPoint : public ZULPooledObject
{
public:
    /// Copies take over the count value and the plane pointers, without references: the holder of a copy
    /// answers for them.
    ZULMRSBSPPoint(const ZULMRSBSPPoint& other);
    ZULMRSBSPPoint& operator=(const ZULMRSBSPPoint& other);

    /// How the point is defined.
    virtual ZULMRSBSPPointType GetType() const = 0;

    /// (X, Y, Z, W) in each arithmetic; see ZULMRSBSPQuadruple for ownership.
    virtual ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const = 0;
    /// The same in intervals.
    virtual ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const = 0;
    /// The same in exact numbers.
    virtual ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const = 0;

    /// x, y, z and an error bound common to the three.
    virtual ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const = 0;
    /// x, y and z alone.
    virtual ZULMathPoint GetApproximatedPoint() const = 0;
    /// The same as an array.
    virtual std::array<double, 3> GetApproximatedXYZ() const = 0;

    /// Exchanges every occurrence of a plane of the triple for another plane object of the same point set,
    /// which the caller vouches for. False when the old plane is not in the triple. Needs exclusive access to
    /// the point.
    virtual bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane) = 0;

    /// Planes of the triple; no reference is taken, indices (0 to 2) are not checked.
    const ZULMRSBSPPlane* GetP1() const { return m_Planes[0]; }
    const ZULMRSBSPPlane* GetP2() const { return m_Planes[1]; }
    const ZULMRSBSPPlane* GetP3() const { return m_Planes[2]; }
    ZULMRSBSPPlane* GetPlane(std::size_t index) const { return m_Planes[index]; }
    std::array<ZULMRSBSPPlane*, 3> GetPlanes() const { return m_Planes; }

    /// The representation in the arithmetic of the type argument.
    template <class Number>
    ZULMRSBSPQuadruple<Number> GetCartesianRepresentationTpl() const;

    void AddRef() { m_Count.Add(); }
    /// Lets go of one ownership; the last one destroys the object.
    void Release()
    {
        if (m_Count.Drop()) {
            delete this;
        }
    }
    static void ReleaseObject(ZULMRSBSPPoint* object) { ZULMRSBSPReference::Release(object); }
    /// Exchanges the object held by a slot; null is allowed on both sides. Two threads must not use one slot
    /// at once.
    static void Replace(ZULMRSBSPPoint*& slot, ZULMRSBSPPoint* object)
    {
        ZULMRSBSPReference::Replace(slot, object);
    }
    /// Number of owners minus one.
    std::int32_t GetRefCount() const { return m_Count.Get(); }

protected:
    ZULMRSBSPPoint();
    /// Takes one reference on each plane that is not null.
    explicit ZULMRSBSPPoint(const std::array<ZULMRSBSPPlane*, 3>& planes);
    explicit ZULMRSBSPPoint(std::array<ZULMRSBSPPlane*, 3>&& planes);
    ZULMRSBSPPoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3);
    virtual ~ZULMRSBSPPoint();

    /// Exchanges every occurrence of a plane in the triple, with its reference; whether it was found.
    bool ReplaceInTriple(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane);

private:
    ZULMRSBSPReferenceCount m_Count;

protected:
    std::array<ZULMRSBSPPlane*, 3> m_Planes;

private:
    /// Printed at unload; nothing counts points.
    static unsigned int m_GID;
    friend struct ZULMRSBSPInstanceCounters;
};

template <>
inline ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSPPoint::GetCartesianRepresentationTpl<ZULExpDynamic>() const
{
    return GetCartesianRepresentation_ExpDynamic();
}
template <>
inline ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSPPoint::GetCartesianRepresentationTpl<ZULExpInterval>()
    const
{
    return GetCartesianRepresentation_ExpInterval();
}
template <>
inline ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>
ZULMRSBSPPoint::GetCartesianRepresentationTpl<ZULExpFloatRingExtensionTS>() const
{
    return GetCartesianRepresentation_FloatRing();
}

/// Creation of unshared points, each with one owner (the caller).
namespace ZULMRSBSPPointNS
{
/// A point of the given coordinates, owner of its three axis-parallel planes. Null when memory is exhausted.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates);

/// The meeting point of three planes. isValid: whether they meet in one point. With tryExactCartesian, three
/// canonical planes give a point with exact coordinates. Null (and isValid false) only when a plane is null
/// or memory is exhausted; an invalid point is returned and must be released all the same.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2,
                                                      ZULMRSBSPPlane* p3, bool& isValid,
                                                      bool tryExactCartesian);

/// A point of the given planes and coordinates; that they agree is not checked.
ZULMRSPlaneBasedInfra_API ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2,
                                                      ZULMRSBSPPlane* p3, const ZULMathPoint& coordinates);

/// Whether the planes are three canonical planes, and then the exact coordinates of their meeting point. Two
/// planes on one axis are not refused: the later one wins and the axis left over is unspecified.
ZULMRSPlaneBasedInfra_API std::pair<bool, std::array<double, 3>> IsIntersectionExactCartesian(
    const std::array<ZULMRSBSPPlane*, 3>& planes);
}  // namespace ZULMRSBSPPointNS

#endif
