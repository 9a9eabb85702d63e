#ifndef MillSweep_h
#define MillSweep_h

#include "MillLattice.h"
#include "MillTool.h"
#include "ZULMRSConvexTool.h"

/// All that a tool passes on the straight way from start to end of its tip: a convex solid, in nanometres, as
/// half-spaces. Its planes are those of the tool where that reaches farthest, and one along the way through
/// every edge of the tool's silhouette.
///
/// Equal planes come out as equal doubles: a normal is the shortest whole vector of its direction, an offset
/// is the exact whole number rounded once, and neither depends on which of several collinear moves is meant.
/// With the lengths and resolutions of real programs both mostly fit a double exactly, and then the planes of
/// a move and of the next meet exactly in the corners of the tool between them. A normal too long for doubles
/// is turned by the rounding of its components; its offset then is that of the support of the whole solid, so
/// that the solid shrinks nowhere by more than the rounding of one offset.
ZULMRSConvexTool MillSweep(const MillTool& tool, const MillVector& start, const MillVector& end);

#endif
