#ifndef ZULMRSBSPCartesianPoint_h
#define ZULMRSBSPCartesianPoint_h

#include "ZULMRSBSPIntegerForm.h"
#include "ZULMRSBSPPoint.h"

/// A point with exact coordinates besides its planes. That it lies on them is not checked.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPCartesianPoint : public ZULMRSBSPPoint
{
public:
    /// Makes and solely owns the three axis-parallel planes through the point.
    explicit ZULMRSBSPCartesianPoint(const ZULMathPoint& coordinates);
    /// Orients the triple by the exact sign of the normals' determinant; dependent normals are accepted.
    ZULMRSBSPCartesianPoint(std::array<ZULMRSBSPPlane*, 3> planes, std::array<double, 3> coordinates);
    ZULMRSBSPCartesianPoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                            const ZULMathPoint& coordinates);
    /// Shallow, as ZULMRSBSPPoint's; moving is copying.
    ZULMRSBSPCartesianPoint(const ZULMRSBSPCartesianPoint& other);
    ZULMRSBSPCartesianPoint(ZULMRSBSPCartesianPoint&& other) noexcept;
    ZULMRSBSPCartesianPoint& operator=(const ZULMRSBSPCartesianPoint& other);
    ZULMRSBSPCartesianPoint& operator=(ZULMRSBSPCartesianPoint&& other) noexcept;

    ZULMRSBSPPointType GetType() const override;
    /// The representations are new arrays (x, y, z, 1); (null, false) when memory is exhausted.
    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override;
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override;
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override;
    /// A new array (x, y, z, 0).
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override;
    ZULMathPoint GetApproximatedPoint() const override;
    std::array<double, 3> GetApproximatedXYZ() const override;
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane) override;
    ~ZULMRSBSPCartesianPoint() override;

private:
    void Orient();

    /// First: with the object's head it is what decisions read.
    ZULMRSBSPIntegerForm m_IntegerForm;
    std::array<double, 3> m_Coordinates;

    friend struct ZULMRSBSPDirectReads;
};

#endif
