#include "ZULMRSCuttingSolid.h"

#include "ZULExpFloatStatus.h"
#include "ZULMRSCuttingSolidImpl.h"

// What computes does so in the default floating-point environment and leaves the caller's as it was. (A batch
// does by parts, because it calls the caller back.)

ZULMRSCuttingSolid::ZULMRSCuttingSolid(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options)
{
    const ZULExpFloatScope scope;
    m_Impl = std::make_unique<Impl>(stock, options);
}

/// The factory tells what share of its planes was used again.
ZULMRSCuttingSolid::~ZULMRSCuttingSolid()
{
    const ZULExpFloatScope scope;
    m_Impl.reset();
}

bool ZULMRSCuttingSolid::Subtract(const ZULMRSConvexTool& tool)
{
    const ZULExpFloatScope scope;
    return m_Impl->Apply(tool, Impl::Operation::Subtract);
}

std::vector<bool> ZULMRSCuttingSolid::SubtractAll(const std::vector<ZULMRSConvexTool>& tools,
                                                  const ProgressCall& progress)
{
    return m_Impl->SubtractAll(tools, progress);
}

bool ZULMRSCuttingSolid::KeepInside(const ZULMRSConvexTool& tool)
{
    const ZULExpFloatScope scope;
    return m_Impl->Apply(tool, Impl::Operation::KeepInside);
}

std::size_t ZULMRSCuttingSolid::Split(const std::array<double, 4>& equation)
{
    const ZULExpFloatScope scope;
    return m_Impl->Split(equation);
}

std::size_t ZULMRSCuttingSolid::GetNbCells() const
{
    return m_Impl->GetNbCells();
}

std::size_t ZULMRSCuttingSolid::GetNbSurfaceFaces() const
{
    return m_Impl->GetNbSurfaceFaces();
}

std::vector<ZULMRSBSPPolyhedron*> ZULMRSCuttingSolid::GetCells() const
{
    return m_Impl->GetCellsInTreeOrder();
}

double ZULMRSCuttingSolid::GetVolume() const
{
    const ZULExpFloatScope scope;
    return m_Impl->GetVolume();
}

ZULMRSSurfaceMesh ZULMRSCuttingSolid::ExtractSurface() const
{
    const ZULExpFloatScope scope;
    return m_Impl->ExtractSurface();
}

void ZULMRSCuttingSolid::Compact()
{
    m_Impl->Compact();
}

ZULMRSBSPObjectFactory& ZULMRSCuttingSolid::GetFactory()
{
    return m_Impl->GetFactory();
}
