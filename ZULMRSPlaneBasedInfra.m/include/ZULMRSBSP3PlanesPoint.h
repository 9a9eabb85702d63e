#ifndef ZULMRSBSP3PlanesPoint_h
#define ZULMRSBSP3PlanesPoint_h

#include "ZULMRSBSPIntegerForm.h"
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
    /// representation exists an error line is written and the error is infinite, the coordinates 0.
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override;
    /// Quotients of the cache where it is valid, else as GetApproximatedXYZError; three times -666.666 when
    /// memory is exhausted.
    ZULMathPoint GetApproximatedPoint() const override;
    /// The same as an array; an error line and zeros when memory is exhausted.
    std::array<double, 3> GetApproximatedXYZ() const override;
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane) override;
    ~ZULMRSBSP3PlanesPoint() override;

private:
    enum class RepresentationState : unsigned char { Invalid, Valid, Pending, BeingMade };

    bool InitByIntegers();
    bool InitByNumbers();
    ZULExpSign_t ComputeFiltered();
    bool OrientExactly();
    bool HasRepresentation() const;
    void MakeRepresentation() const;
    const ZULMRSBSP3PlanesPoint& WithRepresentation() const;

    /// First: with the object's head it is what decisions read.
    ZULMRSBSPIntegerForm m_IntegerForm;
    /// Made when it is first asked for, where the integers have told how the triple is oriented, and not
    /// written before: hence no member that is initialised.
    union {
        mutable std::array<ZULExpDynamic, 4> m_Representation;
    };
    mutable RepresentationState m_RepresentationState;
    /// The integers have exchanged two planes of the triple as it was given.
    bool m_IsExchanged;

    friend struct ZULMRSBSPDirectReads;
};

#endif
