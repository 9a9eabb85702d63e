#ifndef ZULMRSBSPPointFactory_h
#define ZULMRSBSPPointFactory_h

#include <array>
#include <cstdint>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMathPoint.h"

/// Makes shared points. The operations mean what ZULMRSBSPObjectFactory says of those of the same name; Size
/// counts the points shared by planes.
class ZULMRSBSPPointFactory
{
public:
    virtual ZULMRSBSPPoint* CreatePoint(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3,
                                        const ZULMathPoint* coordinates) = 0;
    virtual ZULMRSBSPPoint* CreatePoint(const ZULMathPoint& coordinates) = 0;
    virtual ZULMRSBSPPoint* CreatePoint(const std::array<ZULMRSBSPPlane*, 3>& planes, bool& isValid) = 0;
    virtual ZULMRSBSPPoint* CreatePointOnEdge(const std::array<ZULMRSBSPPlane*, 3>& planes,
                                              ZULMRSBSPPoint* start, ZULMRSBSPPoint* end,
                                              ZULMRSBSPPlane* cuttingPlane) = 0;
    virtual std::uint64_t Size() = 0;
    virtual ZULMRSErrorTypes Tass() = 0;
    virtual ~ZULMRSBSPPointFactory() = default;
};

/// A new point factory, which the caller deletes; null when memory is exhausted.
ZULMRSBSPPointFactory* ZULMRSCreatePointFactory();

#endif
