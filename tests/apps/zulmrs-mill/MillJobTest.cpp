#include "MillJob.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "MillError.h"
#include "MillMeshReader.h"
#include "MillReport.h"
#include "MillTestHelp.h"

namespace
{

/// Runs programs in a folder of their own.
class MillJobTest : public testing::Test
{
protected:
    MillConfig Config(const std::string& program, const std::string& stock, const std::string& tool)
    {
        MillConfig config;
        config.m_Program = m_Folder.Add("p.nc", program);
        config.m_Stock = MillParseStock(stock);
        if (!tool.empty()) {
            config.m_Tools.Add(tool);
        }
        return config;
    }

    static MillResult Mill(const MillConfig& config)
    {
        MillProgress progress;
        MillResult result = MillJob(config).Run(progress);
        EXPECT_TRUE(result.m_IsClosed);
        EXPECT_NEAR(result.m_Mesh.GetVolume(), result.m_RemainingVolume, 1e-9 * result.m_StockVolume);
        EXPECT_NEAR(result.m_RemovedVolume + result.m_RemainingVolume, result.m_StockVolume,
                    1e-12 * result.m_StockVolume);
        return result;
    }

    MillResult Mill(const std::string& program, const std::string& stock, const std::string& tool)
    {
        return Mill(Config(program, stock, tool));
    }

    MillTestFolder m_Folder;
};

/// The area of a tool's shank, by its corners.
double ShankArea(const MillTool& tool, int sides)
{
    const std::vector<MillVector>& v = tool.GetVertices();
    const std::size_t n = static_cast<std::size_t>(sides);
    double doubled = 0.0;
    for (std::size_t j = v.size() - n; j < v.size(); ++j) {
        const MillVector& next = v[j + 1 == v.size() ? v.size() - n : j + 1];
        doubled += MillToMm(v[j].m_X) * MillToMm(next.m_Y) - MillToMm(v[j].m_Y) * MillToMm(next.m_X);
    }
    return doubled / 2.0;
}

constexpr const char* kBlock = "0,0,-10,50,30,0";
constexpr double kBlockVolume = 15000.0;

TEST_F(MillJobTest, ASlotThroughTheBlockIsAsWideAsTheTool)
{
    const MillResult result = Mill("G21 G90\nG0 X-10 Y15 Z5\nG1 Z-4\nX60\nG0 Z5\n", kBlock, "flat:6");
    EXPECT_NEAR(result.m_RemovedVolume, 50.0 * 6.0 * 4.0, 1e-9 * kBlockVolume);
    EXPECT_EQ(result.m_Moves, 4U);
    EXPECT_EQ(result.m_CuttingMoves, 2U);
    EXPECT_EQ(result.m_RapidMoves, 2U);
    EXPECT_TRUE(result.m_RapidTouchLines.empty());
    // A block with a slot: eight corners, eight more of the slot.
    EXPECT_EQ(result.m_Mesh.m_Vertices.size(), 16U);
}

TEST_F(MillJobTest, AHoleHasTheToolsCrossSection)
{
    for (const int sides : {5, 8, 16, 32}) {
        MillConfig config = Config("G21 G90\nG0 X20 Y15 Z5\nG1 Z-4\nG0 Z5\n", kBlock, "flat:6.1");
        config.m_Sides = sides;
        for (const MillSidesKind kind : {MillSidesKind::Circumscribed, MillSidesKind::Inscribed}) {
            config.m_FlatKind = kind;
            const double area = ShankArea(MillMakeTool({MillShapeKind::Flat, 6.1, 0.0}, sides, kind), sides);
            EXPECT_NEAR(Mill(config).m_RemovedVolume, area * 4.0, 1e-9 * kBlockVolume) << sides;
        }
    }
}

TEST_F(MillJobTest, ASlantedPocketIsThePrismBetweenItsEnds)
{
    // Along (3, 4): a tool of 16 sides has no side along it, the widest extent across counts.
    const MillResult result = Mill("G21 G90\nG0 X10 Y8 Z5\nG1 Z-4\nX19 Y20\nG0 Z5\n", kBlock, "flat:6");
    const MillTool tool = MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16);
    double widest = 0.0;
    for (const MillVector& v : tool.GetVertices()) {
        widest = std::max(widest, (-4.0 * MillToMm(v.m_X) + 3.0 * MillToMm(v.m_Y)) / 5.0);
    }
    EXPECT_NEAR(result.m_RemovedVolume, (ShankArea(tool, 16) + 15.0 * 2.0 * widest) * 4.0,
                1e-9 * kBlockVolume);
}

TEST_F(MillJobTest, AVeeCutsItsGroove)
{
    const MillResult result = Mill("G21 G90\nG0 X-10 Y15 Z5\nG1 Z-2\nX60\nG0 Z5\n", kBlock, "vee:6:90");
    EXPECT_NEAR(result.m_RemovedVolume, 50.0 * 2.0 * 2.0, 1e-9 * kBlockVolume);
}

TEST_F(MillJobTest, ARampCutsAWedge)
{
    // One down in ten: at x the front edge of the tool cuts, a tenth of (x + its distance from the axis)
    // deep.
    const MillResult result = Mill("G21 G90\nG0 X-50 Y15 Z5\nG1 X100 Z-10\nG0 Z5\n", kBlock, "flat:6");
    const double area = ShankArea(MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16), 16);
    EXPECT_NEAR(result.m_RemovedVolume, 0.1 * (1250.0 * 6.0 + 50.0 * area / 2.0), 1e-9 * kBlockVolume);
}

TEST_F(MillJobTest, InchesAreMillimetresTimes25Point4)
{
    const MillResult inch = Mill("G20 G90\nG0 X-1 Y0.5 Z0.5\nG1 Z-0.125\nX2.5 Y0.75\n", kBlock, "flat:6.35");
    const MillResult mm =
        Mill("G21 G90\nG0 X-25.4 Y12.7 Z12.7\nG1 Z-3.175\nX63.5 Y19.05\n", kBlock, "flat:6.35");
    EXPECT_EQ(inch.m_RemovedVolume, mm.m_RemovedVolume);
    EXPECT_GT(inch.m_RemovedVolume, 0.0);

    MillConfig config = Config("G90\nG0 X-1 Y0.5 Z0.5\nG1 Z-0.125\nX2.5 Y0.75\n", kBlock, "flat:6.35");
    config.m_Reading.m_defaultUnits = NcUnits::Inches;
    EXPECT_EQ(Mill(config).m_RemovedVolume, mm.m_RemovedVolume);
}

TEST_F(MillJobTest, TheNumberOfThreadsDoesNotShow)
{
    std::string rows = "G21 G90\nG0 X5 Y5 Z5\nG1 Z-2\n";
    for (int row = 0; row < 10; ++row) {
        rows += "X" + std::to_string(row % 2 == 0 ? 45 : 5) + ".3 Z-" + std::to_string(1 + row % 3) + ".1\n";
        rows += "G0 Y" + std::to_string(6 + 2 * row) + ".2\n";  // through the material
    }
    MillConfig config = Config(rows, kBlock, "ball:5");
    config.m_Threads = 1;
    const MillResult alone = Mill(config);
    EXPECT_FALSE(alone.m_RapidTouchLines.empty());
    for (const int threads : {2, 5, 0}) {
        config.m_Threads = threads;
        const MillResult result = Mill(config);
        EXPECT_EQ(result.m_Mesh.m_Vertices, alone.m_Mesh.m_Vertices) << threads;
        EXPECT_EQ(result.m_Mesh.m_Triangles, alone.m_Mesh.m_Triangles) << threads;
        EXPECT_EQ(result.m_RemainingVolume, alone.m_RemainingVolume) << threads;
        EXPECT_EQ(result.m_Cells, alone.m_Cells) << threads;
        EXPECT_EQ(result.m_RapidTouchLines, alone.m_RapidTouchLines) << threads;
    }
}

TEST_F(MillJobTest, CutsOverWhatIsCutChangeNothing)
{
    const std::string once = "G21 G90\nG0 X10 Y10 Z5\nG1 Z-3\nX30 Y17.3\nG2 X40 Y10 R9\n";
    const MillResult first = Mill(once, kBlock, "ball:5");
    const MillResult twice =
        Mill(once + "G0 Z5\nX10 Y10\nG1 Z-3\nX30 Y17.3\nG2 X40 Y10 R9\n", kBlock, "ball:5");
    EXPECT_EQ(first.m_RemainingVolume, twice.m_RemainingVolume);
    EXPECT_EQ(first.m_Mesh.m_Vertices, twice.m_Mesh.m_Vertices);
    EXPECT_EQ(first.m_Mesh.m_Triangles, twice.m_Mesh.m_Triangles);
}

TEST_F(MillJobTest, MovesThatMissTheStockCutNothing)
{
    const MillResult result =
        Mill("G21 G90\nG0 X-3 Y-3 Z-5\nG1 X-3 Y40\nG0 Z0\nG1 X60\nX53 Z-20\nY-3\n", kBlock, "flat:6");
    EXPECT_EQ(result.m_RemovedVolume, 0.0);
    EXPECT_EQ(result.m_RemainingVolume, kBlockVolume);
    EXPECT_EQ(result.m_Mesh.m_Vertices.size(), 8U);
    EXPECT_EQ(result.m_Mesh.m_Triangles.size(), 12U);
    EXPECT_EQ(result.m_SweptSegments, 0U) << "they only touch it";
    EXPECT_TRUE(result.m_Warnings.empty());
}

TEST_F(MillJobTest, AStockCutAwayWhollyIsAnEmptyPart)
{
    const MillResult result =
        Mill("G21 G90\nG0 X-10 Y0 Z5\nG1 Z-10\nX60\nY20\nX-10\nY30\nX60\n", kBlock, "flat:30");
    EXPECT_EQ(result.m_Cells, 0U);
    EXPECT_EQ(result.m_RemainingVolume, 0.0);
    EXPECT_TRUE(result.m_Mesh.m_Triangles.empty());
    ASSERT_EQ(result.m_Warnings.size(), 1U);
    EXPECT_EQ(result.m_Warnings[0].m_text, "nothing of the stock is left");
}

TEST_F(MillJobTest, RapidMovesThatCutAreReported)
{
    const MillResult result =
        Mill("G21 G90\nG0 X10 Y10 Z5\nG0 Z-3\nG1 X30\nG0 Z5\nX10\nG0 Z-3\nX30\nX40\nG0 Z0\nX-10\n", kBlock,
             "flat:6");
    EXPECT_EQ(result.m_RapidTouchLines, (std::vector<int>{3, 9}))
        << "the plunge and the way on; not the ways back through what is cut, nor that along the top";
    ASSERT_EQ(result.m_Warnings.size(), 2U);
    EXPECT_EQ(result.m_Warnings[0].m_line, 3);
    EXPECT_EQ(result.m_Warnings[0].m_text, "rapid move cuts material");
    EXPECT_GT(result.m_RemovedVolume, 30.0 * 6.0 * 3.0);
}

TEST_F(MillJobTest, EveryToolCutsWithItsOwnShape)
{
    MillConfig config = Config("G21 G90\nT1 M6\nG0 X10 Y15 Z5\nG1 Z-2\nG0 Z5\nT2 M6\nX35\nG1 Z-2\nG0 Z5\n",
                               kBlock, "1=flat:6");
    config.m_Tools.Add("2=flat:8");
    const double areas = ShankArea(MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16), 16) +
                         ShankArea(MillMakeTool({MillShapeKind::Flat, 8.0, 0.0}, 16), 16);
    const MillResult result = Mill(config);
    EXPECT_NEAR(result.m_RemovedVolume, 2.0 * areas, 1e-9 * kBlockVolume);
    EXPECT_EQ(result.m_Tools.size(), 2U);
}

TEST_F(MillJobTest, AssumesAToolWhenNoneIsGivenAndSaysSo)
{
    const MillResult result = Mill("G21 G90\nG0 X-10 Y15 Z5\nG1 Z-4\nX60\n", kBlock, "");
    EXPECT_NEAR(result.m_RemovedVolume, 50.0 * 6.0 * 4.0, 1e-9 * kBlockVolume);
    ASSERT_EQ(result.m_Warnings.size(), 1U);
    EXPECT_EQ(result.m_Warnings[0].m_text, "no --tool given: cut with flat:6");
}

TEST_F(MillJobTest, ManySidesComeNearTheRoundTool)
{
    MillConfig config = Config("G21 G90\nG0 X25 Y15 Z5\nG1 Z-5\nG0 Z5\n", kBlock, "ball:10");
    config.m_Sides = 64;
    const double round = 2.0 / 3.0 * std::numbers::pi * 125.0;
    const double removed = Mill(config).m_RemovedVolume;
    EXPECT_GT(removed, round);
    EXPECT_LT(removed, round * 1.02);
}

TEST_F(MillJobTest, WritesWhatItMilled)
{
    MillConfig config =
        Config("G21 G90\nG0 X10 Y10 Z5\nG1 Z-3\nX30 Y17.3\nG2 X40 Y10 R9\n", kBlock, "flat:5");
    config.m_Report = m_Folder / "p.json";
    for (const std::string name : {"p.stl", "p.obj", "p.ply"}) {
        config.m_Output = m_Folder / name;
        const MillResult result = Mill(config);
        const std::string bytes = MillReadFile(config.m_Output);
        const ZULMRSSurfaceMesh mesh = name == "p.stl"   ? MillReadStl(bytes)
                                       : name == "p.obj" ? MillReadObj(bytes)
                                                         : MillReadPly(bytes);
        EXPECT_TRUE(mesh.IsClosed()) << name;
        EXPECT_NEAR(mesh.GetVolume(), result.m_RemainingVolume, 1e-6 * kBlockVolume) << name;
        EXPECT_EQ(MillReadFile(config.m_Report), MillReportText(config, result));
        EXPECT_GT(result.m_Seconds.m_Cut, 0.0);
    }
    EXPECT_EQ(m_Folder.List(), (std::vector<std::string>{"p.json", "p.nc", "p.obj", "p.ply", "p.stl"}));
}

TEST_F(MillJobTest, AFailureLeavesTheOutputsAsTheyWere)
{
    MillConfig config = Config("G21 G90\nG0 X10 Y10 Z5\nG1 Z-3\nG5 X1\n", kBlock, "flat:5");
    config.m_Output = m_Folder.Add("p.stl", "old");
    config.m_Report = m_Folder / "p.json";
    MillProgress progress;
    EXPECT_THROW(MillJob(config).Run(progress), NcError);
    EXPECT_EQ(m_Folder.List(), (std::vector<std::string>{"p.nc", "p.stl"}));
    EXPECT_EQ(MillReadFile(config.m_Output), "old");

    config.m_Program = m_Folder / "missing.nc";
    EXPECT_THROW(MillJob(config).Run(progress), NcError);
    config = Config("G21\nG1 X1 Z-1\n", kBlock, "flat:5");
    config.m_Output = m_Folder / "p.stl";
    config.m_Report = m_Folder / "p.stl";
    EXPECT_EQ(MillComplaint<MillError>([&] { MillJob(config).Run(progress); }),
              "--report: the same file as -o");
    config.m_Report = m_Folder / "no/p.json";
    EXPECT_EQ(MillComplaint<MillError>([&] { MillJob(config).Run(progress); }),
              m_Folder / "no/p.json: cannot be written: No such file or directory");
    EXPECT_EQ(MillReadFile(config.m_Output), "old");
}

/// Counts what a run tells of its progress.
class CountingProgress : public MillProgress
{
public:
    void Update(std::size_t done, std::size_t total) override
    {
        EXPECT_GE(done, m_Done);
        EXPECT_EQ(total, 4U);
        m_Done = done;
        ++m_Updates;
    }
    void Finish() override { ++m_Finishes; }

    std::size_t m_Done = 0;
    int m_Updates = 0;
    int m_Finishes = 0;
};

TEST_F(MillJobTest, TellsItsProgress)
{
    CountingProgress progress;
    MillJob(Config("G21 G90\nG0 X-10 Y15 Z5\nG1 Z-4\nX60\nG0 Z5\n", kBlock, "flat:6")).Run(progress);
    EXPECT_GT(progress.m_Updates, 2);
    EXPECT_EQ(progress.m_Done, 4U);
    EXPECT_EQ(progress.m_Finishes, 1);
}

}  // namespace
