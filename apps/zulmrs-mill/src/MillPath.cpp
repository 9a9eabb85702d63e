#include "MillPath.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "MillError.h"

namespace
{

/// The places between the ends of an arc are free to be round numbers of this many nanometres, a fraction of
/// any chord tolerance: short directions give short normals.
constexpr std::int64_t kChordGrid = 100;

class PathMaker
{
public:
    PathMaker(const NcProgram& program, const MillConfig& config) : m_Program(program), m_Config(config) {}

    MillPath Make()
    {
        for (const NcMove& move : m_Program.m_moves) {
            AddMove(move);
        }
        return std::move(m_Path);
    }

private:
    void AddMove(const NcMove& move)
    {
        const bool isRapid = move.m_kind == NcMoveKind::Rapid;
        ++(isRapid ? m_Path.m_RapidMoves : m_Path.m_CuttingMoves);
        if (!move.m_mayCut || (isRapid && m_Config.m_Tools.Find(move.m_tool) == nullptr)) {
            return;
        }
        const std::size_t tool = FindTool(move);
        const std::vector<ZULMathPoint> points = FlattenArc(move, m_Config.m_ChordTolerance);
        if (points.empty()) {
            throw MillError("--chord", fmt::format("{} makes more than {} chords of the arc on line {}",
                                                   m_Config.m_ChordTolerance, kNcMaxChords, move.m_line));
        }
        MillVector start = Snap(points.front(), move, 1);
        for (std::size_t i = 1; i < points.size(); ++i) {
            const bool isEnd = i + 1 == points.size();
            const MillVector end = Snap(points[i], move, isEnd ? 1 : kChordGrid);
            m_Path.m_Segments.push_back({start, end, move.m_line, tool, isRapid});
            start = end;
        }
    }

    std::size_t FindTool(const NcMove& move)
    {
        const auto known = m_ToolIndices.find(move.m_tool);
        if (known != m_ToolIndices.end()) {
            return known->second;
        }
        const MillShape* const shape = m_Config.m_Tools.Find(move.m_tool);
        if (shape == nullptr && move.m_tool == kNcNoTool) {
            throw NcError(m_Program.m_file, move.m_line, "no tool number yet", "give --tool SHAPE");
        }
        if (shape == nullptr) {
            throw NcError(m_Program.m_file, move.m_line, fmt::format("tool T{} has no shape", move.m_tool),
                          fmt::format("give --tool {}=SHAPE, or --tool SHAPE for all", move.m_tool));
        }
        const MillToolProfile profile =
            MillMakeToolProfile(*shape, m_Config.m_Sides, m_Config.m_FlatKind, "--tool");
        m_Path.m_Tools.push_back({move.m_tool, *shape, MillTool(profile)});
        return m_ToolIndices.emplace(move.m_tool, m_Path.m_Tools.size() - 1).first->second;
    }

    MillVector Snap(const ZULMathPoint& point, const NcMove& move, std::int64_t grid) const
    {
        MillVector place;
        if (!MillSnap(point, place)) {
            throw NcError(m_Program.m_file, move.m_line, "place too far out",
                          fmt::format("more than {} m from zero", kMillFarthestPlace / 1'000'000'000));
        }
        const auto rounded = [grid](std::int64_t v) {
            const std::int64_t half = v < 0 ? -grid / 2 : grid / 2;
            return (v + half) / grid * grid;
        };
        return grid == 1 ? place : MillVector{rounded(place.m_X), rounded(place.m_Y), rounded(place.m_Z)};
    }

    const NcProgram& m_Program;
    const MillConfig& m_Config;
    MillPath m_Path;
    std::map<int, std::size_t> m_ToolIndices;
};

/// The box that the tools reach while cutting: at full width in X and Y, with the tip in Z.
NcExtents ReachedBox(const NcProgram& program, const MillToolTable& tools)
{
    NcExtents reached;
    for (const NcMove& move : program.m_moves) {
        if (move.m_kind == NcMoveKind::Rapid) {
            continue;
        }
        const MillShape* const shape = tools.Find(move.m_tool);
        const double radius = shape != nullptr ? shape->m_Diameter / 2.0 : 0.0;
        NcExtents way;
        way.AddMove(move);
        reached.AddPoint({way.Min().x - radius, way.Min().y - radius, way.Min().z});
        reached.AddPoint({way.Max().x + radius, way.Max().y + radius, way.Max().z});
    }
    return reached;
}

}  // namespace

std::int64_t MillPath::GetLargestReach() const
{
    std::int64_t reach = 0;
    for (const MillPathTool& tool : m_Tools) {
        reach = std::max(reach, tool.m_Tool.GetReach());
    }
    return reach;
}

MillPath MillMakePath(const NcProgram& program, const MillConfig& config)
{
    return PathMaker(program, config).Make();
}

MillBox MillMakeStock(const NcProgram& program, const MillConfig& config)
{
    ZULMathPoint low = config.m_Stock.m_Min;
    ZULMathPoint high = config.m_Stock.m_Max;
    if (config.m_Stock.m_IsAuto) {
        const NcExtents reached = ReachedBox(program, config.m_Tools);
        if (reached.IsEmpty()) {
            throw MillError("--stock", "the program makes no cutting move to take a box from");
        }
        const double margin = config.m_Stock.m_Margin;
        low = reached.Min() + ZULMathVector(-margin, -margin, -margin);
        high = {reached.Max().x + margin, reached.Max().y + margin,
                reached.Min().z < 0.0 ? 0.0 : reached.Max().z};
    }
    MillBox box;
    if (!MillSnap(low, box.m_Min) || !MillSnap(high, box.m_Max)) {
        throw MillError("--stock", "the program goes too far out");
    }
    const MillVector size = box.m_Max - box.m_Min;
    if (size.m_X <= 0 || size.m_Y <= 0 || size.m_Z <= 0) {
        throw MillError("--stock", "the cutting moves and the margin give a box of no size");
    }
    return box;
}
