#ifndef ZULMRSPlace_h
#define ZULMRSPlace_h

#include <array>

#include "ZULMRSBSPPoint.h"

/// Where a point lies: no coordinate is further from the true one than the error, which is infinite where the
/// point's kept numbers tell nothing.
struct ZULMRSPlace {
    std::array<double, 3> m_At{};
    double m_Error = 0.0;

    static ZULMRSPlace Of(const ZULMRSBSPPoint& point);
};

#endif
