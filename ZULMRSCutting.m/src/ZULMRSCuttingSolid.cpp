#include "ZULMRSCuttingSolid.h"

#include "ZULMRSCellCheck.h"
#include "ZULMRSCuttingSolidImpl.h"

ZULMRSCuttingSolid::ZULMRSCuttingSolid(const ZULMathOBB& stock, const ZULMRSCuttingOptions& options)
    : m_Impl(std::make_unique<Impl>(stock, options))
{
}

ZULMRSCuttingSolid::~ZULMRSCuttingSolid() = default;

bool ZULMRSCuttingSolid::Subtract(const ZULMRSConvexTool& tool)
{
    return m_Impl->Subtract(tool);
}

bool ZULMRSCuttingSolid::KeepInside(const ZULMRSConvexTool& tool)
{
    return m_Impl->KeepInside(tool);
}

std::size_t ZULMRSCuttingSolid::Split(const std::array<double, 4>& equation)
{
    return m_Impl->Split(equation);
}

std::size_t ZULMRSCuttingSolid::GetNbCells() const
{
    return m_Impl->GetComplex().GetNbCells();
}

std::size_t ZULMRSCuttingSolid::GetNbSurfaceFaces() const
{
    return m_Impl->GetComplex().GetNbSurfaceFaces();
}

std::vector<ZULMRSBSPPolyhedron*> ZULMRSCuttingSolid::GetCells() const
{
    return m_Impl->GetCellsInTreeOrder();
}

double ZULMRSCuttingSolid::GetVolume() const
{
    return ZULMRSVolumeOfCells(GetCells());
}

ZULMRSSurfaceMesh ZULMRSCuttingSolid::ExtractSurface() const
{
    return ZULMRSExtractSurface(GetCells());
}

void ZULMRSCuttingSolid::Compact()
{
    m_Impl->Compact();
}

ZULMRSBSPObjectFactory& ZULMRSCuttingSolid::GetFactory()
{
    return m_Impl->GetFactory();
}
