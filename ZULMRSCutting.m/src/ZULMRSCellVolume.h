#ifndef ZULMRSCellVolume_h
#define ZULMRSCellVolume_h

#include <span>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSCompensatedSum.h"

/// Six times the volume of some cells; see ZULMRSVolumeOfCells.
ZULMRSCompensatedSum ZULMRSSumVolumes(std::span<ZULMRSBSPPolyhedron* const> cells);

#endif
