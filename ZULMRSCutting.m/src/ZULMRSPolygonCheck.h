#ifndef ZULMRSPolygonCheck_h
#define ZULMRSPolygonCheck_h

#include <string>

#include "ZULMRSBSPPolygon.h"

/// What is wrong with a polygon taken by itself, as the end of a sentence that begins with its name ("has no
/// supporting plane"); empty when nothing is. Exact.
std::string ZULMRSFindPolygonFault(const ZULMRSBSPPolygon& polygon);

/// The side of a plane on which a point lies (1 in front, -1 behind, 0 on it). Unlike the predicate, takes a
/// point with coordinates of its own at these coordinates even for a plane that it claims to lie on.
int ZULMRSTrueSide(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point);

#endif
