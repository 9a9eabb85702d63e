#ifndef ZULMRSBSPObjectFactory_h
#define ZULMRSBSPObjectFactory_h

#include <array>
#include <cstdint>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMRSPlaneBasedInfraExport.h"
#include "ZULMathOBB.h"
#include "ZULMathPoint.h"

/// Flags of ZULMRSBSPObjectFactory::CreatePlane.
enum ZULMRSBSPCreatePlaneFlags : unsigned int {
    ZULMRSBSPCreatePlane_AcceptOpposite =
        1,  ///< also accept a held plane whose equation is the negation of the request
    ZULMRSBSPCreatePlane_Quantize = 2  ///< snap the equation to the grid first
};

/// Makes planes and points and hands the same object to everybody who asks for an equal one. It keeps one
/// reference on each shared object; every pointer returned carries one more, which the caller releases. The
/// creation operations are safe from many threads at once; SetGriddingTolerance, Size, Tass and destruction
/// are not, and must run alone. Deleting the factory drops its references (objects that others hold live on)
/// and writes its statistics.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPObjectFactory
{
public:
    ZULMRSBSPObjectFactory(const ZULMRSBSPObjectFactory& other);
    ZULMRSBSPObjectFactory& operator=(const ZULMRSBSPObjectFactory& other);

    /// Sets the grid of CreatePlane and QuantizePlaneEquation from a working box and a tolerance in the unit
    /// of the coordinates. ZULMRSErrorGriddingTolerance when the tolerance is too tight for the box, or
    /// either is not finite and positive.
    virtual ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) = 0;

    /// The shared plane of an equation; flags as ZULMRSBSPCreatePlaneFlags. isOpposite: the answer is a held
    /// plane that faces the other way. Null for a normal that the quantizer rejects or when memory is
    /// exhausted.
    virtual ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                        unsigned int flags) = 0;

    /// The shared point of three planes in this order; with coordinates (not null), a new point takes them as
    /// exact.
    virtual ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                        const ZULMathPoint* coordinates) = 0;
    /// The shared point of three coordinates.
    virtual ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) = 0;
    /// The shared point of three planes in this order. isValid is written when the point is new (whether the
    /// planes meet in one point) and left alone otherwise. Null when a plane is null.
    virtual ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                        bool& isValid) = 0;
    /// The same for the planes in one array.
    virtual ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) = 0;

    /// The shared point of an edge and a cutting plane; see ZULMRSBSPPointOnEdgeFactory.
    virtual ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes,
                                              ZULMRSBSPPoint* start, ZULMRSBSPPoint* end,
                                              ZULMRSBSPPlane* cuttingPlane) = 0;

    /// Number of shared planes and of points shared by planes.
    virtual std::uint64_t Size() = 0;

    /// Drops shared objects that no client holds any more; writes a line per table.
    virtual ZULMRSErrorTypes Tass() = 0;

    /// Snaps a normal (entries 0 to 2) to the grid in place; the fourth entry is neither read nor written.
    virtual void QuantizePlaneEquation(std::array<double, 4>& equation) = 0;

    virtual ~ZULMRSBSPObjectFactory();

protected:
    ZULMRSBSPObjectFactory();
};

/// A new object factory, which the caller deletes. geometricIdentity: planes are the same when they are
/// exactly coincident and face the same way; otherwise when their four coefficients are equal. Null when
/// memory is exhausted.
ZULMRSPlaneBasedInfra_API ZULMRSBSPObjectFactory* ZULMRSCreateObjectFactory(bool geometricIdentity);

#endif
