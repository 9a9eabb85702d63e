#ifndef NcBlockWords_h
#define NcBlockWords_h

#include <array>
#include <string>
#include <vector>

#include "NcTokenizer.h"

/// The modal groups of the G codes, as far as the reader tells them apart. Two different codes of one group
/// cannot stand in one block.
enum class NcGroup {
    Motion,
    Plane,
    Units,
    Distance,
    WorkOffset,
    Retract,
    Compensation,
    /// G4, G10, G28, G30, G53: codes for one block only.
    Special,
    /// Without influence on the shape that is cut.
    Ignored
};

/// The words of one block sorted by what they are: the G codes by group, the M codes in order, every other
/// word by its letter. The constructor throws NcFault for a word, code or combination that cannot be read. G
/// codes are given in tenths: 910 is G91, 911 is G91.1.
class NcBlockWords
{
public:
    explicit NcBlockWords(const NcBlock& iBlock);

    static constexpr int kNone = -1;

    /// The code of the group in this block, or kNone. Of G80 and another motion code the other one counts.
    int Code(NcGroup iGroup) const { return m_codes[static_cast<std::size_t>(iGroup)]; }
    /// G codes of group Ignored and plain M numbers, in the order of the block.
    const std::vector<int>& MCodes() const { return m_mCodes; }
    bool HasM(int iCode) const;

    bool Has(char iLetter) const { return m_has[Slot(iLetter)]; }
    double Value(char iLetter) const { return m_values[Slot(iLetter)]; }
    /// The value of a word that must be a whole number within limits. Throws NcFault.
    int Whole(char iLetter, int iLowest, int iHighest) const;
    /// The word as it was written, for messages; empty if there is none.
    std::string Text(char iLetter) const;
    bool HasAxis() const { return Has('X') || Has('Y') || Has('Z'); }
    /// Whether the block holds any word besides N and O numbers.
    bool HasAction() const { return m_hasAction; }

    /// "G91.1" for 911.
    static std::string CodeName(int iTenths);

private:
    static std::size_t Slot(char iLetter) { return static_cast<std::size_t>(iLetter - 'A'); }
    void AddG(const NcWord& iWord);
    void AddM(const NcWord& iWord);
    void AddOther(const NcWord& iWord);

    std::array<int, 9> m_codes;
    std::vector<int> m_mCodes;
    std::array<bool, 26> m_has{};
    std::array<double, 26> m_values{};
    std::array<std::string_view, 26> m_texts{};
    bool m_hasAction = false;
};

#endif
