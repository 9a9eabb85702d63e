#include "ZULMRSBSPCartesianPoint.h"

#include <algorithm>
#include <utility>

#include "ZULExpRounding.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPQuadrupleHolder.h"

ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint(const ZULMathPoint& coordinates)
    : m_IntegerForm(ZULMRSBSPIntegerForms::OfCoordinates({coordinates.x, coordinates.y, coordinates.z})),
      m_Coordinates{coordinates.x, coordinates.y, coordinates.z}
{
    // The point is the creator of these planes and so their one owner: no further reference.
    m_Planes = {ZULMRSBSPPlaneNS::CreateCartesianPlane(1.0, 0.0, 0.0, -coordinates.x),
                ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 1.0, 0.0, -coordinates.y),
                ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 0.0, 1.0, -coordinates.z)};
}

ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint(std::array<ZULMRSBSPPlane*, 3> planes,
                                                 std::array<double, 3> coordinates)
    : ZULMRSBSPPoint(planes),
      m_IntegerForm(ZULMRSBSPIntegerForms::OfCoordinates(coordinates)),
      m_Coordinates(coordinates)
{
    Orient();
}

ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                                 const ZULMathPoint& coordinates)
    : ZULMRSBSPPoint(p1, p2, p3),
      m_IntegerForm(ZULMRSBSPIntegerForms::OfCoordinates({coordinates.x, coordinates.y, coordinates.z})),
      m_Coordinates{coordinates.x, coordinates.y, coordinates.z}
{
    Orient();
}

ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint(const ZULMRSBSPCartesianPoint&) = default;
ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint(ZULMRSBSPCartesianPoint&&) noexcept = default;
ZULMRSBSPCartesianPoint& ZULMRSBSPCartesianPoint::operator=(const ZULMRSBSPCartesianPoint&) = default;
ZULMRSBSPCartesianPoint& ZULMRSBSPCartesianPoint::operator=(ZULMRSBSPCartesianPoint&&) noexcept = default;
ZULMRSBSPCartesianPoint::~ZULMRSBSPCartesianPoint() = default;

void ZULMRSBSPCartesianPoint::Orient()
{
    const bool isComplete = std::find(m_Planes.begin(), m_Planes.end(), nullptr) == m_Planes.end();
    if (isComplete &&
        ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*m_Planes[0], *m_Planes[1], *m_Planes[2]) < 0) {
        std::swap(m_Planes[1], m_Planes[2]);
    }
}

ZULMRSBSPPointType ZULMRSBSPCartesianPoint::GetType() const
{
    return ZULMRSBSPPointType_Cartesian;
}

ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSPCartesianPoint::GetCartesianRepresentation_ExpDynamic() const
{
    ZULMRSBSPQuadrupleMaker::Owner<ZULExpDynamic> representation =
        ZULMRSBSPQuadrupleMaker::Allocate<ZULExpDynamic>();
    if (representation != nullptr) {
        // The one of W has been through no rounding step at all: count 0.
        *representation = {ZULExpDynamic(m_Coordinates[0]), ZULExpDynamic(m_Coordinates[1]),
                           ZULExpDynamic(m_Coordinates[2]), ZULExpDynamic(1.0, 1.0, 0)};
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(representation));
}

ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSPCartesianPoint::GetCartesianRepresentation_ExpInterval() const
{
    const ZULExpRounding rounding;
    return ZULMRSBSPQuadrupleMaker::FromDoubles<ZULExpInterval>(
        {m_Coordinates[0], m_Coordinates[1], m_Coordinates[2], 1.0});
}

ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> ZULMRSBSPCartesianPoint::GetCartesianRepresentation_FloatRing()
    const
{
    return ZULMRSBSPQuadrupleMaker::FromDoubles<ZULExpFloatRingExtensionTS>(
        {m_Coordinates[0], m_Coordinates[1], m_Coordinates[2], 1.0});
}

ZULMRSBSPQuadruple<double> ZULMRSBSPCartesianPoint::GetApproximatedXYZError() const
{
    return ZULMRSBSPQuadrupleMaker::FromDoubles<double>(
        {m_Coordinates[0], m_Coordinates[1], m_Coordinates[2], 0.0});
}

ZULMathPoint ZULMRSBSPCartesianPoint::GetApproximatedPoint() const
{
    return {m_Coordinates[0], m_Coordinates[1], m_Coordinates[2]};
}

std::array<double, 3> ZULMRSBSPCartesianPoint::GetApproximatedXYZ() const
{
    return m_Coordinates;
}

bool ZULMRSBSPCartesianPoint::ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane,
                                                            ZULMRSBSPPlane* oldPlane)
{
    const bool found = ReplaceInTriple(newPlane, oldPlane);
    if (found) {
        Orient();
    }
    return found;
}
