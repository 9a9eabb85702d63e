#include "MillReport.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "MillError.h"

namespace
{

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostWarningLines = 20;

std::string CountOf(std::size_t count, const char* singular, const char* plural)
{
    return fmt::format("{} {}", count, count == 1 ? singular : plural);
}

std::string ToolText(const MillToolUse& tool)
{
    if (tool.m_Number == kNcNoTool) {
        return tool.m_Shape.GetText();
    }
    return fmt::format("T{} {}", tool.m_Number, tool.m_Shape.GetText());
}

Json ToolsJson(const MillResult& result)
{
    Json tools = Json::array();
    for (const MillToolUse& tool : result.m_Tools) {
        Json entry;
        entry["number"] = tool.m_Number == kNcNoTool ? Json() : Json(tool.m_Number);
        entry["shape"] = tool.m_Shape.GetText();
        tools.push_back(entry);
    }
    return tools;
}

Json StockJson(const MillBox& box)
{
    const auto corner = [](const MillVector& v) {
        return Json::array({MillToMm(v.m_X), MillToMm(v.m_Y), MillToMm(v.m_Z)});
    };
    return {{"min", corner(box.m_Min)}, {"max", corner(box.m_Max)}};
}

Json WarningsJson(const MillResult& result)
{
    Json warnings = Json::array();
    for (const NcWarning& warning : result.m_Warnings) {
        warnings.push_back({{"line", warning.m_line}, {"text", warning.m_text}});
    }
    return warnings;
}

Json StageCountsJson(const MillStageCounts& counts)
{
    return {{"shortcut", counts.m_Shortcut},
            {"filter", counts.m_Filter},
            {"interval", counts.m_Interval},
            {"exact", counts.m_Exact}};
}

Json DecisionsByPredicateJson(const MillDecisions& decisions)
{
    Json json;
    for (const auto& [name, counts] : decisions.m_ByPredicate) {
        json[name] = StageCountsJson(counts);
    }
    return json;
}
}  // namespace

std::string MillReportText(const MillConfig& config, const MillResult& result)
{
    Json report;
    report["program"] = result.m_Program;
    report["moves"] = result.m_Moves;
    report["cutting_moves"] = result.m_CuttingMoves;
    report["rapid_moves"] = result.m_RapidMoves;
    report["segments"] = result.m_Segments;
    report["swept_segments"] = result.m_SweptSegments;
    report["tools"] = ToolsJson(result);
    report["sides"] = config.m_Sides;
    report["chord"] = config.m_ChordTolerance;
    report["stock"] = StockJson(result.m_Stock);
    report["stock_volume"] = result.m_StockVolume;
    report["removed_volume"] = result.m_RemovedVolume;
    report["remaining_volume"] = result.m_RemainingVolume;
    report["cells"] = result.m_Cells;
    report["faces"] = result.m_Faces;
    report["vertices"] = result.m_Mesh.m_Vertices.size();
    report["triangles"] = result.m_Mesh.m_Triangles.size();
    report["closed"] = result.m_IsClosed;
    report["rapid_touches"] = result.m_RapidTouchLines.size();
    report["rapid_touch_lines"] = result.m_RapidTouchLines;
    report["warnings"] = WarningsJson(result);
    const MillSeconds& seconds = result.m_Seconds;
    report["seconds"] = {{"read", seconds.m_Read},
                         {"cut", seconds.m_Cut},
                         {"surface", seconds.m_Surface},
                         {"write", seconds.m_Write},
                         {"total", seconds.GetTotal()}};
    report["decisions"] = StageCountsJson(result.m_Decisions.m_All);
    if (!result.m_Decisions.m_ByPredicate.empty()) {
        report["decisions_by_predicate"] = DecisionsByPredicateJson(result.m_Decisions);
    }
    // A file name need not be UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string MillSummaryText(const MillConfig& config, const MillResult& result)
{
    std::string tools;
    for (const MillToolUse& tool : result.m_Tools) {
        tools += (tools.empty() ? "" : ", ") + ToolText(tool);
    }
    const MillVector size = result.m_Stock.m_Max - result.m_Stock.m_Min;

    std::string text = fmt::format("{}: {} ({} cutting, {} rapid), {}.\n", MillOneLine(result.m_Program),
                                   CountOf(result.m_Moves, "move", "moves"), result.m_CuttingMoves,
                                   result.m_RapidMoves, tools.empty() ? "no tool" : "cut with " + tools);
    text += fmt::format("Stock: {} x {} x {} mm, {:.3f} mm3. Removed {:.3f} mm3, {:.3f} mm3 remain.\n",
                        MillToMm(size.m_X), MillToMm(size.m_Y), MillToMm(size.m_Z), result.m_StockVolume,
                        result.m_RemovedVolume, result.m_RemainingVolume);
    if (!result.m_RapidTouchLines.empty()) {
        text += fmt::format("Rapid moves cut material {}.\n",
                            CountOf(result.m_RapidTouchLines.size(), "time", "times"));
    }
    text += fmt::format("The part has {} and {}; its surface has {} and is {}.\n",
                        CountOf(result.m_Cells, "cell", "cells"), CountOf(result.m_Faces, "face", "faces"),
                        CountOf(result.m_Mesh.m_Triangles.size(), "triangle", "triangles"),
                        result.m_IsClosed ? "closed" : "NOT CLOSED");
    const MillSeconds& seconds = result.m_Seconds;
    text +=
        fmt::format("Took {:.2f} s: reading {:.2f}, cutting {:.2f}, surface {:.2f}, writing {:.2f}.\n",
                    seconds.GetTotal(), seconds.m_Read, seconds.m_Cut, seconds.m_Surface, seconds.m_Write);
    if (!config.m_Output.empty()) {
        text += fmt::format("Written: {}\n", MillOneLine(config.m_Output));
    }
    if (!config.m_Report.empty()) {
        text += fmt::format("Report: {}\n", MillOneLine(config.m_Report));
    }
    return text;
}

std::vector<std::string> MillWarningLines(const MillResult& result)
{
    NcProgram place;
    place.m_file = result.m_Program;
    std::vector<std::string> lines;
    for (const NcWarning& warning : result.m_Warnings) {
        if (lines.size() == kMostWarningLines) {
            const std::size_t more = result.m_Warnings.size() - lines.size();
            lines.push_back(MillOneLine(fmt::format("{}: warning: {}", result.m_Program,
                                                    CountOf(more, "more warning", "more warnings"))));
            break;
        }
        lines.push_back(MillOneLine(NcFormatWarning(place, warning)));
    }
    return lines;
}
