#ifndef ZULMRSBSPDirectReads_h
#define ZULMRSBSPDirectReads_h

#include <array>
#include <typeinfo>

#include "ZULExpDynamic.h"
#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPCartesianPoint.h"
#include "ZULMRSBSPIntegerForm.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"

/// The data of objects whose class is exactly the library's: no class derived from it can tell. Addresses of
/// type descriptions are compared; should one stand twice in a process, the accessors are called.
struct ZULMRSBSPDirectReads {
    /// The coefficients; null for any other plane.
    static const std::array<double, 4>* Coords(const ZULMRSBSPPlane& plane)
    {
        return Is<ZULMRSBSPCartesianPlane>(plane)
                   ? &static_cast<const ZULMRSBSPCartesianPlane&>(plane).m_Coords
                   : nullptr;
    }
    /// The coordinates; null for any other point.
    static const std::array<double, 3>* Coordinates(const ZULMRSBSPPoint& point)
    {
        return Is<ZULMRSBSPCartesianPoint>(point)
                   ? &static_cast<const ZULMRSBSPCartesianPoint&>(point).m_Coordinates
                   : nullptr;
    }
    static bool Is3PlanesPoint(const ZULMRSBSPPoint& point) { return Is<ZULMRSBSP3PlanesPoint>(point); }
    /// What a three-planes point keeps; null when it is not valid.
    static const std::array<ZULExpDynamic, 4>* Representation(const ZULMRSBSP3PlanesPoint& point)
    {
        return point.HasRepresentation() ? &point.m_Representation : nullptr;
    }
    static constexpr int NotCanonical = -1;
    static constexpr int NotRead = -2;
    /// The axis of a Cartesian plane's normal where that is a signed unit axis, otherwise NotCanonical;
    /// NotRead for any other plane.
    static int CanonicalAxis(const ZULMRSBSPPlane& plane)
    {
        return Is<ZULMRSBSPCartesianPlane>(plane)
                   ? static_cast<const ZULMRSBSPCartesianPlane&>(plane).m_CanonicalAxis
                   : NotRead;
    }
    static bool Is3PointsPlane(const ZULMRSBSPPlane& plane) { return Is<ZULMRSBSP3PointsPlane>(plane); }
    /// The integers that a plane or a point keeps; null for one of another class.
    static const ZULMRSBSPIntegerForm* Integers(const ZULMRSBSPPlane& plane)
    {
        if (Is<ZULMRSBSPCartesianPlane>(plane)) [[likely]] {
            return &static_cast<const ZULMRSBSPCartesianPlane&>(plane).m_IntegerForm;
        }
        return Is3PointsPlane(plane) ? &static_cast<const ZULMRSBSP3PointsPlane&>(plane).m_IntegerForm
                                     : nullptr;
    }
    static const ZULMRSBSPIntegerForm* Integers(const ZULMRSBSPPoint& point)
    {
        if (Is3PlanesPoint(point)) [[likely]] {
            return &static_cast<const ZULMRSBSP3PlanesPoint&>(point).m_IntegerForm;
        }
        return Is<ZULMRSBSPCartesianPoint>(point)
                   ? &static_cast<const ZULMRSBSPCartesianPoint&>(point).m_IntegerForm
                   : nullptr;
    }
    /// Those of a plane where they are exact; null also for no plane.
    static const ZULMRSBSPIntegerForm* ExactIntegers(const ZULMRSBSPPlane* plane)
    {
        const ZULMRSBSPIntegerForm* form = plane != nullptr ? Integers(*plane) : nullptr;
        return form != nullptr && form->IsExact() ? form : nullptr;
    }

private:
    template <class Class, class Base>
    static bool Is(const Base& object)
    {
        return &typeid(object) == &typeid(Class);
    }
};

#endif
