#ifndef ZULBenchMain_h
#define ZULBenchMain_h

/// What every benchmark executable says of itself; ZUL_BENCH_DEFINE_PEER() defines it from the build.
struct ZULBenchPeer {
    const char* m_Group;
    const char* m_Peer;
    bool m_Exact;
};
extern const ZULBenchPeer zulBenchPeer;

/// Registers the benchmarks of this executable; called once by main().
void ZULBenchRegister();

#define ZUL_BENCH_DEFINE_PEER()                               \
    const ZULBenchPeer zulBenchPeer                           \
    {                                                         \
        ZUL_BENCH_GROUP, ZUL_BENCH_PEER, ZUL_BENCH_EXACT != 0 \
    }

#endif
