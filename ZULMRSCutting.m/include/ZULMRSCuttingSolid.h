#ifndef ZULMRSCuttingSolid_h
#define ZULMRSCuttingSolid_h

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSConvexTool.h"
#include "ZULMRSCuttingExport.h"
#include "ZULMRSSurfaceMesh.h"
#include "ZULMathOBB.h"

/// How a ZULMRSCuttingSolid keeps its cells compact and its planes apart. Lengths in the unit of the
/// coordinates.
struct ZULMRSCuttingOptions {
    /// Leaves of the spatial division that a tool cuts are refined down to this size first; 0: a 12th of the
    /// largest extent.
    double m_LeafSize = 0.0;
    /// A leaf with more cells than this is divided further (down to a 16th of the leaf size).
    std::size_t m_MaxCellsPerLeaf = 40;
    /// When positive, plane equations are snapped to the grid of this tolerance.
    double m_GriddingTolerance = 0.0;
    /// Threads that SubtractAll() and the reading of the result use; 0: one a processor. The result does not
    /// depend on it.
    std::size_t m_NbThreads = 1;
};

/// A solid under cutting: convex cells that conform (a polygon between two cells is one shared object, held
/// by both with opposite orientations; a polygon held once is on the surface), inside a spatial division by
/// axis-parallel planes, so that an operation costs by what it touches. Every decision is exact. All planes
/// come from the solid's own object factory. Not synchronised: one solid is used by one thread at a time,
/// which may have it use more. Nothing depends on the caller's floating-point environment, which is left as
/// it was.
class ZULMRSCutting_API ZULMRSCuttingSolid
{
public:
    /// The stock: a box. An empty solid when a plane of the box is refused (an axis of length zero or not
    /// finite) or the box has no volume.
    explicit ZULMRSCuttingSolid(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options = {});
    ~ZULMRSCuttingSolid();
    ZULMRSCuttingSolid(const ZULMRSCuttingSolid&) = delete;
    ZULMRSCuttingSolid& operator=(const ZULMRSCuttingSolid&) = delete;

    /// Removes what lies inside the tool; true when anything was removed. A half-space whose normal is
    /// refused (length zero or not finite) is left out. Cells that are cut are joined with neighbours where
    /// both are convex together.
    bool Subtract(const ZULMRSConvexTool& tool);
    /// Told, on the calling thread, which part of the work is done: from 0 to 1, ascending. In the
    /// caller's floating-point environment.
    using ProgressCall = std::function<void(double part)>;
    /// Removes what lies inside any of the tools, as Subtract() of one after the other would, and tells for
    /// each whether it removed anything. The same tools give the same cells whatever the number of threads;
    /// other cells, of the same solid, than tools given one by one.
    std::vector<bool> SubtractAll(const std::vector<ZULMRSConvexTool>& tools,
                                  const ProgressCall& progress = nullptr);
    /// Keeps only what lies inside the tool; true when anything was removed.
    bool KeepInside(const ZULMRSConvexTool& tool);
    /// Splits every cell that the plane (a, b, c, d) crosses; nothing is removed. Returns the number of cells
    /// split.
    std::size_t Split(const std::array<double, 4>& equation);

    /// Number of cells.
    std::size_t GetNbCells() const;
    /// Polygons held by one cell only.
    std::size_t GetNbSurfaceFaces() const;
    /// The cells; borrowed, valid until the next operation.
    std::vector<ZULMRSBSPPolyhedron*> GetCells() const;
    /// As ZULMRSVolumeOfCells of the cells.
    double GetVolume() const;
    /// As ZULMRSExtractSurface of the cells.
    ZULMRSSurfaceMesh ExtractSurface() const;

    /// Drops every shared plane that the cells no longer use. Runs by itself from time to time.
    void Compact();
    /// The factory of planes; borrowed.
    ZULMRSBSPObjectFactory& GetFactory();

private:
    class Impl;
    std::unique_ptr<Impl> m_Impl;
};

#endif
