#include "ZULBenchMain.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    ZULBenchRegister();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::AddCustomContext("group", zulBenchPeer.m_Group);
    benchmark::AddCustomContext("peer", zulBenchPeer.m_Peer);
    benchmark::AddCustomContext("exact", zulBenchPeer.m_Exact ? "yes" : "no");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
