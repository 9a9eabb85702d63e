#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <new>
#include <ostream>
#include <string>

#include "MillCommandLine.h"
#include "MillError.h"
#include "MillJob.h"
#include "MillOutputFile.h"
#include "MillProgress.h"
#include "MillReport.h"
#include "NcError.h"
#include "ZULKLOOutput.h"

namespace
{

constexpr int kFailure = 1;

int Complain(const std::string& line, int status)
{
    fmt::print(stderr, "zulmrs-mill: {}\n", line);
    return status;
}

/// The library speaks until it is unloaded, so the stream that swallows its words is never destroyed.
void SilenceLibrary()
{
    static std::ostream* const s_Nowhere = new std::ostream(nullptr);
    ZULKLOOutput::Redirect(s_Nowhere);
}

int Run(int argc, char** argv)
{
    SilenceLibrary();
    const MillCommandLine commandLine = MillParseCommandLine(argc, argv);
    if (!commandLine.m_Config) {
        fmt::print("{}", commandLine.m_Text);
        return 0;
    }
    const MillConfig& config = *commandLine.m_Config;
    if (config.m_IsVerbose) {
        ZULKLOOutput::Redirect(nullptr);
    }
    MillRemoveOutputsOnSignals();
    MillProgressBar progress(stderr);
    const MillResult result = MillJob(config).Run(progress);
    for (const std::string& warning : MillWarningLines(result)) {
        fmt::print(stderr, "zulmrs-mill: {}\n", warning);
    }
    fmt::print("{}", MillSummaryText(config, result));
    return result.m_IsClosed ? 0 : kFailure;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const MillError& error) {
        return Complain(error.what(), kMillBadInput);
    } catch (const NcError& error) {
        return Complain(error.what(), kMillBadInput);
    } catch (const std::bad_alloc&) {
        return Complain("out of memory", kFailure);
    } catch (const std::exception& error) {
        return Complain(MillOneLine(error.what()), kFailure);
    }
}
