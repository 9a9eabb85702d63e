#include "NcInterpreter.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace
{

constexpr double kInch = 25.4;
constexpr double kMaxLength = 1e8;
constexpr const char* kAxisLetters = "XYZ";
constexpr const char* kCentreLetters = "IJK";
constexpr int kMaxTool = 99'999'999;
constexpr int kMaxRepeats = 100'000;
constexpr unsigned kAllAxes = 7U;

enum GTenths {
    kRapid = 0,
    kLine = 10,
    kClockwise = 20,
    kCounterclockwise = 30,
    kDwell = 40,
    kSetData = 100,
    kPlaneZX = 180,
    kPlaneYZ = 190,
    kInches = 200,
    kCompensationOff = 400,
    kFirstWorkOffset = 540,
    kCancelCycle = 800,
    kIncremental = 910,
    kRetractToR = 990
};

constexpr int kEndCodes[] = {2, 30, 99};
constexpr int kToolChange = 6;
constexpr int kSetToolNumber = 61;
// Stops, ends, spindle, tool, coolant, overrides, pallet.
constexpr int kKnownMCodes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 19, 30, 48, 49, 60, 61, 99};

bool HasCentre(const NcBlockWords& iWords)
{
    return iWords.Has('I') || iWords.Has('J') || iWords.Has('K');
}

/// An R beside an M code and no axis belongs to that code, as in "M19 R90".
bool HasRadius(const NcBlockWords& iWords)
{
    return iWords.Has('R') && (iWords.HasAxis() || iWords.MCodes().empty());
}

void RefuseWords(const NcBlockWords& iWords, const char* iLetters, const char* iReason)
{
    for (const char* letter = iLetters; *letter != '\0'; ++letter) {
        if (iWords.Has(*letter)) {
            throw NcFault{fmt::format("misplaced word '{}'", iWords.Text(*letter)), iReason};
        }
    }
}

}  // namespace

NcInterpreter::NcInterpreter(std::string_view iText, const std::string& iFile, const NcOptions& iOptions)
    : m_options(iOptions),
      m_tokenizer(iText, iOptions.m_runDeletedBlocks),
      m_motion(m_program),
      m_isInch(iOptions.m_defaultUnits == NcUnits::Inches)
{
    m_program.m_file = iFile;
}

NcProgram NcInterpreter::Run()
{
    try {
        ReadBlocks();
    } catch (const NcFault& fault) {
        throw NcError(m_program.m_file, m_line, fault.m_subject, fault.m_reason);
    }
    FinishWarnings();
    return std::move(m_program);
}

void NcInterpreter::ReadBlocks()
{
    NcBlock block;
    while (!m_isEnded) {
        // Set before the block is looked at, so that a fault within it names its line.
        m_line = m_tokenizer.Line() + 1;
        if (!m_tokenizer.NextBlock(block)) {
            return;
        }
        ReadBlock(block);
    }
}

void NcInterpreter::ReadBlock(const NcBlock& iBlock)
{
    if (iBlock.m_hasBrokenHeader) {
        WarnOnce("text before ')' without '(' is taken for a comment");
    }
    if (iBlock.m_hasUnclosedComment) {
        WarnOnce("a comment that is not closed takes the rest of its line");
    }
    if (iBlock.m_isPercent) {
        m_isEnded = m_seenPercent || m_seenAction;
        m_seenPercent = true;
        return;
    }
    if (iBlock.m_isDeleted && !m_options.m_runDeletedBlocks) {
        WarnOnce("blocks that start with '/' are passed over");
        return;
    }
    const NcBlockWords words(iBlock);
    if (!words.HasAction()) {
        return;
    }
    m_seenAction = true;
    m_motion.SetLine(m_line);
    Execute(words);
}

void NcInterpreter::WarnOnce(const std::string& iText)
{
    if (m_warned.insert(iText).second) {
        m_program.m_warnings.push_back({m_line, iText});
    }
}

void NcInterpreter::FinishWarnings()
{
    if (m_isEnded && m_tokenizer.HasMoreText()) {
        WarnOnce("the program ends here; the text after it is ignored");
    }
    m_line = 0;
    if (m_program.m_moves.empty()) {
        WarnOnce("the program makes no move");
    } else if (!m_program.m_statesUnits) {
        WarnOnce(fmt::format("the program states no units; its lengths are taken as {}",
                             m_isInch ? "inches" : "millimetres"));
    }
}

void NcInterpreter::Execute(const NcBlockWords& iWords)
{
    AcceptMCodes(iWords);
    SetTool(iWords);
    SetModes(iWords);
    const int special = iWords.Code(NcGroup::Special);
    if (special == kDwell) {
        Dwell(iWords);
    } else if (special == kSetData) {
        SetWorkOffset(iWords);
    } else if (special != NcBlockWords::kNone) {
        MoveInMachine(iWords, special);
    } else {
        Move(iWords);
    }
    const auto ends = [&](int iCode) { return iWords.HasM(iCode); };
    if (!m_options.m_readJoinedPrograms && std::any_of(std::begin(kEndCodes), std::end(kEndCodes), ends)) {
        m_isEnded = true;
    }
}

void NcInterpreter::AcceptMCodes(const NcBlockWords& iWords)
{
    for (const int code : iWords.MCodes()) {
        if (std::find(std::begin(kKnownMCodes), std::end(kKnownMCodes), code) == std::end(kKnownMCodes)) {
            WarnOnce(fmt::format("M{} is not known here and is ignored", code));
        }
    }
}

void NcInterpreter::SetTool(const NcBlockWords& iWords)
{
    if (iWords.Has('T')) {
        m_selectedTool = iWords.Whole('T', 0, kMaxTool);
    }
    if (iWords.HasM(kSetToolNumber) && iWords.Has('Q')) {
        m_selectedTool = iWords.Whole('Q', 0, kMaxTool);
    }
    const bool isChange = iWords.HasM(kToolChange) || iWords.HasM(kSetToolNumber);
    m_seenToolChange = m_seenToolChange || isChange;
    // A program that never changes tools names the one in the spindle by T alone; one that does uses T alone
    // to get the next one ready.
    if (isChange || !m_seenToolChange) {
        m_motion.SetTool(m_selectedTool);
    }
}

void NcInterpreter::SetModes(const NcBlockWords& iWords)
{
    if (const int code = iWords.Code(NcGroup::Units); code != NcBlockWords::kNone) {
        m_isInch = code == kInches;
        m_program.m_statesUnits = true;
    }
    if (const int code = iWords.Code(NcGroup::Plane); code != NcBlockWords::kNone) {
        m_plane = code == kPlaneZX ? NcPlane::ZX : code == kPlaneYZ ? NcPlane::YZ : NcPlane::XY;
    }
    if (const int code = iWords.Code(NcGroup::Compensation); code > kCompensationOff) {
        WarnOnce("cutter compensation (G41, G42) is not applied; the programmed path is cut");
    }
    if (const int code = iWords.Code(NcGroup::WorkOffset); code != NcBlockWords::kNone) {
        m_offset = static_cast<std::size_t>(code - kFirstWorkOffset) / 10;
        AssumeOrigins();
    }
    if (const int code = iWords.Code(NcGroup::Distance); code != NcBlockWords::kNone) {
        m_isIncremental = code == kIncremental;
    }
    if (const int code = iWords.Code(NcGroup::Retract); code != NcBlockWords::kNone) {
        m_retractsToR = code == kRetractToR;
    }
    if (const int code = iWords.Code(NcGroup::Motion); code != NcBlockWords::kNone) {
        m_motionCode = code;
        if (code <= kCounterclockwise || code == kCancelCycle) {
            m_drill.End();
        }
    }
}

void NcInterpreter::AssumeOrigins()
{
    for (int axis = 0; axis < 3; ++axis) {
        m_motion.AssumeOrigin(axis, m_offsets[m_offset][static_cast<std::size_t>(axis)]);
    }
}

void NcInterpreter::SetWorkOffset(const NcBlockWords& iWords)
{
    if (!iWords.Has('L') || iWords.Value('L') != 2.0) {
        throw NcFault{"unsupported code 'G10'", "only work offsets can be set (G10 L2 P1 to P6)"};
    }
    if (!iWords.Has('P')) {
        throw NcFault{"G10 L2 without P", "the number of the work offset is needed"};
    }
    const auto offset = static_cast<std::size_t>(iWords.Whole('P', 1, 6)) - 1;
    if (iWords.Has('R') && iWords.Value('R') != 0.0) {
        throw NcFault{fmt::format("unsupported word '{}'", iWords.Text('R')),
                      "work offsets cannot be rotated"};
    }
    if (m_isIncremental && iWords.HasAxis()) {
        throw NcFault{"G10 L2 under G91", "controls differ in its meaning; set work offsets under G90"};
    }
    RefuseWords(iWords, kCentreLetters, "it has no meaning beside G10");
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (const auto value = OptionalLength(iWords, kAxisLetters[axis])) {
            m_offsets[offset][axis] = *value;
        }
    }
    AssumeOrigins();
}

void NcInterpreter::Dwell(const NcBlockWords& iWords) const
{
    // Some controls take the time from X.
    RefuseWords(iWords, iWords.Has('P') ? "XYZ" : "YZ", "G4 cannot stand in one block with a move");
}

void NcInterpreter::MoveInMachine(const NcBlockWords& iWords, int iCode)
{
    RefuseWords(iWords, "IJKR", "it has no meaning in a move in machine coordinates");
    unsigned axes = 0;
    for (int axis = 0; axis < 3; ++axis) {
        axes |= iWords.Has(kAxisLetters[axis]) ? 1U << axis : 0U;
    }
    constexpr int kInMachine = 530;
    if (axes == 0 && iCode == kInMachine) {
        return;
    }
    m_drill.End();
    m_motion.Machine(axes == 0 ? kAllAxes : axes);
}

void NcInterpreter::Move(const NcBlockWords& iWords)
{
    switch (m_motionCode) {
        case NcBlockWords::kNone:
        case kCancelCycle:
            if (iWords.HasAxis() || HasCentre(iWords) || HasRadius(iWords)) {
                throw NcFault{"axis words without a motion code",
                              m_motionCode == kCancelCycle ? "after G80 a G0, G1, G2 or G3 is needed"
                                                           : "no G0, G1, G2 or G3 stands before them"};
            }
            return;
        case kRapid:
        case kLine:
            return MoveStraight(iWords);
        case kClockwise:
        case kCounterclockwise:
            return MoveOnArc(iWords);
        default:
            return Drill(iWords);
    }
}

void NcInterpreter::MoveStraight(const NcBlockWords& iWords)
{
    if (HasCentre(iWords) || HasRadius(iWords)) {
        RefuseWords(iWords, "IJKR", "it has no meaning in a straight move");
    }
    if (!iWords.HasAxis()) {
        return;
    }
    if (m_motionCode == kRapid) {
        m_motion.Rapid(Target(iWords));
    } else {
        m_motion.Line(Target(iWords));
    }
}

void NcInterpreter::MoveOnArc(const NcBlockWords& iWords)
{
    if (!iWords.HasAxis() && !HasCentre(iWords) && !HasRadius(iWords)) {
        return;
    }
    NcArcWords words;
    words.m_plane = m_plane;
    words.m_isCounterclockwise = m_motionCode == kCounterclockwise;
    words.m_isInch = m_isInch;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        words.m_centreOffsets[axis] = OptionalLength(iWords, kCentreLetters[axis]);
    }
    words.m_radius = OptionalLength(iWords, 'R');
    if (iWords.Has('P')) {
        words.m_turns = iWords.Whole('P', 1, kNcMaxTurns);
    }
    m_motion.Arc(words, Target(iWords));
}

void NcInterpreter::Drill(const NcBlockWords& iWords)
{
    const bool isStated = iWords.Code(NcGroup::Motion) != NcBlockWords::kNone;
    if (!iWords.HasAxis() && !HasRadius(iWords) && !isStated) {
        return;
    }
    RefuseWords(iWords, kCentreLetters, "it has no meaning in a drill cycle; L repeats");
    const int across = NcAxesOf(m_plane).m_w;
    NcDrillWords words;
    words.m_code = m_motionCode / 10;
    words.m_plane = m_plane;
    words.m_bottom = OptionalLength(iWords, kAxisLetters[across]);
    words.m_retract = OptionalLength(iWords, 'R');
    words.m_peck = OptionalLength(iWords, 'Q');
    if (iWords.Has('L')) {
        words.m_repeats = iWords.Whole('L', 0, kMaxRepeats);
    }
    words.m_isIncremental = m_isIncremental;
    words.m_retractsToR = m_retractsToR;
    words.m_offset = m_offsets[m_offset][static_cast<std::size_t>(across)];
    words.m_target = Target(iWords);
    m_drill.Run(words, m_motion, m_program.m_holeCount);
}

double NcInterpreter::Length(const NcBlockWords& iWords, char iLetter) const
{
    const double value = iWords.Value(iLetter) * (m_isInch ? kInch : 1.0);
    if (!(std::fabs(value) <= kMaxLength)) {
        throw NcFault{fmt::format("number too large in '{}'", iWords.Text(iLetter)),
                      fmt::format("lengths end at {:.0f} mm", kMaxLength)};
    }
    return value;
}

std::optional<double> NcInterpreter::OptionalLength(const NcBlockWords& iWords, char iLetter) const
{
    if (!iWords.Has(iLetter)) {
        return std::nullopt;
    }
    return Length(iWords, iLetter);
}

NcPosition NcInterpreter::Target(const NcBlockWords& iWords) const
{
    NcPosition target = m_motion.Position();
    for (int axis = 0; axis < 3; ++axis) {
        const auto value = OptionalLength(iWords, kAxisLetters[axis]);
        if (!value) {
            continue;
        }
        const bool isLost = target.State(axis) == NcAxisState::Unknown;
        if (m_isIncremental) {
            target.Set(axis, target.Value(axis) + *value, isLost ? NcAxisState::Unknown : NcAxisState::Known);
        } else {
            target.Set(axis, *value + m_offsets[m_offset][static_cast<std::size_t>(axis)]);
        }
        if (!(std::fabs(target.Value(axis)) <= kMaxLength)) {
            throw NcFault{fmt::format("move too far in '{}'", iWords.Text(kAxisLetters[axis])),
                          fmt::format("lengths end at {:.0f} mm", kMaxLength)};
        }
    }
    return target;
}
