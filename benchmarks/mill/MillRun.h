#ifndef ZULBenchMillRun_h
#define ZULBenchMillRun_h

#include <cstddef>

namespace ZULBench
{
/// What a run of zulmrs-mill on the raster relief took and wrote.
struct MillRun {
    double m_Seconds = 0;           ///< on the clock
    double m_ProcessorSeconds = 0;  ///< of all threads
    double m_PeakBytes = 0;
    double m_Checksum = 0;  ///< of the bytes of the part; below 2^50
};

/// Runs the program on a relief of that many moves. Throws std::runtime_error when it fails.
MillRun RunMill(std::size_t nbMoves, std::size_t nbThreads);
}  // namespace ZULBench

#endif
