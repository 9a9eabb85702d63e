#include "ZULMRSBSPPoint.h"

#include <new>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSPCartesianPoint.h"
#include "ZULMRSBSPDirectReads.h"
#include "ZULMRSBSPEquation.h"

namespace
{
using PlaneTriple = std::array<ZULMRSBSPPlane*, 3>;

/// Told without a call: a plane that is not canonical comes before any that would have to be asked.
bool IsSurelyNotCanonical(const PlaneTriple& planes)
{
    for (const ZULMRSBSPPlane* plane : planes) {
        const int axis = ZULMRSBSPDirectReads::CanonicalAxis(*plane);
        if (axis < 0) {
            return axis == ZULMRSBSPDirectReads::NotCanonical;
        }
    }
    return false;
}

double Coefficient(const ZULMRSBSPPlane& plane, int index)
{
    const std::array<double, 4>* coords = ZULMRSBSPDirectReads::Coords(plane);
    return coords != nullptr ? (*coords)[static_cast<std::size_t>(index)] : plane.GetDouble(index);
}
}  // namespace

unsigned int ZULMRSBSPPoint::m_GID = 0;

ZULMRSBSPPoint::ZULMRSBSPPoint() : m_Planes{} {}

ZULMRSBSPPoint::ZULMRSBSPPoint(const std::array<ZULMRSBSPPlane*, 3>& planes) : m_Planes(planes)
{
    for (ZULMRSBSPPlane* plane : m_Planes) {
        if (plane != nullptr) {
            plane->AddRef();
        }
    }
}

// The references are taken all the same: the caller keeps its own.
ZULMRSBSPPoint::ZULMRSBSPPoint(std::array<ZULMRSBSPPlane*, 3>&& planes)
    : ZULMRSBSPPoint(static_cast<const std::array<ZULMRSBSPPlane*, 3>&>(planes))
{
}

ZULMRSBSPPoint::ZULMRSBSPPoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3)
    : ZULMRSBSPPoint(std::array<ZULMRSBSPPlane*, 3>{p1, p2, p3})
{
}

ZULMRSBSPPoint::ZULMRSBSPPoint(const ZULMRSBSPPoint&) = default;
ZULMRSBSPPoint& ZULMRSBSPPoint::operator=(const ZULMRSBSPPoint&) = default;

ZULMRSBSPPoint::~ZULMRSBSPPoint()
{
    for (ZULMRSBSPPlane*& plane : m_Planes) {
        ZULMRSBSPPlane::Replace(plane, nullptr);
    }
}

bool ZULMRSBSPPoint::ReplaceInTriple(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane)
{
    bool found = false;
    for (ZULMRSBSPPlane*& plane : m_Planes) {
        if (plane == oldPlane) {
            found = true;
            ZULMRSBSPPlane::Replace(plane, newPlane);
        }
    }
    return found;
}

ZULMRSBSPPoint* ZULMRSBSPPointNS::CreatePoint(const ZULMathPoint& coordinates)
{
    ZULMRSBSPPoint* point = new (std::nothrow) ZULMRSBSPCartesianPoint(coordinates);
    const bool isIncomplete = point != nullptr && (point->GetP1() == nullptr || point->GetP2() == nullptr ||
                                                   point->GetP3() == nullptr);
    if (isIncomplete) {
        point->Release();
        return nullptr;
    }
    return point;
}

ZULMRSBSPPoint* ZULMRSBSPPointNS::CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                              bool& isValid, bool tryExactCartesian)
{
    isValid = false;
    if (p1 == nullptr || p2 == nullptr || p3 == nullptr) {
        return nullptr;
    }
    const std::array<ZULMRSBSPPlane*, 3> planes = {p1, p2, p3};
    if (tryExactCartesian && !IsSurelyNotCanonical(planes)) {
        const auto [isExact, coordinates] = IsIntersectionExactCartesian(planes);
        if (isExact) {
            ZULMRSBSPPoint* point = new (std::nothrow) ZULMRSBSPCartesianPoint(planes, coordinates);
            isValid = point != nullptr;
            return point;
        }
    }
    return new (std::nothrow) ZULMRSBSP3PlanesPoint(planes, isValid);
}

ZULMRSBSPPoint* ZULMRSBSPPointNS::CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                              const ZULMathPoint& coordinates)
{
    return new (std::nothrow) ZULMRSBSPCartesianPoint(p1, p2, p3, coordinates);
}

std::pair<bool, std::array<double, 3>> ZULMRSBSPPointNS::IsIntersectionExactCartesian(
    const std::array<ZULMRSBSPPlane*, 3>& planes)
{
    // Planes on one axis are deliberately let through; the axis that none has then keeps its zero.
    std::array<double, 3> coordinates{};
    std::array<std::size_t, 3> axes{};
    std::array<double, 3> k{};
    for (const ZULMRSBSPPlane* plane : planes) {
        if (plane == nullptr) {
            return {false, coordinates};
        }
    }
    for (std::size_t i = 0; i < planes.size(); ++i) {
        int axis = -1;
        if (!ZULMRSBSPIsCanonical(*planes[i], axis)) {
            return {false, coordinates};
        }
        axes[i] = static_cast<std::size_t>(axis);
        k[i] = Coefficient(*planes[i], axis);
    }
    // Products of an offset and ones: exact, unless the caller has denormals treated as zero.
    const ZULExpFloatScope scope;
    const double f = -(k[2] * (k[0] * k[1]));
    const std::array<double, 3> factors = {(k[2] * k[1]) * f, (k[2] * k[0]) * f, (k[1] * k[0]) * f};
    for (std::size_t i = 0; i < planes.size(); ++i) {
        double& coordinate = coordinates[axes[i]];
        coordinate = Coefficient(*planes[i], 3) * factors[i];
        ZULExpProcessor::Pin(coordinate);
    }
    return {true, coordinates};
}
