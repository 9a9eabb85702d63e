#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

#include <nlohmann/json.hpp>

#include "NcTestHelp.h"

namespace
{

using nlohmann::json;

std::string Folder()
{
    return std::string(ZUL_SAMPLE_INPUTS) + "/nc/";
}

std::string ReadText(const std::string& iFile)
{
    std::ifstream stream(iFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

struct Counts {
    int m_rapids = 0;
    int m_lines = 0;
    int m_arcs = 0;
    int m_helices = 0;
    int m_circles = 0;
    int m_radiusArcs = 0;
    std::array<int, 3> m_byPlane{};
    double m_lineLength = 0.0;
    double m_maxRadius = 0.0;
    double m_maxMismatch = 0.0;
};

/// A full circle, or whole turns of a helix.
bool IsCircle(const NcMove& iMove)
{
    const NcPlaneAxes axes = NcAxesOf(iMove.m_plane);
    return NcCoordinate(iMove.m_start, axes.m_u) == NcCoordinate(iMove.m_end, axes.m_u) &&
           NcCoordinate(iMove.m_start, axes.m_v) == NcCoordinate(iMove.m_end, axes.m_v);
}

void CountArc(const NcMove& iMove, Counts& ioCounts)
{
    const NcPlaneAxes axes = NcAxesOf(iMove.m_plane);
    ++ioCounts.m_arcs;
    ++ioCounts.m_byPlane[static_cast<std::size_t>(iMove.m_plane)];
    ioCounts.m_helices += NcHelixRise(iMove) != 0.0 ? 1 : 0;
    ioCounts.m_circles += IsCircle(iMove) ? 1 : 0;
    ioCounts.m_radiusArcs += iMove.m_isRadiusForm ? 1 : 0;
    const double endRadius =
        std::hypot(NcCoordinate(iMove.m_end, axes.m_u) - NcCoordinate(iMove.m_centre, axes.m_u),
                   NcCoordinate(iMove.m_end, axes.m_v) - NcCoordinate(iMove.m_centre, axes.m_v));
    ioCounts.m_maxRadius = std::max(ioCounts.m_maxRadius, NcArcRadius(iMove));
    ioCounts.m_maxMismatch = std::max(ioCounts.m_maxMismatch, std::fabs(endRadius - NcArcRadius(iMove)));
}

Counts Count(const NcProgram& iProgram)
{
    Counts counts;
    for (const NcMove& move : iProgram.m_moves) {
        if (move.m_isCycleStroke || move.m_isMachineMove) {
            continue;
        }
        if (move.m_kind == NcMoveKind::Rapid) {
            ++counts.m_rapids;
        } else if (move.m_kind == NcMoveKind::Line) {
            ++counts.m_lines;
            counts.m_lineLength += std::hypot(move.m_end.x - move.m_start.x, move.m_end.y - move.m_start.y,
                                              move.m_end.z - move.m_start.z);
        } else {
            CountArc(move, counts);
        }
    }
    return counts;
}

/// The box of the programmed end points; of drill cycles only the place and the bottom count.
NcExtents EndPoints(const NcProgram& iProgram)
{
    NcExtents extents;
    for (const NcMove& move : iProgram.m_moves) {
        if (!move.m_isMachineMove && (!move.m_isCycleStroke || move.m_kind == NcMoveKind::Line)) {
            extents.AddPoint(move.m_end, move.m_knownAxes);
        }
    }
    return extents;
}

NcProgram Read(const json& iEntry, const std::string& iText)
{
    NcOptions options;
    // The facts are of the whole text, and one of the programs is several, one after the other.
    options.m_readJoinedPrograms = true;
    try {
        return ParseNcProgram(iText, iEntry["file"].get<std::string>(), options);
    } catch (const NcError& error) {
        ADD_FAILURE() << error.what();
        return {};
    }
}

void ExpectFacts(const json& iEntry, const NcProgram& iProgram)
{
    const double unit = iEntry["units"] == "in" ? 25.4 : 1.0;
    const Counts counts = Count(iProgram);
    const json& segments = iEntry["segments"];
    EXPECT_EQ(counts.m_rapids, segments["rapid"]);
    EXPECT_EQ(counts.m_lines, segments["line"]);
    EXPECT_EQ(counts.m_arcs, segments["arc"]);
    EXPECT_EQ(counts.m_helices, segments["helical_arcs"]);
    EXPECT_EQ(counts.m_circles, segments["full_circles"]);
    EXPECT_EQ(counts.m_radiusArcs, segments["R_arcs"]);
    EXPECT_EQ(iProgram.m_holeCount, segments["canned_holes"]);
    EXPECT_EQ(counts.m_byPlane[0], segments["by_plane"].value("G17", 0));
    EXPECT_EQ(counts.m_byPlane[1], segments["by_plane"].value("G18", 0));
    EXPECT_EQ(counts.m_byPlane[2], segments["by_plane"].value("G19", 0));
    EXPECT_NEAR(counts.m_maxRadius / unit, iEntry["max_arc_radius_native"], 1e-5 * counts.m_maxRadius / unit);
    EXPECT_NEAR(counts.m_maxMismatch / unit, iEntry["max_arc_radius_mismatch_native"],
                0.01 * counts.m_maxMismatch / unit + 1e-9);
}

void ExpectExtents(const json& iEntry, const NcProgram& iProgram)
{
    const double unit = iEntry["units"] == "in" ? 25.4 : 1.0;
    const NcExtents extents = EndPoints(iProgram);
    // The facts have seven digits.
    const json& expected = iEntry["programmed_extent_native"];
    for (int axis = 0; axis < 3; ++axis) {
        const json& range = expected[std::string(1, "XYZ"[axis])];
        double low = range[0];
        const double high = range[1];
        // The facts are of program coordinates; here a second copy is cut under a shifted work offset.
        if (iEntry["file"] == "botomata_bottom.nc" && axis == 1) {
            low -= 101.6;
        }
        EXPECT_NEAR(NcCoordinate(extents.Min(), axis), low * unit, 2e-7 * std::fabs(low * unit)) << axis;
        EXPECT_NEAR(NcCoordinate(extents.Max(), axis), high * unit, 2e-7 * std::fabs(high * unit)) << axis;
    }
}

json Entry(const std::string& iFile)
{
    const json index = json::parse(ReadText(Folder() + "index.json"));
    for (const json& entry : index["files"]) {
        if (entry["file"] == iFile) {
            return entry;
        }
    }
    ADD_FAILURE() << iFile;
    return {};
}

TEST(NcRealPrograms, AgreeWithTheirFacts)
{
    const json index = json::parse(ReadText(Folder() + "index.json"));
    int count = 0;
    for (const json& entry : index["files"]) {
        if (entry["file"] == "haas_example.nc") {
            continue;
        }
        SCOPED_TRACE(entry["file"].get<std::string>());
        const std::string text = ReadText(Folder() + entry["file"].get<std::string>());
        ASSERT_EQ(text.size(), entry["bytes"].get<std::size_t>());
        const NcProgram program = Read(entry, text);
        ExpectFacts(entry, program);
        ExpectExtents(entry, program);
        EXPECT_EQ(program.m_statesUnits, entry["units"] != "unstated");
        ++count;
    }
    EXPECT_EQ(count, 15);
}

TEST(NcRealPrograms, LengthOfLines)
{
    for (const char* file : {"slant_test.nc", "cds_kramer.ngc", "axis_letter.ngc", "scorpion.nc",
                             "headrough.nc", "electric_turtle.nc", "LHchips4.ngc", "tiger.nc"}) {
        const json entry = Entry(file);
        const double unit = entry["units"] == "in" ? 25.4 : 1.0;
        const NcProgram program = Read(entry, ReadText(Folder() + file));
        const double expected = entry["sum_G1_length_native"].get<double>() * unit;
        EXPECT_NEAR(Count(program).m_lineLength, expected, 1e-5 * expected) << file;
    }
}

TEST(NcRealPrograms, MacroLineIsReported)
{
    try {
        ReadNcProgram(Folder() + "haas_example.nc");
        FAIL();
    } catch (const NcError& error) {
        EXPECT_EQ(std::string(error.what()),
                  Folder() +
                      "haas_example.nc:7: error: macro text 'IF': variables, expressions and flow "
                      "control are not supported");
    }
}

TEST(NcRealPrograms, WithoutItsMacroLinesTheShopProgramIsRead)
{
    const json entry = Entry("haas_example.nc");
    std::string text = ReadText(Folder() + "haas_example.nc");
    for (std::size_t at = 0; (at = text.find("IF [", at)) != std::string::npos;) {
        text.replace(at, text.find('\r', at) - at, "");
    }
    const NcProgram program = Read(entry, text);
    EXPECT_EQ(program.m_holeCount, 1);
    EXPECT_EQ(Count(program).m_arcs, 5);
    EXPECT_EQ(Count(program).m_helices, 3);
    EXPECT_EQ(program.CuttingTools(), (std::vector<int>{3, 4, 5}));
    // The work offset G54 lies at (-269.39, -254.65, -689).
    const NcExtents ends = EndPoints(program);
    ExpectPoint(ends.Min(), -269.39, -254.65 - 2.75, -689 - 15, 1e-9);
    ExpectPoint(ends.Max(), -269.39 + 5.5, -254.65 + 2.75, -689 + 100, 1e-9);
    // The cycle starts at Z50 and drills at the current place, with R5.
    EXPECT_NEAR(program.CuttingExtents().Max().z, -689 + 5, 1e-9);
}

TEST(NcRealPrograms, SecondCopyIsCutUnderItsOwnOffset)
{
    const NcProgram program = ReadNcProgram(Folder() + "botomata_bottom.nc");
    int first = 0;
    int second = 0;
    for (const NcMove& move : program.m_moves) {
        const bool isSecond = (move.m_line > 1946 && move.m_line < 3879) ||
                              (move.m_line > 4927 && move.m_line < 5973) || move.m_line > 6096;
        if (move.m_kind == NcMoveKind::Rapid) {
            continue;
        }
        EXPECT_EQ(move.m_end.y < -50.0, isSecond) << move.m_line;
        ++(isSecond ? second : first);
    }
    EXPECT_EQ(first, second);
    EXPECT_EQ(program.CuttingTools(), (std::vector<int>{1, 2, 3}));
}

TEST(NcRealPrograms, ShopProgramByHand)
{
    const NcProgram program = ReadNcProgram(Folder() + "mill_hp_2.nc");
    EXPECT_EQ(program.CuttingTools(), (std::vector<int>{1, 5, 7, 8}));
    EXPECT_EQ(Warnings(program).size(), 3U);
    std::vector<ZULMathPoint> bottoms;
    for (const NcMove& move : program.m_moves) {
        if (move.m_isCycleStroke && move.m_kind == NcMoveKind::Line && move.m_tool == 7) {
            bottoms.push_back(move.m_end);
        }
    }
    // From R0.25 in pecks of 0.15 to -0.5222 inch, at the place where the tool stood.
    ASSERT_EQ(bottoms.size(), 6U);
    ExpectPoint(bottoms.front(), 0.8 * 25.4, 1.75 * 25.4, 0.1 * 25.4, 1e-12);
    ExpectPoint(bottoms.back(), 0.8 * 25.4, 1.75 * 25.4, -0.5222 * 25.4, 1e-12);
    for (const NcMove& move : program.m_moves) {
        EXPECT_EQ(move.m_isMachineMove, move.m_line == 12 || move.m_line == 43 || move.m_line == 44 ||
                                            move.m_line == 59 || move.m_line == 60 || move.m_line == 74 ||
                                            move.m_line == 75 || move.m_line == 89 || move.m_line == 90);
    }
}

TEST(NcRealPrograms, ToolsOfTheOthers)
{
    const auto tools = [](const char* iFile) { return ReadNcProgram(Folder() + iFile).CuttingTools(); };
    EXPECT_EQ(tools("slant_test.nc"), std::vector<int>{3});
    EXPECT_EQ(tools("pcb_drill_g81.ngc"), (std::vector<int>{6, 7, 8, 9}));
    EXPECT_EQ(tools("electric_turtle.nc"), std::vector<int>{0});
    EXPECT_EQ(tools("locket_outside.ngc"), (std::vector<int>{kNcNoTool, 1, 2}));
    EXPECT_EQ(tools("cap.ngc"), std::vector<int>{kNcNoTool});
    EXPECT_EQ(tools("scorpion.nc"), std::vector<int>{1});
    EXPECT_EQ(tools("tiger.nc"), std::vector<int>{kNcNoTool});
}

TEST(NcRealPrograms, FirstOfSeveralJoinedPrograms)
{
    const NcProgram program = ReadNcProgram(Folder() + "electric_turtle.nc");
    EXPECT_EQ(program.m_moves.back().m_line, 2159);
    EXPECT_EQ(Warnings(program),
              std::vector<std::string>{Folder() +
                                       "electric_turtle.nc:2161: warning: the program ends here; the text "
                                       "after it is ignored"});
}

// Ball-nose passes along waves: in each the arcs must stay near their chords, as the wrong sense would bulge
// far out.
TEST(NcRealPrograms, SenseOfArcsInOtherPlanes)
{
    const NcProgram program = ReadNcProgram(Folder() + "LHchips4.ngc");
    for (const NcMove& move : program.m_moves) {
        if (move.m_kind == NcMoveKind::Arc) {
            EXPECT_LT(move.m_sweep, 3.2) << move.m_line;
        }
    }
}

}  // namespace
