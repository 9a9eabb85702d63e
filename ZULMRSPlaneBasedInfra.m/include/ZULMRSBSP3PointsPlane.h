#ifndef ZULMRSBSP3PointsPlane_h
#define ZULMRSBSP3PointsPlane_h

#include "ZULMRSBSPIntegerForm.h"
#include "ZULMRSBSPPlane.h"

struct ZULMRSBSPCoordinateRecord;

/// The plane through three points, kept as points (shared between the planes through them), its equation
/// derived exactly: normal (p2 - p1) x (p3 - p1).
class ZULMRSPlaneBasedInfra_API ZULMRSBSP3PointsPlane : public ZULMRSBSPPlane
{
public:
    explicit ZULMRSBSP3PointsPlane(const std::array<std::array<double, 3>, 3>& points);
    /// Copies take over the source's count value and share its points.
    ZULMRSBSP3PointsPlane(const ZULMRSBSP3PointsPlane& other);
    ZULMRSBSP3PointsPlane& operator=(const ZULMRSBSP3PointsPlane& other);

    ZULMRSBSPPlaneType GetType() const override;
    /// Always false; the axis is not written.
    bool IsCanonical(int& axis) const override;
    /// The cached equation (not owned), or (null, false) when computing it under- or overflowed.
    ZULMRSBSPQuadruple<ZULExpDynamic> GetStdEquation_ExpDynamic() const override;
    /// A new array, or (null, false) when computing it under- or overflowed.
    ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const override;
    /// A new array.
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetStdEquation_FloatRing() const override;
    ~ZULMRSBSP3PointsPlane() override;

    /// The defining points, in the order given.
    std::array<std::array<double, 3>, 3> Get3Points() const;

private:
    void Init();

    /// First: with the object's head it is what decisions read.
    ZULMRSBSPIntegerForm m_IntegerForm;
    std::array<ZULMRSBSPCoordinateRecord*, 3> m_Points;
    std::array<ZULExpDynamic, 4> m_Equation;
    bool m_EquationValid;

    friend struct ZULMRSBSPDirectReads;
};

#endif
