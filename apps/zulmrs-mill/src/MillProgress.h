#ifndef MillProgress_h
#define MillProgress_h

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

/// Told how far the cutting has come. This one tells nobody.
class MillProgress
{
public:
    virtual ~MillProgress() = default;
    virtual void Update(std::size_t /*done*/, std::size_t /*total*/) {}
    virtual void Finish() {}
};

/// A bar with the time left, redrawn in place, on a terminal; nothing on anything else.
class MillProgressBar : public MillProgress
{
public:
    /// The stream is borrowed.
    explicit MillProgressBar(std::FILE* stream);

    void Update(std::size_t done, std::size_t total) override;
    /// Takes the bar away.
    void Finish() override;

private:
    using Clock = std::chrono::steady_clock;

    std::FILE* m_Stream;
    bool m_IsTerminal;
    bool m_IsDrawn = false;
    Clock::time_point m_Begin;
    Clock::time_point m_LastDrawn;
};

/// "[#####---------------]  25 %  1:05 left". Nothing about the time before anything is done.
std::string MillProgressText(std::size_t done, std::size_t total, double secondsElapsed);

#endif
