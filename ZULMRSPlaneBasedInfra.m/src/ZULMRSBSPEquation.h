#ifndef ZULMRSBSPEquation_h
#define ZULMRSBSPEquation_h

#include <array>
#include <cstddef>
#include <optional>
#include <type_traits>

#include "ZULExpDynamic.h"
#include "ZULExpInterval.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPDirectReads.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPQuadrupleHolder.h"

// What the predicates read of planes and points, without the heap wherever the object's own data suffice: a
// Cartesian plane is its doubles. Where an accessor could be overridden it is called; only an object of
// exactly the library's class is read past it.

inline bool ZULMRSBSPIsCartesian(const ZULMRSBSPPlane& plane)
{
    return ZULMRSBSPDirectReads::Coords(plane) != nullptr || plane.GetType() == ZULMRSBSPPlaneType_Cartesian;
}

/// As the plane's IsCanonical.
inline bool ZULMRSBSPIsCanonical(const ZULMRSBSPPlane& plane, int& axis)
{
    const int canonicalAxis = ZULMRSBSPDirectReads::CanonicalAxis(plane);
    if (canonicalAxis == ZULMRSBSPDirectReads::NotRead) [[unlikely]] {
        return plane.IsCanonical(axis);
    }
    axis = canonicalAxis;
    return axis >= 0;
}

/// The doubles of a plane known to be Cartesian.
inline std::array<double, 4> ZULMRSBSPCoords(const ZULMRSBSPPlane& plane)
{
    const std::array<double, 4>* coords = ZULMRSBSPDirectReads::Coords(plane);
    return coords != nullptr ? *coords : plane.GetCoords();
}

/// The defining points of a three-points plane; empty for any other plane.
inline std::optional<std::array<std::array<double, 3>, 3>> ZULMRSBSPDefiningPoints(
    const ZULMRSBSPPlane& plane)
{
    if (ZULMRSBSPDirectReads::Is3PointsPlane(plane)) [[likely]] {
        return static_cast<const ZULMRSBSP3PointsPlane&>(plane).Get3Points();
    }
    if (plane.GetType() == ZULMRSBSPPlaneType_3Points) {
        if (const auto* derived = dynamic_cast<const ZULMRSBSP3PointsPlane*>(&plane)) {
            return derived->Get3Points();
        }
    }
    return std::nullopt;
}

/// A plane's equation in one arithmetic, to be read in the environment of that arithmetic. Empty when the
/// plane cannot deliver it.
template <class Number>
class ZULMRSBSPEquation
{
public:
    explicit ZULMRSBSPEquation(const ZULMRSBSPPlane& plane)
    {
        if (ZULMRSBSPIsCartesian(plane)) {
            Keep(ZULMRSBSPFormulas::Convert<Number>(ZULMRSBSPCoords(plane)));
        } else if (!ComputesItself || !KeepFromPoints(plane)) {
            m_Held.emplace(plane.GetStdEquationTpl<Number>());
            m_Numbers = *m_Held ? &**m_Held : nullptr;
        }
    }
    ZULMRSBSPEquation(const ZULMRSBSPEquation&) = delete;
    ZULMRSBSPEquation& operator=(const ZULMRSBSPEquation&) = delete;

    explicit operator bool() const { return m_Numbers != nullptr; }
    const std::array<Number, 4>& operator*() const { return *m_Numbers; }
    const Number& operator[](std::size_t index) const { return (*m_Numbers)[index]; }

private:
    // The filtered equation of a three-points plane is kept by the plane.
    static constexpr bool ComputesItself = !std::is_same_v<Number, ZULExpDynamic>;

    void Keep(const std::array<Number, 4>& numbers)
    {
        m_Computed = numbers;
        m_Numbers = &m_Computed;
    }
    bool KeepFromPoints(const ZULMRSBSPPlane& plane)
    {
        using namespace ZULMRSBSPFormulas;
        if (!ZULMRSBSPDirectReads::Is3PointsPlane(plane)) {
            return false;
        }
        const auto points = static_cast<const ZULMRSBSP3PointsPlane&>(plane).Get3Points();
        Keep(PlaneThroughPoints(Convert<Number>(points[0]), Convert<Number>(points[1]),
                                Convert<Number>(points[2])));
        return true;
    }

    std::array<Number, 4> m_Computed;
    std::optional<ZULMRSBSPQuadrupleHolder<Number>> m_Held;
    const std::array<Number, 4>* m_Numbers = nullptr;
};

/// A point's homogeneous representation in one arithmetic, to be read in the environment of that arithmetic.
/// Empty when the point cannot deliver it.
template <class Number>
class ZULMRSBSPRepresentation
{
public:
    explicit ZULMRSBSPRepresentation(const ZULMRSBSPPoint& point)
    {
        if (!KeepFromCoordinates(point) && !KeepFromPlanes(point)) {
            m_Held.emplace(point.GetCartesianRepresentationTpl<Number>());
            m_Numbers = *m_Held ? &**m_Held : nullptr;
        }
    }
    ZULMRSBSPRepresentation(const ZULMRSBSPRepresentation&) = delete;
    ZULMRSBSPRepresentation& operator=(const ZULMRSBSPRepresentation&) = delete;

    explicit operator bool() const { return m_Numbers != nullptr; }
    const std::array<Number, 4>& operator*() const { return *m_Numbers; }
    const Number& operator[](std::size_t index) const { return (*m_Numbers)[index]; }

private:
    static constexpr bool IsKeptByPoint = std::is_same_v<Number, ZULExpDynamic>;

    static Number One()
    {
        if constexpr (IsKeptByPoint) {
            return ZULExpDynamic(1.0, 1.0, 0);  // no rounding step at all
        } else {
            return Number(1.0);
        }
    }
    void Keep(const std::array<Number, 4>& numbers)
    {
        m_Computed = numbers;
        m_Numbers = &m_Computed;
    }
    bool KeepFromCoordinates(const ZULMRSBSPPoint& point)
    {
        const std::array<double, 3>* p = ZULMRSBSPDirectReads::Coordinates(point);
        if (p != nullptr) {
            Keep({Number((*p)[0]), Number((*p)[1]), Number((*p)[2]), One()});
        }
        return p != nullptr;
    }
    bool KeepFromPlanes(const ZULMRSBSPPoint& point)
    {
        if (!ZULMRSBSPDirectReads::Is3PlanesPoint(point)) {
            return false;
        }
        if constexpr (IsKeptByPoint) {
            m_Numbers =
                ZULMRSBSPDirectReads::Representation(static_cast<const ZULMRSBSP3PlanesPoint&>(point));
        } else if (point.GetP1() != nullptr && point.GetP2() != nullptr && point.GetP3() != nullptr) {
            const ZULMRSBSPEquation<Number> p(*point.GetP1());
            const ZULMRSBSPEquation<Number> q(*point.GetP2());
            const ZULMRSBSPEquation<Number> r(*point.GetP3());
            if (p && q && r) {
                Keep(ZULMRSBSPFormulas::MeetingPoint(*p, *q, *r));
            }
        }
        return true;
    }

    std::array<Number, 4> m_Computed;
    std::optional<ZULMRSBSPQuadrupleHolder<Number>> m_Held;
    const std::array<Number, 4>* m_Numbers = nullptr;
};

#endif
