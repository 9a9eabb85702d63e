#include "NcProgram.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include <fmt/format.h>

#include "NcInterpreter.h"

namespace
{

constexpr std::size_t kMaxFileSize = std::size_t{1} << 29;

struct CloseFile {
    void operator()(std::FILE* iFile) const { std::fclose(iFile); }
};

std::string ReadWhole(const std::string& iFile)
{
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(iFile.c_str(), "rb"));
    if (!file) {
        throw NcError(iFile, 0, "cannot open the program", std::strerror(errno));
    }
    std::string text;
    std::vector<char> buffer(std::size_t{1} << 16);
    std::size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), file.get())) > 0) {
        text.append(buffer.data(), got);
        if (text.size() > kMaxFileSize) {
            throw NcError(iFile, 0, "cannot read the program", "it is larger than 512 MiB");
        }
    }
    if (std::ferror(file.get()) != 0) {
        throw NcError(iFile, 0, "cannot read the program", std::strerror(errno));
    }
    return text;
}

bool IsCutting(const NcMove& iMove)
{
    return iMove.m_kind != NcMoveKind::Rapid && iMove.m_mayCut;
}

}  // namespace

NcExtents NcProgram::CuttingExtents() const
{
    NcExtents extents;
    for (const NcMove& move : m_moves) {
        if (IsCutting(move)) {
            extents.AddMove(move);
        }
    }
    return extents;
}

NcExtents NcProgram::MotionExtents() const
{
    NcExtents extents;
    for (const NcMove& move : m_moves) {
        if (move.m_mayCut) {
            extents.AddMove(move);
        } else if (!move.m_isMachineMove) {
            extents.AddPoint(move.m_end, move.m_knownAxes);
        }
    }
    return extents;
}

std::vector<int> NcProgram::CuttingTools() const
{
    std::set<int> tools;
    for (const NcMove& move : m_moves) {
        if (IsCutting(move)) {
            tools.insert(move.m_tool);
        }
    }
    return {tools.begin(), tools.end()};
}

std::string NcFormatWarning(const NcProgram& iProgram, const NcWarning& iWarning)
{
    if (iWarning.m_line == 0) {
        return fmt::format("{}: warning: {}", iProgram.m_file, iWarning.m_text);
    }
    return fmt::format("{}:{}: warning: {}", iProgram.m_file, iWarning.m_line, iWarning.m_text);
}

NcProgram ParseNcProgram(std::string_view iText, const std::string& iFile, const NcOptions& iOptions)
{
    return NcInterpreter(iText, iFile, iOptions).Run();
}

NcProgram ReadNcProgram(const std::string& iFile, const NcOptions& iOptions)
{
    return ParseNcProgram(ReadWhole(iFile), iFile, iOptions);
}
