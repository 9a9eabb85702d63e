#ifndef ZULMRSBSPPlaneFactory_h
#define ZULMRSBSPPlaneFactory_h

#include <array>
#include <cstdint>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSErrorTypes.h"
#include "ZULMathOBB.h"

/// Makes shared Cartesian planes. The operations mean what ZULMRSBSPObjectFactory says of those of the same
/// name.
class ZULMRSBSPPlaneFactory
{
public:
    virtual ZULMRSErrorTypes SetGriddingTolerance(const ZULMathOBB& box, double tolerance) = 0;
    virtual ZULMRSBSPPlane* CreatePlane(const std::array<double, 4>& equation, bool& isOpposite,
                                        unsigned int flags) = 0;
    virtual void QuantizePlaneEquation(std::array<double, 4>& equation) = 0;
    virtual std::uint64_t Size() = 0;
    virtual ZULMRSErrorTypes Tass() = 0;
    virtual ~ZULMRSBSPPlaneFactory() = default;
};

/// A new plane factory, which the caller deletes; null when memory is exhausted.
ZULMRSBSPPlaneFactory* ZULMRSCreatePlaneFactory(bool geometricIdentity);

#endif
