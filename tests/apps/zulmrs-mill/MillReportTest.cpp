#include "MillReport.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "MillProgress.h"
#include "MillTestHelp.h"

namespace
{

MillResult SomeResult()
{
    MillResult result;
    result.m_Program = "part.nc";
    result.m_Moves = 12;
    result.m_CuttingMoves = 9;
    result.m_RapidMoves = 3;
    result.m_Segments = 40;
    result.m_SweptSegments = 35;
    result.m_Tools = {{3, {MillShapeKind::Flat, 6.0, 0.0}}, {kNcNoTool, {MillShapeKind::Vee, 3.0, 60.0}}};
    result.m_Stock = {{-1'500'000, 0, -20'000'000}, {98'500'000, 50'000'000, 0}};
    result.m_StockVolume = 100'000.0;
    result.m_RemovedVolume = 1234.5;
    result.m_RemainingVolume = 98'765.5;
    result.m_Cells = 1;
    result.m_Faces = 20;
    result.m_IsClosed = true;
    result.m_Mesh.m_Vertices.resize(4);
    result.m_Mesh.m_Triangles.resize(5);
    result.m_Warnings = {{7, "odd"}, {9, "rapid move cuts material"}};
    result.m_RapidTouchLines = {9};
    result.m_Seconds = {0.25, 1.0, 0.5, 0.125};
    result.m_Decisions.m_All = {1, 2, 3, 4};
    return result;
}

TEST(MillReport, HasAllItsKeys)
{
    MillConfig config;
    config.m_Sides = 24;
    const auto report = nlohmann::json::parse(MillReportText(config, SomeResult()));
    const auto expected = nlohmann::json::parse(R"({
        "program": "part.nc", "moves": 12, "cutting_moves": 9, "rapid_moves": 3, "segments": 40,
        "swept_segments": 35,
        "tools": [{"number": 3, "shape": "flat:6"}, {"number": null, "shape": "vee:3:60"}],
        "sides": 24, "chord": 0.01,
        "stock": {"min": [-1.5, 0.0, -20.0], "max": [98.5, 50.0, 0.0]},
        "stock_volume": 100000.0, "removed_volume": 1234.5, "remaining_volume": 98765.5,
        "cells": 1, "faces": 20, "vertices": 4, "triangles": 5, "closed": true,
        "rapid_touches": 1, "rapid_touch_lines": [9],
        "warnings": [{"line": 7, "text": "odd"}, {"line": 9, "text": "rapid move cuts material"}],
        "seconds": {"read": 0.25, "cut": 1.0, "surface": 0.5, "write": 0.125, "total": 1.875},
        "decisions": {"shortcut": 1, "filter": 2, "interval": 3, "exact": 4}})");
    EXPECT_EQ(report, expected) << report.dump(2);
}

TEST(MillReport, TellsTheDecisionsOfEachPredicateThatHasMadeSome)
{
    MillResult result = SomeResult();
    EXPECT_FALSE(
        nlohmann::json::parse(MillReportText(MillConfig(), result)).contains("decisions_by_predicate"));
    result.m_Decisions.m_ByPredicate["IsPointInFrontOfPlane"] = {1, 2, 0, 4};
    const auto report = nlohmann::json::parse(MillReportText(MillConfig(), result));
    const auto expected = nlohmann::json::parse(
        R"({"IsPointInFrontOfPlane": {"shortcut": 1, "filter": 2, "interval": 0, "exact": 4}})");
    EXPECT_EQ(report["decisions_by_predicate"], expected);
}

TEST(MillReport, IsValidForAnyFileName)
{
    MillResult result = SomeResult();
    result.m_Program = "\xff\"\n.nc";
    const auto report = nlohmann::json::parse(MillReportText({}, result));
    EXPECT_EQ(report["program"], "\xef\xbf\xbd\"\n.nc");
}

TEST(MillReport, SaysInPlainWordsWhatWasDone)
{
    MillConfig config;
    config.m_Output = "part.stl";
    config.m_Report = "part.json";
    EXPECT_EQ(MillSummaryText(config, SomeResult()),
              "part.nc: 12 moves (9 cutting, 3 rapid), cut with T3 flat:6, vee:3:60.\n"
              "Stock: 100 x 50 x 20 mm, 100000.000 mm3. Removed 1234.500 mm3, 98765.500 mm3 remain.\n"
              "Rapid moves cut material 1 time.\n"
              "The part has 1 cell and 20 faces; its surface has 5 triangles and is closed.\n"
              "Took 1.88 s: reading 0.25, cutting 1.00, surface 0.50, writing 0.12.\n"
              "Written: part.stl\n"
              "Report: part.json\n");
}

TEST(MillReport, ShowsTheFirstWarningsAndCountsTheRest)
{
    MillResult result = SomeResult();
    EXPECT_EQ(MillWarningLines(result),
              (std::vector<std::string>{"part.nc:7: warning: odd",
                                        "part.nc:9: warning: rapid move cuts material"}));
    result.m_Warnings.assign(20, {1, "x"});
    EXPECT_EQ(MillWarningLines(result).size(), 20U);
    result.m_Warnings.assign(21, {1, "x"});
    EXPECT_EQ(MillWarningLines(result).back(), "part.nc: warning: 1 more warning");
    result.m_Warnings.assign(1000, {1, "x"});
    EXPECT_EQ(MillWarningLines(result).size(), 21U);
    EXPECT_EQ(MillWarningLines(result).back(), "part.nc: warning: 980 more warnings");
}

TEST(MillProgress, DrawsABarAndTheTimeLeft)
{
    EXPECT_EQ(MillProgressText(0, 100, 0.0), "[----------------------------------------]   0 %");
    EXPECT_EQ(MillProgressText(25, 100, 20.0), "[##########------------------------------]  25 %  1:00 left");
    EXPECT_EQ(MillProgressText(100, 100, 20.0),
              "[########################################] 100 %  0:00 left");
    EXPECT_EQ(MillProgressText(1, 1000, 10.0),
              "[----------------------------------------]   0 %  166:30 left");
}

TEST(MillProgress, WritesNothingToAFile)
{
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    MillProgressBar bar(file);
    for (std::size_t i = 0; i < 1000; ++i) {
        bar.Update(i, 1000);
    }
    bar.Finish();
    EXPECT_EQ(std::ftell(file), 0);
    std::fclose(file);
}

}  // namespace
