#ifndef ZULMRSPointLocation_h
#define ZULMRSPointLocation_h

#include "ZULMRSBSPPoint.h"
#include "ZULMathPoint.h"

/// Where a point lies, to the last bits of the largest coordinate. What the point itself approximates loses
/// all its digits where planes that are nearly parallel meet; there the exact numbers are divided.
ZULMathPoint ZULMRSLocatePoint(const ZULMRSBSPPoint& point);

#endif
