#include "ZULKLOOutput.h"

#include <cstddef>
#include <cstdio>
#include <forward_list>
#include <mutex>
#include <streambuf>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace
{
// What all threads share. Constant initialisation and trivial destructors keep it usable before main and
// until the process ends.
constinit std::mutex g_Lock;
constinit std::ostream* g_Target = nullptr;  // null: standard error
static_assert(std::is_trivially_destructible_v<std::mutex>);

thread_local constinit bool t_Writing = false;

void WriteToStandardError(std::string_view text)
{
    // Standard error is unbuffered: one call of fwrite is one write.
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void WriteToTarget(std::ostream& target, std::string_view text)
{
    try {
        target.write(text.data(), static_cast<std::streamsize>(text.size()));
        target.flush();
    } catch (...) {
        // A diagnostic line is not worth the computation that wrote it.
        WriteToStandardError(text);
    }
}

void Write(std::string_view text)
{
    if (text.empty()) {
        return;
    }
    if (t_Writing) {
        // The redirection's own stream writes diagnostics: they cannot wait for the lock that it runs under.
        WriteToStandardError(text);
        return;
    }
    const std::lock_guard guard(g_Lock);
    t_Writing = true;
    if (g_Target != nullptr) {
        WriteToTarget(*g_Target, text);
    } else {
        WriteToStandardError(text);
    }
    t_Writing = false;
}

/// Keeps one thread's text until a line is complete.
class LineBuffer : public std::streambuf
{
protected:
    int_type overflow(int_type character) override
    {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            const char value = traits_type::to_char_type(character);
            xsputn(&value, 1);
        }
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        const std::string_view added(text, static_cast<std::size_t>(count));
        const std::size_t feed = added.rfind('\n');
        if (feed == std::string_view::npos) {
            m_Pending += added;
            return count;
        }
        std::string lines = std::move(m_Pending);
        m_Pending.assign(added.substr(feed + 1));
        lines += added.substr(0, feed + 1);
        Write(lines);
        return count;
    }

    int sync() override
    {
        const std::string text = std::move(m_Pending);
        m_Pending.clear();
        Write(text);
        return 0;
    }

private:
    std::string m_Pending;
};

class LineStream : public std::ostream
{
public:
    LineStream() : std::ostream(nullptr)
    {
        // The texts must not depend on the host's locale.
        imbue(std::locale::classic());
        rdbuf(&m_Buffer);
    }

private:
    LineBuffer m_Buffer;
};

// A trivially destructible pointer stays readable while the thread's other objects are destroyed.
thread_local constinit LineStream* t_Stream = nullptr;
thread_local constinit bool t_Cleaned = false;

/// Writes what the thread left pending and frees its stream when the thread ends.
struct ThreadCleaner {
    ~ThreadCleaner()
    {
        t_Stream->flush();
        delete t_Stream;
        t_Stream = nullptr;
        t_Cleaned = true;
    }
};

/// The streams made after their thread was cleaned: during static destruction and at unload. No later event
/// could free them, so they stay; what they left pending is written when this module is unloaded.
class LateStreams
{
public:
    LateStreams() : m_Streams(new std::forward_list<LineStream*>) {}
    ~LateStreams()
    {
        const std::lock_guard guard(m_Lock);
        for (LineStream* stream : *m_Streams) {
            stream->flush();
        }
    }
    void Add(LineStream* stream)
    {
        const std::lock_guard guard(m_Lock);
        m_Streams->push_front(stream);
    }

private:
    std::mutex m_Lock;
    std::forward_list<LineStream*>* m_Streams;
};
LateStreams g_LateStreams;

std::ostream& MakeStream()
{
    t_Stream = new LineStream;
    if (t_Cleaned) {
        g_LateStreams.Add(t_Stream);
    } else {
        static thread_local ThreadCleaner cleaner;
        static_cast<void>(cleaner);
    }
    return *t_Stream;
}
}  // namespace

std::ostream& ZULKLOOutput::GetOut()
{
    return t_Stream != nullptr ? *t_Stream : MakeStream();
}

std::ostream* ZULKLOOutput::Redirect(std::ostream* stream)
{
    // A diagnostic stream as its own target would go round in circles.
    if (dynamic_cast<LineStream*>(stream) != nullptr) {
        stream = nullptr;
    }
    const std::lock_guard guard(g_Lock);
    return std::exchange(g_Target, stream);
}

bool ZULKLOOutput::IsTerminal()
{
    if (!t_Writing) {
        const std::lock_guard guard(g_Lock);
        if (g_Target != nullptr) {
            return false;
        }
    }
#if defined(_WIN32)
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) == 1;
#endif
}
