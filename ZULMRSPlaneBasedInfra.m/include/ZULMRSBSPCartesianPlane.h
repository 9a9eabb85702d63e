#ifndef ZULMRSBSPCartesianPlane_h
#define ZULMRSBSPCartesianPlane_h

#include "ZULMRSBSPIntegerForm.h"
#include "ZULMRSBSPPlane.h"

/// A plane given by its four coefficients, taken as exact and never rescaled.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPCartesianPlane : public ZULMRSBSPPlane
{
public:
    explicit ZULMRSBSPCartesianPlane(const std::array<double, 4>& equation);
    /// Copies take over the source's count value and coefficients.
    ZULMRSBSPCartesianPlane(const ZULMRSBSPCartesianPlane& other);
    ZULMRSBSPCartesianPlane& operator=(const ZULMRSBSPCartesianPlane& other);

    ZULMRSBSPPlaneType GetType() const override;
    /// Exact comparison with plus or minus the unit axes; otherwise false and axis -1.
    bool IsCanonical(int& axis) const override;
    /// The three equations are new arrays that the caller owns; (null, false) when memory is exhausted.
    ZULMRSBSPQuadruple<ZULExpDynamic> GetStdEquation_ExpDynamic() const override;
    ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const override;
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetStdEquation_FloatRing() const override;
    std::array<double, 4> GetCoords() const override;
    double GetDouble(int index) const override;
    ZULMathVector GetNormalVector() const override;
    ~ZULMRSBSPCartesianPlane() override;

    /// Overwrites the coefficients in place; meant for a plane that nobody else holds, not synchronised
    /// against readers.
    void SetCoords(const std::array<double, 4>& equation);

private:
    /// With the integers that belong to the coefficients.
    ZULMRSBSPCartesianPlane(const std::array<double, 4>& equation, const ZULMRSBSPIntegerForm& integerForm);

    /// Where the normal is a signed unit axis, its axis; otherwise -1. Fits behind the base's count.
    signed char m_CanonicalAxis;
    /// Near the object's head: it is what decisions read.
    ZULMRSBSPIntegerForm m_IntegerForm;
    std::array<double, 4> m_Coords;

    friend struct ZULMRSBSPDirectReads;
    friend class ZULMRSBSPNewCartesianPlane;
};

#endif
