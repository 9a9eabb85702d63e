#ifndef MillJob_h
#define MillJob_h

#include <string>

#include "MillConfig.h"
#include "MillOutputFile.h"
#include "MillProgress.h"
#include "MillResult.h"

/// One run: reads the program, mills the stock, writes the outputs. Everything that can be wrong with the
/// input is found before the milling starts, and so is an output that cannot be written.
class MillJob
{
public:
    explicit MillJob(MillConfig config) : m_Config(std::move(config)) {}

    /// Throws MillError or NcError for what the user must put right; outputs are then as they were. Call
    /// once.
    MillResult Run(MillProgress& progress);

private:
    MillConfig m_Config;
};

#endif
