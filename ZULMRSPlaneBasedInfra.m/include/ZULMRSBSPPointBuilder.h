#ifndef ZULMRSBSPPointBuilder_h
#define ZULMRSBSPPointBuilder_h

#include <array>

#include "ZULMRSBSPPoint.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathPoint.h"

/// The coordinates of one point as doubles: from intervals where their width is small enough, from exact
/// numbers otherwise. A short-lived object of one thread; it refers to the point without owning it, and the
/// point must outlive it.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPointBuilder
{
public:
    explicit ZULMRSBSPPointBuilder(const ZULMRSBSPPoint& point);
    ~ZULMRSBSPPointBuilder();

    /// The error, in the unit of the coordinates, up to which the quick evaluation is taken: 0.0001 at first.
    /// Not a number: always taken.
    void SetMaxErrorThresholdForQuickEval(double threshold);

    /// Computes the result. isQuick tells whether the quick evaluation stands; exact coordinates are within
    /// two units in the last place, infinite beyond the range of doubles, and not preceded by silence: each
    /// exact evaluation writes warning lines. unused is always set to false. A point that has no exact
    /// representation keeps the quick result, with an error line; one that has no approximation either, the
    /// result of before.
    void Run(bool& unused, bool& isQuick);

    /// The coordinates that the last Run() found; 0 before.
    void GetResult(double& x, double& y, double& z) const;
    /// The same as a point.
    void GetResult(ZULMathPoint& result) const;

private:
    bool EvaluateQuickly();
    void EvaluateExactly();

    const ZULMRSBSPPoint& m_Point;
    double m_MaxErrorThreshold;
    std::array<double, 3> m_Result;
    double m_Error;
};

#endif
