#ifndef ZULBenchZulmrsBytes_h
#define ZULBenchZulmrsBytes_h

namespace ZULBench
{
/// Registers "bytes/object", whose counters tell the size of an object and the memory that one takes with all
/// that it keeps and what the heap adds.
void RegisterBytes();
}  // namespace ZULBench

#endif
