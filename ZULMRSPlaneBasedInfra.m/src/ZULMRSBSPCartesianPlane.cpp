#include "ZULMRSBSPCartesianPlane.h"

#include <cstddef>
#include <cstdint>

#include "ZULExpRounding.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPQuadrupleHolder.h"

namespace
{
signed char CanonicalAxis(const std::array<double, 4>& equation)
{
    using ZULMRSBSPFormulas::MagnitudeBits;
    const std::uint64_t a = MagnitudeBits(equation[0]);
    const std::uint64_t b = MagnitudeBits(equation[1]);
    const std::uint64_t c = MagnitudeBits(equation[2]);
    // One of them is 1 and the others are zeros just when, put together, they are 1 and only one has a bit.
    const int nbNonzero = static_cast<int>(a != 0) + static_cast<int>(b != 0) + static_cast<int>(c != 0);
    if ((a | b | c) != MagnitudeBits(1.0) || nbNonzero != 1) {
        return -1;
    }
    return static_cast<signed char>(static_cast<int>(b != 0) + 2 * static_cast<int>(c != 0));
}
}  // namespace

ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane(const std::array<double, 4>& equation)
    : ZULMRSBSPCartesianPlane(equation, ZULMRSBSPIntegerForms::OfPlane(equation))
{
}

ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane(const std::array<double, 4>& equation,
                                                 const ZULMRSBSPIntegerForm& integerForm)
    : m_CanonicalAxis(CanonicalAxis(equation)), m_IntegerForm(integerForm), m_Coords(equation)
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
    axis = m_CanonicalAxis;
    return axis >= 0;
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
    m_CanonicalAxis = CanonicalAxis(equation);
    m_Coords = equation;
    m_IntegerForm = ZULMRSBSPIntegerForms::OfPlane(m_Coords);
}
