#ifndef ZULMRSBSPThinBox_h
#define ZULMRSBSPThinBox_h

#include <algorithm>
#include <array>
#include <cstddef>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPReport.h"
#include "ZULMRSBSPScaledNorm.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMathOBB.h"
#include "ZULMathVector.h"

/// The thin box round a planar polygon.
namespace ZULMRSBSPThinBox
{
/// How far the box reaches beyond the polygon, on every side.
constexpr double Margin = 0.01;

/// An axis that is not parallel to the normal, from the coefficients as they are.
inline ZULMathVector AuxiliaryAxis(const ZULMathVector& normal)
{
    if (normal.x != 0.0) {
        return {0.0, 1.0, 0.0};
    }
    return normal.y == 0.0 ? ZULMathVector(1.0, 0.0, 0.0) : ZULMathVector(0.0, 0.0, 1.0);
}

/// Of length 1, also where the square of the length is beyond the range of doubles; zero stays zero.
inline ZULMathVector Normalized(const ZULMathVector& vector)
{
    const ZULMRSBSPScaledNorm norm(vector.x, vector.y, vector.z);
    if (norm.m_Value == 0.0) {
        return vector;
    }
    return {norm.Divide(vector.x), norm.Divide(vector.y), norm.Divide(vector.z)};
}

/// U and V in the plane, N along its normal.
struct Frame {
    explicit Frame(const ZULMRSBSPPlane& plane)
        : m_N(plane.GetDouble(0), plane.GetDouble(1), plane.GetDouble(2))
    {
        const ZULMathVector auxiliary = AuxiliaryAxis(m_N);
        m_N = Normalized(m_N);
        m_U = Normalized(auxiliary - (m_N * auxiliary) * m_N);
        m_V = m_N ^ m_U;
    }

    ZULMathVector m_U;
    ZULMathVector m_V;
    ZULMathVector m_N;
};

/// Where projections fall on an axis, the origin's included.
struct Range {
    double m_Lowest = 0.0;
    double m_Highest = 0.0;

    void Include(double projection)
    {
        if (projection < 0.0) {
            m_Lowest = std::min(m_Lowest, projection);
        } else {
            m_Highest = std::max(m_Highest, projection);
        }
    }
    double HalfExtentFrom(double center) const { return std::max(m_Highest - center, center - m_Lowest); }
};

/// Takes points one by one and gives the box. Inside a ZULExpFloatScope.
class Builder
{
public:
    explicit Builder(const ZULMRSBSPPlane& plane) : m_Frame(plane) {}

    [[gnu::noinline]] void Include(double x, double y, double z)
    {
        const ZULMathVector point(x, y, z);
        m_Sum = m_Sum + point;
        m_AlongU.Include(m_Frame.m_U * point);
        m_AlongV.Include(m_Frame.m_V * point);
        ++m_NbPoints;
    }
    [[gnu::noinline]] ZULMathOBBBase Build() const
    {
        const auto count = static_cast<double>(m_NbPoints);
        const ZULMathVector center(m_Sum.x / count, m_Sum.y / count, m_Sum.z / count);
        const ZULMathVector extents(Margin + m_AlongU.HalfExtentFrom(m_Frame.m_U * center),
                                    Margin + m_AlongV.HalfExtentFrom(m_Frame.m_V * center), Margin);
        return {m_Frame.m_U, m_Frame.m_V, m_Frame.m_N, extents, ZULMathPoint(center.x, center.y, center.z)};
    }

private:
    Frame m_Frame;
    Range m_AlongU;
    Range m_AlongV;
    ZULMathVector m_Sum;
    std::size_t m_NbPoints = 0;
};

/// Reports that the vertices could not be updated; gives the code back.
inline ZULMRSErrorTypes ReportUpdateError(ZULMRSErrorTypes error)
{
    constexpr ZULMRSBSPReport::Place place = {"ZULMRSBSPPolygon::GetOBB", "ZULMRSBSPPolygon", 1287};
    ZULMRSBSPReport::Error(place, "ZULMRSBSPPolygon::UpdatePoints");
    return error;
}
}  // namespace ZULMRSBSPThinBox

#endif
