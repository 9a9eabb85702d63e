#include "MillJob.h"

#include <chrono>
#include <utility>

#include "MillCutter.h"
#include "MillError.h"
#include "MillMeshWriter.h"
#include "MillPath.h"
#include "MillReport.h"

namespace
{

/// Adds the time until it is destroyed.
class PhaseTimer
{
public:
    explicit PhaseTimer(double& seconds) : m_Seconds(seconds) {}
    ~PhaseTimer() { m_Seconds += std::chrono::duration<double>(Clock::now() - m_Begin).count(); }
    PhaseTimer(const PhaseTimer&) = delete;
    PhaseTimer& operator=(const PhaseTimer&) = delete;

private:
    using Clock = std::chrono::steady_clock;

    double& m_Seconds;
    Clock::time_point m_Begin = Clock::now();
};

class Runner
{
public:
    Runner(MillConfig config, MillProgress& progress)
        : m_Config(std::move(config)),
          m_Progress(progress),
          m_MeshFile(m_Config.m_Output),
          m_ReportFile(m_Config.m_Report)
    {
        if (!m_Config.m_Output.empty() && m_MeshFile.GetTarget() == m_ReportFile.GetTarget()) {
            throw MillError("--report", "the same file as -o");
        }
    }

    MillResult Run()
    {
        Read();
        MillCutter cutter(m_Result.m_Stock, m_Path, static_cast<std::size_t>(m_Config.m_Threads));
        Cut(cutter);
        ExtractSurface(cutter);
        WriteMesh();
        m_Result.m_Decisions = CollectDecisions();
        m_ReportFile.Write(MillReportText(m_Config, m_Result));
        m_ReportFile.Finish();
        // Only now that both are safely written do the names change.
        m_MeshFile.Publish();
        m_ReportFile.Publish();
        return std::move(m_Result);
    }

private:
    void Read()
    {
        const PhaseTimer timer(m_Result.m_Seconds.m_Read);
        const bool isToolAssumed = !m_Config.m_Tools.m_Default && m_Config.m_Tools.m_Numbered.empty();
        if (isToolAssumed) {
            m_Config.m_Tools.m_Default = kMillAssumedTool;
        }
        const NcProgram program = ReadNcProgram(m_Config.m_Program, m_Config.m_Reading);
        m_Path = MillMakePath(program, m_Config);
        m_Result.m_Program = m_Config.m_Program;
        m_Result.m_Stock = MillMakeStock(program, m_Config);
        m_Result.m_StockVolume = m_Result.m_Stock.GetVolumeMm3();
        m_Result.m_Moves = program.m_moves.size();
        m_Result.m_CuttingMoves = m_Path.m_CuttingMoves;
        m_Result.m_RapidMoves = m_Path.m_RapidMoves;
        m_Result.m_Segments = m_Path.m_Segments.size();
        for (const MillPathTool& tool : m_Path.m_Tools) {
            m_Result.m_Tools.push_back({tool.m_Number, tool.m_Shape});
        }
        m_Result.m_Warnings = program.m_warnings;
        if (isToolAssumed) {
            m_Result.m_Warnings.push_back({0, "no --tool given: cut with " + kMillAssumedTool.GetText()});
        }
    }

    void Cut(MillCutter& cutter)
    {
        const PhaseTimer timer(m_Result.m_Seconds.m_Cut);
        cutter.CutAll(m_Progress);
        m_Result.m_SweptSegments = cutter.GetSweptCount();
        m_Result.m_RapidTouchLines = cutter.GetRapidTouchLines();
        for (const int line : m_Result.m_RapidTouchLines) {
            m_Result.m_Warnings.push_back({line, "rapid move cuts material"});
        }
        m_Result.m_RemainingVolume = cutter.GetVolume();
        m_Result.m_RemovedVolume = m_Result.m_StockVolume - m_Result.m_RemainingVolume;
        m_Result.m_Cells = cutter.GetNbCells();
        m_Result.m_Faces = cutter.GetNbSurfaceFaces();
        if (m_Result.m_Cells == 0) {
            m_Result.m_Warnings.push_back({0, "nothing of the stock is left"});
        }
    }

    void ExtractSurface(const MillCutter& cutter)
    {
        const PhaseTimer timer(m_Result.m_Seconds.m_Surface);
        m_Result.m_Mesh = cutter.ExtractSurface();
        m_Result.m_IsClosed = m_Result.m_Mesh.IsClosed();
    }

    void WriteMesh()
    {
        const PhaseTimer timer(m_Result.m_Seconds.m_Write);
        if (m_Config.m_Output.empty()) {
            return;
        }
        MillWriteMesh(m_Result.m_Mesh, MillMeshFormatOf(m_Config.m_Output), m_MeshFile);
        m_MeshFile.Finish();
    }

    MillConfig m_Config;
    MillProgress& m_Progress;
    MillOutputFile m_MeshFile;
    MillOutputFile m_ReportFile;
    MillPath m_Path;
    MillResult m_Result;
};

}  // namespace

MillResult MillJob::Run(MillProgress& progress)
{
    return Runner(m_Config, progress).Run();
}
