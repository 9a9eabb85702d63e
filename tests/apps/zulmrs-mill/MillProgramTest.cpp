#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "MillMeshReader.h"
#include "MillTestHelp.h"
#include "ZULTestChildProcess.h"

/// The program as its users start it.
namespace
{

constexpr const char* kProgram = "G21 G90\nG0 X-10 Y15 Z5\nG1 Z-4\nX60\nG0 Z5\n";
constexpr const char* kBlock = "--stock 0,0,-10,50,30,0";

/// What a run says and where.
struct RunResult {
    std::string m_Output;
    std::string m_Errors;
    int m_ExitCode;
};

class MillProgramTest : public testing::Test
{
protected:
    /// Runs in the folder of the test.
    RunResult Run(const std::string& arguments)
    {
        const std::string errors = m_Aside / "errors";
        const ZULTest::ChildResult child = ZULTest::RunChild(
            "env --chdir=" + m_Folder.GetPath() + " " ZUL_MILL_PROGRAM " " + arguments + " 2>" + errors);
        return {child.m_Output, MillReadFile(errors), child.m_ExitCode};
    }

    /// Bad input: one line, status 2, nothing on standard output, nothing written.
    void ExpectRefusal(const std::string& arguments, const std::string& line)
    {
        const auto before = m_Folder.List();
        const RunResult run = Run(arguments);
        EXPECT_EQ(run.m_Errors, "zulmrs-mill: " + line + "\n");
        EXPECT_EQ(run.m_Output, "");
        EXPECT_EQ(run.m_ExitCode, 2);
        EXPECT_EQ(m_Folder.List(), before);
    }

    /// Many short moves through a large block with a ball: long enough to be interrupted.
    void AddLongProgram(const std::string& name)
    {
        std::string text = "G21 G90\nG0 X0 Y0 Z5\n";
        for (int i = 0; i < 40'000; ++i) {
            text += "G1 X" + std::to_string(i * 37 % 101) + " Y" + std::to_string(i * 53 % 89) + " Z-" +
                    std::to_string(i * 29 % 19 + 1) + "\n";
        }
        m_Folder.Add(name, text);
    }

    MillTestFolder m_Folder;
    MillTestFolder m_Aside;
};

TEST_F(MillProgramTest, MillsAndSaysSoAndNothingElse)
{
    m_Folder.Add("p.nc", kProgram);
    const RunResult run = Run(std::string("p.nc --tool flat:6 -o p.stl --report p.json ") + kBlock);
    EXPECT_EQ(run.m_ExitCode, 0);
    EXPECT_EQ(run.m_Errors, "") << "no progress bar into a file, no words of the library";
    EXPECT_TRUE(run.m_Output.starts_with(
        "p.nc: 4 moves (2 cutting, 2 rapid), cut with flat:6.\n"
        "Stock: 50 x 30 x 10 mm, 15000.000 mm3. Removed 1200.000 mm3, 13800.000 mm3 remain.\n"))
        << run.m_Output;
    EXPECT_EQ(m_Folder.List(), (std::vector<std::string>{"p.json", "p.nc", "p.stl"}));
    const auto report = nlohmann::json::parse(MillReadFile(m_Folder / "p.json"));
    EXPECT_EQ(report["moves"], 4);
    EXPECT_EQ(report["closed"], true);
    EXPECT_NEAR(report["removed_volume"].get<double>(), 1200.0, 1e-6);
    EXPECT_TRUE(MillReadStl(MillReadFile(m_Folder / "p.stl")).IsClosed());
}

TEST_F(MillProgramTest, WritesTheSameBytesWithAnyThreads)
{
    std::string text = "G21 G90\nG0 X0 Y2 Z5\nG1 Z-1\n";
    for (int i = 0; i < 120; ++i) {
        text += "G1 X" + std::to_string(i * 37 % 51) + " Y" + std::to_string(2 + i / 5) + " Z-" +
                std::to_string(i * 29 % 3 + 1) + "\n";
    }
    m_Folder.Add("p.nc", text);
    std::string firstMesh;
    std::string firstReport;
    for (const char* threads : {"--threads 1", "--threads 2", "--threads 5", ""}) {
        const RunResult run =
            Run(std::string("p.nc --tool ball:4 -o p.stl --report p.json ") + kBlock + " " + threads);
        EXPECT_EQ(run.m_ExitCode, 0) << run.m_Errors;
        auto report = nlohmann::json::parse(MillReadFile(m_Folder / "p.json"));
        report.erase("seconds");
        const std::string mesh = MillReadFile(m_Folder / "p.stl");
        firstMesh = firstMesh.empty() ? mesh : firstMesh;
        firstReport = firstReport.empty() ? report.dump() : firstReport;
        EXPECT_TRUE(mesh == firstMesh) << threads;
        EXPECT_EQ(report.dump(), firstReport) << threads;
    }
}

TEST_F(MillProgramTest, ShowsTheLibrarysWordsOnRequest)
{
    m_Folder.Add("p.nc", kProgram);
    const RunResult run = Run(std::string("p.nc --tool flat:6 -o p.stl --verbose ") + kBlock);
    EXPECT_EQ(run.m_ExitCode, 0);
    EXPECT_NE(run.m_Errors.find("ZULMRSBSPPlane Counter"), std::string::npos) << run.m_Errors;
}

TEST_F(MillProgramTest, WarnsOnStandardError)
{
    m_Folder.Add("p.nc", "G21 G90\nG0 X10 Y15 Z5\nG0 Z-4\n");
    const RunResult run = Run(std::string("p.nc --tool flat:6 -o p.stl ") + kBlock);
    EXPECT_EQ(run.m_ExitCode, 0);
    EXPECT_EQ(run.m_Errors, "zulmrs-mill: p.nc:3: warning: rapid move cuts material\n");
}

TEST_F(MillProgramTest, HelpsAndTellsItsVersion)
{
    const RunResult help = Run("--help");
    EXPECT_EQ(help.m_ExitCode, 0);
    EXPECT_EQ(help.m_Errors, "");
    EXPECT_NE(help.m_Output.find("--stock"), std::string::npos);
    const RunResult version = Run("--version");
    EXPECT_EQ(version.m_ExitCode, 0);
    EXPECT_TRUE(version.m_Output.starts_with("zulmrs-mill ")) << version.m_Output;
}

TEST_F(MillProgramTest, RefusesBadArguments)
{
    m_Folder.Add("p.nc", kProgram);
    ExpectRefusal("", "PROGRAM: missing; see --help");
    ExpectRefusal("p.nc", "-o: missing: the file to write; see --help");
    ExpectRefusal("p.nc -o p.stl --frobnicate", "--frobnicate: unknown option");
    ExpectRefusal("p.nc -o p.step", "-o: 'p.step' does not end in .stl, .obj or .ply");
    ExpectRefusal("p.nc -o p.stl --stock 1,2",
                  "--stock: '1,2' has 2 numbers, not the six of X0,Y0,Z0,X1,Y1,Z1");
    ExpectRefusal("p.nc -o p.stl --tool flat:0", "--tool: 'flat:0': a tool of no size");
    ExpectRefusal("p.nc -o p.stl --tool 1=ball:-2", "--tool: 'ball:-2': a tool of no size");
    ExpectRefusal("p.nc -o p.stl --tool ball:0.0002", "--tool: 'ball:0.0002': too small for 16 sides");
    ExpectRefusal("p.nc -o p.stl --sides two", "--sides: 'two' is not a whole number");
    ExpectRefusal("p.nc -o p.stl --units furlong", "--units: 'furlong' is neither mm nor inch");
    ExpectRefusal("p.nc -o p.stl --chord 0", "--chord: 0 is not from 1e-05 to 100");
}

TEST_F(MillProgramTest, RefusesBadPrograms)
{
    const auto expect = [this](const std::string& text, const std::string& line) {
        m_Folder.Add("p.nc", text);
        ExpectRefusal("p.nc --tool 1=flat:6 -o p.stl --report p.json", line);
    };
    ExpectRefusal("missing.nc --tool flat:6 -o p.stl",
                  "missing.nc: error: cannot open the program: No such file or directory");
    expect("G21\nT1 M6\nG1 X\n", "p.nc:3: error: missing number after 'X': a word is a letter and a number");
    expect("G21\nT1 M6\nG1 X1\n\nT2 M6\nG1 X2\n",
           "p.nc:6: error: tool T2 has no shape: give --tool 2=SHAPE, or --tool SHAPE for all");
    expect("G21\nG1 X1 Z-1\n", "p.nc:2: error: no tool number yet: give --tool SHAPE");
    expect("", "--stock: the program makes no cutting move to take a box from");
}

TEST_F(MillProgramTest, RefusesWordsAndArcsThatItCannotCut)
{
    for (const char* block :
         {"G1 A5", "G12.5 X1", "G2 X10 Y0 I1 J0", "G2 X10 Y0", "G2 X10 Y0 R1", "G1 X[1+2]"}) {
        m_Folder.Add("p.nc", std::string("G21 G90\nG0 X0 Y0\n") + block + "\n");
        const RunResult run = Run("p.nc --tool flat:6 -o p.stl");
        EXPECT_TRUE(run.m_Errors.starts_with("zulmrs-mill: p.nc:3: error: ")) << run.m_Errors;
        EXPECT_EQ(std::count(run.m_Errors.begin(), run.m_Errors.end(), '\n'), 1) << run.m_Errors;
        EXPECT_EQ(run.m_ExitCode, 2) << block;
    }
    EXPECT_EQ(m_Folder.List(), std::vector<std::string>{"p.nc"});
}

TEST_F(MillProgramTest, RefusesOutputsThatCannotBeWritten)
{
    m_Folder.Add("p.nc", kProgram);
    m_Folder.Add("file", "");
    std::filesystem::create_directory(m_Folder / "d.stl");
    ExpectRefusal("p.nc --tool flat:6 -o no/p.stl", "no/p.stl: cannot be written: No such file or directory");
    ExpectRefusal("p.nc --tool flat:6 -o file/p.stl", "file/p.stl: cannot be written: Not a directory");
    ExpectRefusal("p.nc --tool flat:6 -o d.stl", "d.stl: cannot be written: Is a directory");
    ExpectRefusal("p.nc --tool flat:6 -o p.stl --report /dev/full",
                  "/dev/full: cannot be written: not a regular file");
    ExpectRefusal("p.nc --tool flat:6 -o p.stl --report p.stl", "--report: the same file as -o");
}

TEST_F(MillProgramTest, AnUnwritableReportLeavesTheOldPart)
{
    m_Folder.Add("p.nc", kProgram);
    m_Folder.Add("p.stl", "old");
    ExpectRefusal("p.nc --tool flat:6 -o p.stl --report no/p.json",
                  "no/p.json: cannot be written: No such file or directory");
    EXPECT_EQ(MillReadFile(m_Folder / "p.stl"), "old");
}

/// Waits until the folder holds more than so many names; false after a minute.
bool WaitForMoreThan(const MillTestFolder& folder, std::size_t count)
{
    for (int i = 0; i < 6000 && folder.List().size() <= count; ++i) {
        usleep(10'000);
    }
    return folder.List().size() > count;
}

TEST_F(MillProgramTest, AnInterruptedRunLeavesNothingAndSparesTheOldPart)
{
    AddLongProgram("p.nc");
    m_Folder.Add("p.stl", "old");
    for (const int signal : {SIGINT, SIGTERM}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (chdir(m_Folder.GetPath().c_str()) == 0) {
                execl(ZUL_MILL_PROGRAM, ZUL_MILL_PROGRAM, "p.nc", "--tool", "ball:6", "-o", "p.stl",
                      "--report", "p.json", nullptr);
            }
            _exit(99);
        }
        // The program, the old part, and what is being written of both outputs.
        ASSERT_TRUE(WaitForMoreThan(m_Folder, 3));
        ASSERT_EQ(kill(child, signal), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(m_Folder.List(), (std::vector<std::string>{"p.nc", "p.stl"}));
        EXPECT_EQ(MillReadFile(m_Folder / "p.stl"), "old");
    }
}

}  // namespace
