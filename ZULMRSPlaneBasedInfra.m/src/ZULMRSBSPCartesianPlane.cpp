#include "ZULMRSBSPCartesianPlane.h"

#include <cstddef>

#include "ZULExpRounding.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPQuadrupleHolder.h"

using ZULMRSBSPFormulas::IsExactlyUnit;
using ZULMRSBSPFormulas::IsExactlyZero;

ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane(const std::array<double, 4>& equation)
    : m_IntegerForm(ZULMRSBSPIntegerForms::OfPlane(equation)), m_Coords(equation)
{
}

ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane(const ZULMRSBSPCartesianPlane&) = default;
ZULMRSBSPCartesianPlane& ZULMRSBSPCartesianPlane::operator=(const ZULMRSBSPCartesianPlane&) = default;
ZULMRSBSPCartesianPlane::~ZULMRSBSPCartesianPlane() = default;

ZULMRSBSPPlaneType ZULMRSBSPCartesianPlane::GetType() const
{
    return ZULMRSBSPPlaneType_Cartesian;
}

bool ZULMRSBSPCartesianPlane::IsCanonical(int& axis) const
{
    axis = -1;
    for (int i = 0; i < 3; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const bool isUnit = IsExactlyUnit(m_Coords[index]) && IsExactlyZero(m_Coords[(index + 1) % 3]) &&
                            IsExactlyZero(m_Coords[(index + 2) % 3]);
        if (isUnit) {
            axis = i;
            return true;
        }
    }
    return false;
}

ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSPCartesianPlane::GetStdEquation_ExpDynamic() const
{
    return ZULMRSBSPQuadrupleMaker::FromDoubles<ZULExpDynamic>(m_Coords);
}

ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSPCartesianPlane::GetStdEquation_ExpInterval() const
{
    const ZULExpRounding rounding;
    return ZULMRSBSPQuadrupleMaker::FromDoubles<ZULExpInterval>(m_Coords);
}

ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> ZULMRSBSPCartesianPlane::GetStdEquation_FloatRing() const
{
    return ZULMRSBSPQuadrupleMaker::FromDoubles<ZULExpFloatRingExtensionTS>(m_Coords);
}

std::array<double, 4> ZULMRSBSPCartesianPlane::GetCoords() const
{
    return m_Coords;
}

double ZULMRSBSPCartesianPlane::GetDouble(int index) const
{
    return m_Coords[static_cast<std::size_t>(index)];
}

ZULMathVector ZULMRSBSPCartesianPlane::GetNormalVector() const
{
    return {m_Coords[0], m_Coords[1], m_Coords[2]};
}

void ZULMRSBSPCartesianPlane::SetCoords(const std::array<double, 4>& equation)
{
    m_Coords = equation;
    m_IntegerForm = ZULMRSBSPIntegerForms::OfPlane(m_Coords);
}
