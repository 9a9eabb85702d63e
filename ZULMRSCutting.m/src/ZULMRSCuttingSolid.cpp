#include "ZULMRSCuttingSolid.h"

#include "ZULMRSCuttingSolidImpl.h"

ZULMRSCuttingSolid::ZULMRSCuttingSolid(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options)
    : m_Impl(std::make_unique<Impl>(stock, options))
{
}

ZULMRSCuttingSolid::~ZULMRSCuttingSolid() = default;

bool ZULMRSCuttingSolid::Subtract(const ZULMRSConvexTool& tool)
{
    return m_Impl->Apply(tool, Impl::Operation::Subtract);
}

std::vector<bool> ZULMRSCuttingSolid::SubtractAll(const std::vector<ZULMRSConvexTool>& tools,
                                                  const ProgressCall& progress)
{
    return m_Impl->SubtractAll(tools, progress);
}

bool ZULMRSCuttingSolid::KeepInside(const ZULMRSConvexTool& tool)
{
    return m_Impl->Apply(tool, Impl::Operation::KeepInside);
}

std::size_t ZULMRSCuttingSolid::Split(const std::array<double, 4>& equation)
{
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
    return m_Impl->GetVolume();
}

ZULMRSSurfaceMesh ZULMRSCuttingSolid::ExtractSurface() const
{
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
