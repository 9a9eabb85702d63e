#ifndef ZULMRSBSPInstanceCounters_h
#define ZULMRSBSPInstanceCounters_h

#include <atomic>

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPPolyhedron.h"

/// The construction counters of the four shared classes. They only ever grow, and are printed at unload.
struct ZULMRSBSPInstanceCounters {
    static unsigned int GetPlanes() { return Read(ZULMRSBSPPlane::m_GID); }
    static unsigned int GetPoints() { return Read(ZULMRSBSPPoint::m_GID); }
    static unsigned int GetPolygons() { return Read(ZULMRSBSPPolygon::m_GID); }
    static unsigned int GetPolyhedra() { return Read(ZULMRSBSPPolyhedron::m_GID); }

    /// One construction more. A load and a store, not one atomic step: constructions at the same moment may
    /// lose counts, which a diagnostic can bear, but none is a data race.
    static void Increment(unsigned int& counter)
    {
        const std::atomic_ref<unsigned int> shared(counter);
        shared.store(shared.load(std::memory_order_relaxed) + 1U, std::memory_order_relaxed);
    }

private:
    static unsigned int Read(unsigned int& counter)
    {
        return std::atomic_ref<unsigned int>(counter).load(std::memory_order_relaxed);
    }
};

#endif
