// CGAL's kernel of exact predicates on inexact constructions: cannot meet three planes in an exact point.
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include "KernelPeer.h"
#include "ZULBenchMain.h"

ZUL_BENCH_DEFINE_PEER();
void ZULBenchRegister()
{
    using Peer = ZULBench::KernelPeer<CGAL::Exact_predicates_inexact_constructions_kernel>;
    ZULBench::RegisterPredicates<Peer>();
}
