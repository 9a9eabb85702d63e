#ifndef NcInterpreter_h
#define NcInterpreter_h

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "NcBlockWords.h"
#include "NcDrillCycle.h"
#include "NcMotion.h"
#include "NcProgram.h"
#include "NcTokenizer.h"

/// Carries out the blocks of one program: keeps the modal state and turns each block into moves. For one use;
/// holds a view into the text.
class NcInterpreter
{
public:
    NcInterpreter(std::string_view iText, const std::string& iFile, const NcOptions& iOptions);

    /// Throws NcError at the first mistake.
    NcProgram Run();

private:
    using Offset = std::array<double, 3>;

    void ReadBlocks();
    void ReadBlock(const NcBlock& iBlock);
    void WarnOnce(const std::string& iText);
    void FinishWarnings();

    void Execute(const NcBlockWords& iWords);
    void SetTool(const NcBlockWords& iWords);
    void SetModes(const NcBlockWords& iWords);
    void SetWorkOffset(const NcBlockWords& iWords);
    void AssumeOrigins();
    void AcceptMCodes(const NcBlockWords& iWords);

    void Dwell(const NcBlockWords& iWords) const;
    void MoveInMachine(const NcBlockWords& iWords, int iCode);
    void Move(const NcBlockWords& iWords);
    void MoveStraight(const NcBlockWords& iWords);
    void MoveOnArc(const NcBlockWords& iWords);
    void Drill(const NcBlockWords& iWords);

    double Length(const NcBlockWords& iWords, char iLetter) const;
    std::optional<double> OptionalLength(const NcBlockWords& iWords, char iLetter) const;
    NcPosition Target(const NcBlockWords& iWords) const;

    NcProgram m_program;
    NcOptions m_options;
    NcTokenizer m_tokenizer;
    NcMotion m_motion;
    NcDrillCycle m_drill;
    std::set<std::string> m_warned;

    int m_line = 0;
    bool m_seenPercent = false;
    bool m_seenAction = false;
    bool m_isEnded = false;

    int m_motionCode = NcBlockWords::kNone;
    NcPlane m_plane = NcPlane::XY;
    bool m_isInch = false;
    bool m_isIncremental = false;
    bool m_retractsToR = false;
    std::array<Offset, 6> m_offsets{};
    std::size_t m_offset = 0;
    int m_selectedTool = kNcNoTool;
    bool m_seenToolChange = false;
};

#endif
