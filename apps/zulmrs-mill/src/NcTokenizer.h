#ifndef NcTokenizer_h
#define NcTokenizer_h

#include <string_view>
#include <vector>

/// One word of a block: an upper-case letter and its number. m_text is the word as it was written.
struct NcWord {
    char m_letter = ' ';
    double m_value = 0.0;
    std::string_view m_text;
};

/// One line of a program, taken apart.
struct NcBlock {
    /// 1-based.
    int m_line = 0;
    /// The line starts with '%'; whatever follows on it is not looked at.
    bool m_isPercent = false;
    /// The line starts with '/'. Its words are read only if the tokenizer was told to.
    bool m_isDeleted = false;
    /// A '(' was not closed on its line: the comment took the rest of the line.
    bool m_hasUnclosedComment = false;
    /// A ')' without '(' on the first line with text: everything up to it was taken for a comment.
    bool m_hasBrokenHeader = false;
    std::vector<NcWord> m_words;
};

/// Cuts the text of a program into blocks of words. Blanks are needed nowhere between words and are allowed
/// between a letter and its number, but not within a number. Letters may be of either case. Comments stand in
/// parentheses, nested ones included as far as they balance on the line, or run from ';' to the end of the
/// line. Line ends are LF, CR LF, or CR alone in a text without any LF; a DOS end-of-file byte (0x1A) ends
/// the text. Holds views into the text, which must outlive it and its blocks.
class NcTokenizer
{
public:
    /// iReadDeleted: read the words of blocks that start with '/' instead of passing over them.
    NcTokenizer(std::string_view iText, bool iReadDeleted);

    /// Reads the next line. False at the end of the text. Throws NcFault for text that is not made of words;
    /// oBlock.m_line is set even then.
    bool NextBlock(NcBlock& oBlock);

    /// The number of lines read so far.
    int Line() const { return m_line; }

    /// Whether anything but blanks, comments and '%' follows; skips to the end.
    bool HasMoreText();

private:
    bool NextLine(std::string_view& oLine);

    std::string_view m_text;
    std::size_t m_position = 0;
    char m_lineEnd = '\n';
    int m_line = 0;
    bool m_readDeleted;
    bool m_seenText = false;
};

#endif
