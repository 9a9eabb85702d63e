#ifndef MillReport_h
#define MillReport_h

#include <string>
#include <vector>

#include "MillConfig.h"
#include "MillResult.h"

/// The report as JSON text. Keys are only ever added.
std::string MillReportText(const MillConfig& config, const MillResult& result);

/// What was done, in plain words, for people.
std::string MillSummaryText(const MillConfig& config, const MillResult& result);

/// One line for each warning, "FILE:LINE: warning: TEXT"; after the first twenty only how many more there
/// are.
std::vector<std::string> MillWarningLines(const MillResult& result);

#endif
