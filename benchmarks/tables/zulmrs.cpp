// The library's object factory.
#include "Workloads.h"
#include "ZULBenchMain.h"
#include "ZULMRSBSPObjectFactory.h"

namespace
{
struct Factory {
    const std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory{ZULMRSCreateObjectFactory(false)};
};

struct Peer {
    struct Points : Factory {
        ZULMRSBSPPoint* Request(const ZULBench::PlaneTriple& planes)
        {
            bool isValid = false;
            return m_Factory->CreatePoint(planes, isValid);
        }
    };
    struct Edges : Factory {
        ZULMRSBSPPoint* Request(const ZULBench::EdgeRequest& edge)
        {
            return m_Factory->CreatePointOnEdge(edge.m_Planes, edge.m_Start, edge.m_End, edge.m_Planes[2]);
        }
    };
    struct Planes : Factory {
        ZULMRSBSPPlane* Request(const ZULBench::Equation& equation)
        {
            bool isOpposite = false;
            return m_Factory->CreatePlane(equation, isOpposite, 0);
        }
    };
};
}  // namespace

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    ZULBench::RegisterTables<Peer>();
}
