#include "MillProgress.h"

#include <fmt/format.h>
#include <unistd.h>

namespace
{

constexpr std::size_t kBarWidth = 40;
constexpr std::chrono::milliseconds kRedrawInterval{100};
constexpr const char* kClearLine = "\r\033[K";

}  // namespace

std::string MillProgressText(std::size_t done, std::size_t total, double secondsElapsed)
{
    const double fraction =
        total == 0 ? 1.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    const auto filled = static_cast<std::size_t>(fraction * kBarWidth);
    std::string text =
        fmt::format("[{:#>{}}{:->{}}] {:3.0f} %", "", filled, "", kBarWidth - filled, fraction * 100.0);
    if (fraction > 0.0) {
        const auto left = static_cast<long>(secondsElapsed * (1.0 - fraction) / fraction + 0.5);
        text += fmt::format("  {}:{:02} left", left / 60, left % 60);
    }
    return text;
}

MillProgressBar::MillProgressBar(std::FILE* stream)
    : m_Stream(stream), m_IsTerminal(isatty(fileno(stream)) == 1), m_Begin(Clock::now()), m_LastDrawn(m_Begin)
{
}

void MillProgressBar::Update(std::size_t done, std::size_t total)
{
    if (!m_IsTerminal) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now - m_LastDrawn < kRedrawInterval) {
        return;
    }
    m_LastDrawn = now;
    m_IsDrawn = true;
    const double elapsed = std::chrono::duration<double>(now - m_Begin).count();
    fmt::print(m_Stream, "{}{}", kClearLine, MillProgressText(done, total, elapsed));
    std::fflush(m_Stream);
}

void MillProgressBar::Finish()
{
    if (!m_IsDrawn) {
        return;
    }
    fmt::print(m_Stream, "{}", kClearLine);
    std::fflush(m_Stream);
    m_IsDrawn = false;
}
