#include "ZULKLOOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ZULTestChildProcess.h"

namespace
{
/// Records every single write.
class RecordingBuffer : public std::streambuf
{
public:
    std::vector<std::string> m_Writes;

protected:
    int_type overflow(int_type character) override
    {
        m_Writes.emplace_back(1, traits_type::to_char_type(character));
        return character;
    }
    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        m_Writes.emplace_back(text, static_cast<std::size_t>(count));
        return count;
    }
};

class Redirection
{
public:
    Redirection() : m_Stream(&m_Buffer), m_Before(ZULKLOOutput::Redirect(&m_Stream)) {}
    ~Redirection() { ZULKLOOutput::Redirect(m_Before); }
    const std::vector<std::string>& Writes() const { return m_Buffer.m_Writes; }

private:
    RecordingBuffer m_Buffer;
    std::ostream m_Stream;
    std::ostream* m_Before;
};

using Writes = std::vector<std::string>;
}  // namespace

TEST(ZULKLOOutput, ALineIsOneWrite)
{
    const Redirection redirection;
    std::ostream& out = ZULKLOOutput::GetOut();
    out << "a " << 1 << ' ' << 2.5;
    EXPECT_EQ(redirection.Writes(), Writes{});
    out << " end\n";
    EXPECT_EQ(redirection.Writes(), Writes{"a 1 2.5 end\n"});
}

TEST(ZULKLOOutput, LinesInsertedTogetherAreOneWriteAndTheRestWaits)
{
    const Redirection redirection;
    ZULKLOOutput::GetOut() << "one\ntwo\nthr";
    ZULKLOOutput::GetOut() << "ee" << '\n';
    EXPECT_EQ(redirection.Writes(), (Writes{"one\ntwo\n", "three\n"}));
}

TEST(ZULKLOOutput, AFlushWritesWhatIsPending)
{
    const Redirection redirection;
    ZULKLOOutput::GetOut() << "10 %" << std::flush << std::flush;
    ZULKLOOutput::GetOut() << " done" << std::endl;
    EXPECT_EQ(redirection.Writes(), (Writes{"10 %", " done\n"}));
}

TEST(ZULKLOOutput, TheEndOfAThreadWritesWhatIsPending)
{
    const Redirection redirection;
    std::thread([] { ZULKLOOutput::GetOut() << "left over"; }).join();
    EXPECT_EQ(redirection.Writes(), Writes{"left over"});
}

TEST(ZULKLOOutput, EveryThreadHasItsOwnEnd)
{
    std::ostream* const here = &ZULKLOOutput::GetOut();
    EXPECT_EQ(here, &ZULKLOOutput::GetOut());
    std::ostream* there = nullptr;
    std::thread([&] { there = &ZULKLOOutput::GetOut(); }).join();
    EXPECT_NE(here, there);
}

TEST(ZULKLOOutput, RedirectReturnsTheStreamInForce)
{
    std::ostringstream first;
    std::ostringstream second;
    EXPECT_EQ(ZULKLOOutput::Redirect(&first), nullptr);
    EXPECT_EQ(ZULKLOOutput::Redirect(&second), &first);
    ZULKLOOutput::GetOut() << "text\n";
    EXPECT_EQ(ZULKLOOutput::Redirect(nullptr), &second);
    EXPECT_EQ(first.str(), "");
    EXPECT_EQ(second.str(), "text\n");
}

TEST(ZULKLOOutput, UnredirectedLinesGoToStandardError)
{
    testing::internal::CaptureStderr();
    ZULKLOOutput::GetOut() << "to standard error\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to standard error\n");
}

TEST(ZULKLOOutput, ItsOwnStreamIsNoTarget)
{
    std::ostringstream text;
    ZULKLOOutput::Redirect(&text);
    EXPECT_EQ(ZULKLOOutput::Redirect(&ZULKLOOutput::GetOut()), &text);
    testing::internal::CaptureStderr();
    ZULKLOOutput::GetOut() << "not in a circle\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "not in a circle\n");
    EXPECT_EQ(ZULKLOOutput::Redirect(nullptr), nullptr);
}

TEST(ZULKLOOutput, ATargetThatWritesDiagnosticsDoesNotWaitForItself)
{
    struct Talkative : std::streambuf {
        int_type overflow(int_type character) override { return character; }
        std::streamsize xsputn(const char*, std::streamsize count) override
        {
            ZULKLOOutput::GetOut() << "from inside\n";
            return count;
        }
    } buffer;
    std::ostream stream(&buffer);
    testing::internal::CaptureStderr();
    ZULKLOOutput::Redirect(&stream);
    ZULKLOOutput::GetOut() << "line\n";
    ZULKLOOutput::Redirect(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "from inside\n");
}

TEST(ZULKLOOutput, ATargetThatThrowsLosesNothing)
{
    struct Throwing : std::streambuf {
        std::streamsize xsputn(const char*, std::streamsize) override { throw std::runtime_error("full"); }
    } buffer;
    std::ostream stream(&buffer);
    stream.exceptions(std::ios::badbit);
    testing::internal::CaptureStderr();
    ZULKLOOutput::Redirect(&stream);
    ZULKLOOutput::GetOut() << "line\n";
    ZULKLOOutput::Redirect(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "line\n");
}

TEST(ZULKLOOutput, NumbersDoNotDependOnTheHostsLocale)
{
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    std::vector<std::string> writes;
    {
        const Redirection redirection;
        std::thread([] { ZULKLOOutput::GetOut() << 1234567U << ' ' << 0.5 << '\n'; }).join();
        writes = redirection.Writes();
    }
    std::locale::global(before);
    EXPECT_EQ(writes, Writes{"1234567 0.5\n"});
}

TEST(ZULKLOOutput, LinesOfManyThreadsAreNeverTorn)
{
    constexpr int nbThreads = 4;
    constexpr int nbLines = 500;
    std::map<std::string, int> count;
    {
        const Redirection redirection;
        std::vector<std::thread> threads;
        for (int t = 0; t < nbThreads; ++t) {
            threads.emplace_back([t] {
                for (int i = 0; i < nbLines; ++i) {
                    ZULKLOOutput::GetOut() << "thread " << t << " says " << i << " and " << 2 * i << "\n";
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const std::string& line : redirection.Writes()) {
            ++count[line];
        }
    }
    EXPECT_EQ(count.size(), static_cast<std::size_t>(nbThreads * nbLines));
    for (int t = 0; t < nbThreads; ++t) {
        for (int i = 0; i < nbLines; ++i) {
            std::ostringstream line;
            line << "thread " << t << " says " << i << " and " << 2 * i << "\n";
            ASSERT_EQ(count[line.str()], 1) << line.str();
        }
    }
}

TEST(ZULKLOOutput, RedirectionWhileOthersWriteLosesNoLine)
{
    constexpr int nbThreads = 3;
    constexpr int nbLines = 500;
    RecordingBuffer buffers[2];
    std::ostream first(&buffers[0]);
    std::ostream second(&buffers[1]);
    ZULKLOOutput::Redirect(&first);
    std::atomic<int> nbRunning{nbThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < nbThreads; ++t) {
        threads.emplace_back([&nbRunning] {
            for (int i = 0; i < nbLines; ++i) {
                ZULKLOOutput::GetOut() << "line " << i << "\n";
            }
            --nbRunning;
        });
    }
    while (nbRunning > 0) {
        ZULKLOOutput::Redirect(&second);
        std::this_thread::yield();
        ZULKLOOutput::Redirect(&first);
        std::this_thread::yield();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ZULKLOOutput::Redirect(nullptr);
    EXPECT_EQ(buffers[0].m_Writes.size() + buffers[1].m_Writes.size(),
              static_cast<std::size_t>(nbThreads * nbLines));
}

TEST(ZULKLOOutput, WritesFromBeforeMainToAfterStaticDestruction)
{
    const ZULTest::ChildResult child = ZULTest::RunChild(ZUL_OUTPUT_CHILD);
    EXPECT_EQ(child.m_ExitCode, 0);
    EXPECT_EQ(child.m_Output,
              "begin static\n"
              "begin thread local\n"
              "main uses thread local\n"
              "pending at the end of a thread\n"
              "pending at the end of main"
              "end thread local\n"
              "at exit\n"
              "end static\n"
              "no line feed");
}
