#ifndef ZULMRSBSP3PlanesPoint_h
#define ZULMRSBSP3PlanesPoint_h

#include "ZULMRSBSPPoint.h"

/// The point that exists only as the meeting point of its three planes; coordinates follow by Cramer's rule.
/// A valid one is oriented: the determinant of the three normals, in triple order, is positive.
class ZULMRSPlaneBasedInfra_API ZULMRSBSP3PlanesPoint : public ZULMRSBSPPoint
{
public:
    /// isValid: whether the planes are not null and meet in one point. An invalid point holds its references
    /// all the same.
    ZULMRSBSP3PlanesPoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid);
    ZULMRSBSP3PlanesPoint(std::array<ZULMRSBSPPlane*, 3>&& planes, bool& isValid);
    /// Shallow, as ZULMRSBSPPoint's.
    ZULMRSBSP3PlanesPoint(const ZULMRSBSP3PlanesPoint& other);
    ZULMRSBSP3PlanesPoint& operator=(const ZULMRSBSP3PlanesPoint& other);

    ZULMRSBSPPointType GetType() const override;
    /// The cache (not owned), or (null, false) when computing it under- or overflowed. Never allocates.
    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override;
    /// A new array, or (null, false) when computing it under- or overflowed or a plane has no interval
    /// equation.
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override;
    /// A new array.
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override;
    /// A new array (x, y, z, error): error is the widest of the three quotient intervals. Where no interval
    /// representation exists an error line is written and the array is not filled.
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override;
    /// Quotients of the cache where it is valid, else as GetApproximatedXYZError; three times -666.666 when
    /// memory is exhausted.
    ZULMathPoint GetApproximatedPoint() const override;
    /// The same as an array; an error line and zeros when memory is exhausted.
    std::array<double, 3> GetApproximatedXYZ() const override;
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane) override;
    ~ZULMRSBSP3PlanesPoint() override;

private:
    bool Init();
    ZULExpSign_t ComputeFiltered();
    bool OrientExactly();

    std::array<ZULExpDynamic, 4> m_Representation;
    bool m_RepresentationValid;

    friend struct ZULMRSBSPDirectReads;
};

#endif
