#include <cmath>

#include <gtest/gtest.h>

#include "MillJob.h"
#include "MillMeshReader.h"
#include "MillPath.h"
#include "MillTestHelp.h"

namespace
{

/// A real program with the tools and the stock that its index or its comments name, or likely ones.
struct RealProgram {
    const char* m_File;
    std::vector<std::string> m_Tools;
    const char* m_Stock;
    NcUnits m_Units = NcUnits::Millimetres;
    /// For the count: enough for several columns across the narrowest cut.
    std::size_t m_Columns = 400'000;
};

const RealProgram kPrograms[] = {
    {"slant_test.nc", {"flat:4"}, "-2.14,-2.14,-5.05,12.14,12.14,0", {}, 400'000},
    {"spiral.gcode", {"ball:6"}, "auto:2"},
    {"circle-inch.gcode", {"vee:6:60"}, "-20,-20,-6,20,20,2", {}, 400'000},
    {"cds_kramer.ngc", {"flat:12.7"}, "0,-6.35,0,101.6,101.6,50.8", {}, 400'000},
    {"pcb_drill_g81.ngc", {"9=flat:0.4", "8=flat:0.6", "7=flat:0.8", "6=flat:1"}, "auto:2", {}, 1'000'000},
    {"cap.ngc", {"flat:3.175"}, "auto:2", NcUnits::Inches, 1'500'000},
    {"axis_letter.ngc", {"vee:3:60"}, "auto:2", {}, 1'000'000},
    {"scorpion.nc", {"1=flat:1"}, "14.1468,-5.4365,-3,216.309,247.905,0", {}, 4'000'000},
    {"headrough.nc", {"flat:3.175"}, "auto:2"},
    {"electric_turtle.nc", {"0=flat:3.175"}, "auto:2", {}, 1'500'000},
    {"botomata_bottom.nc",
     {"1=flat:6.35", "2=flat:3.175", "3=flat:1.5875"},
     "-45.7195,-147.3195,-20,45.7195,45.7195,0"},
    {"mill_hp_2.nc",
     {"1=flat:12.7", "5=vee:6.35:90", "7=vee:6.35:140", "8=vee:7.9375:140"},
     "0,0,-19.05,88.9,63.5,0",
     {},
     400'000},
};

std::string NameOf(const testing::TestParamInfo<RealProgram>& info)
{
    std::string name = info.param.m_File;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class MillRealPrograms : public testing::TestWithParam<RealProgram>
{
protected:
    static MillConfig ConfigOf(const RealProgram& program)
    {
        MillConfig config;
        config.m_Program = std::string(ZUL_SAMPLE_INPUTS) + "/nc/" + program.m_File;
        config.m_Stock = MillParseStock(program.m_Stock);
        config.m_Reading.m_defaultUnits = program.m_Units;
        config.m_ChordTolerance = 0.02;
        config.m_Sides = 12;
        for (const std::string& tool : program.m_Tools) {
            config.m_Tools.Add(tool);
        }
        return config;
    }

    /// The part by columns, from the program's moves alone.
    static ZULVoxelMill Count(const MillConfig& config, const MillBox& stock, std::size_t columns)
    {
        const auto corner = [](const MillVector& v) {
            return ZULMathPoint(MillToMm(v.m_X), MillToMm(v.m_Y), MillToMm(v.m_Z));
        };
        ZULVoxelMill count(corner(stock.m_Min), corner(stock.m_Max), columns);
        for (const NcMove& move : ReadNcProgram(config.m_Program, config.m_Reading).m_moves) {
            const MillShape* const shape = config.m_Tools.Find(move.m_tool);
            if (!move.m_mayCut || shape == nullptr) {
                continue;
            }
            const ZULVoxelTool tool = MillVoxelTool(MillMakeTool(*shape, config.m_Sides));
            const std::vector<ZULMathPoint> points = FlattenArc(move, config.m_ChordTolerance);
            for (std::size_t i = 1; i < points.size(); ++i) {
                count.Sweep(tool, points[i - 1], points[i]);
            }
        }
        return count;
    }
};

TEST_P(MillRealPrograms, GiveAClosedPartOfTheCountedVolume)
{
    const MillTestFolder folder;
    MillConfig config = ConfigOf(GetParam());
    config.m_Output = folder / "part.stl";
    MillProgress progress;
    const MillResult result = MillJob(config).Run(progress);
    EXPECT_TRUE(result.m_IsClosed);
    EXPECT_NEAR(result.m_Mesh.GetVolume(), result.m_RemainingVolume, 1e-9 * result.m_StockVolume);
    EXPECT_TRUE(MillReadStl(MillReadFile(config.m_Output)).IsClosed());

    const ZULVoxelMill count = Count(config, result.m_Stock, GetParam().m_Columns);
    EXPECT_NEAR(result.m_RemainingVolume, count.GetVolume(), count.GetTolerance());
    EXPECT_GT(result.m_RemovedVolume, 0.0);
    // A count that could not tell would prove nothing.
    EXPECT_LT(count.GetTolerance(), 0.02 * result.m_RemovedVolume);
    RecordProperty("cells", static_cast<int>(result.m_Cells));
}

INSTANTIATE_TEST_SUITE_P(Samples, MillRealPrograms, testing::ValuesIn(kPrograms), NameOf);

TEST(MillRealProgramsRefused, NameTheLineOfTheMacro)
{
    MillConfig config;
    config.m_Program = std::string(ZUL_SAMPLE_INPUTS) + "/nc/haas_example.nc";
    MillProgress progress;
    const std::string complaint = MillComplaint<NcError>([&] { MillJob(config).Run(progress); });
    EXPECT_TRUE(complaint.starts_with(config.m_Program + ":7: error: ")) << complaint;
}

}  // namespace
