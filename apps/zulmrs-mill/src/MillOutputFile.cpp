#include "MillOutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "MillError.h"

namespace
{

constexpr std::size_t kBufferSize = 1 << 16;
constexpr std::size_t kLongestName = 4096;
constexpr int kMostNames = 1000;

/// A name that a signal must remove. The handler may run at any moment, so the name is complete before it is
/// marked as used, and both are plain memory.
struct TemporaryName {
    std::array<char, kLongestName> m_Name{};
    std::atomic<bool> m_IsUsed{false};
    std::atomic<bool> m_IsTaken{false};
};
static_assert(std::atomic<bool>::is_always_lock_free);

std::array<TemporaryName, 4> s_Names;

int TakeSlot(const std::string& name)
{
    if (name.size() >= kLongestName) {
        return -1;
    }
    for (std::size_t i = 0; i < s_Names.size(); ++i) {
        if (s_Names[i].m_IsTaken.exchange(true)) {
            continue;
        }
        std::memcpy(s_Names[i].m_Name.data(), name.c_str(), name.size() + 1);
        s_Names[i].m_IsUsed.store(true);
        return static_cast<int>(i);
    }
    return -1;
}

void FreeSlot(int& slot)
{
    if (slot < 0) {
        return;
    }
    s_Names[static_cast<std::size_t>(slot)].m_IsUsed.store(false);
    s_Names[static_cast<std::size_t>(slot)].m_IsTaken.store(false);
    slot = -1;
}

extern "C" void RemoveTemporariesAndEnd(int signal)
{
    for (TemporaryName& name : s_Names) {
        if (name.m_IsUsed.load()) {
            unlink(name.m_Name.data());
        }
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

void MillRemoveOutputsOnSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now = {};
        if (sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN) {
            continue;
        }
        struct sigaction action = {};
        action.sa_handler = RemoveTemporariesAndEnd;
        sigaction(signal, &action, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN);
}

MillOutputFile::MillOutputFile(const std::string& path) : m_Path(path)
{
    if (path.empty()) {
        return;
    }
    Resolve();
    Open();
}

MillOutputFile::~MillOutputFile()
{
    if (m_Descriptor >= 0) {
        close(m_Descriptor);
    }
    if (!m_Temporary.empty()) {
        unlink(m_Temporary.c_str());
    }
    FreeSlot(m_Slot);
}

void MillOutputFile::Resolve()
{
    m_Target = m_Path;
    struct stat status = {};
    if (stat(m_Path.c_str(), &status) != 0) {
        // A link that leads nowhere would be replaced by a file; better to say so.
        if (errno != ENOENT || lstat(m_Path.c_str(), &status) == 0) {
            Fail(errno == 0 ? ENOENT : errno);
        }
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        Fail(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        throw MillError(m_Path, "cannot be written: not a regular file");
    }
    if (access(m_Path.c_str(), W_OK) != 0) {
        Fail(errno);
    }
    std::error_code error;
    m_Target = std::filesystem::canonical(m_Path, error).string();
    if (error) {
        Fail(error.value());
    }
    m_Mode = status.st_mode & 07777U;
}

void MillOutputFile::Open()
{
    const std::size_t slash = m_Target.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : m_Target.substr(0, slash + 1);
    if (m_Target.size() == folder.size()) {
        Fail(EISDIR);
    }
    int error = EEXIST;
    for (int i = 0; error == EEXIST && i < kMostNames; ++i) {
        const std::string name = fmt::format("{}.zulmrs-mill-{}-{}.tmp", folder, getpid(), i);
        m_Slot = TakeSlot(name);
        if (m_Slot < 0) {
            Fail(ENAMETOOLONG);
        }
        m_Descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, m_Mode);
        if (m_Descriptor >= 0) {
            m_Temporary = name;
            return;
        }
        error = errno;
        FreeSlot(m_Slot);
    }
    Fail(error);
}

void MillOutputFile::Write(std::string_view bytes)
{
    m_Buffer += bytes;
    if (m_Buffer.size() >= kBufferSize) {
        Flush();
    }
}

void MillOutputFile::Flush()
{
    std::string_view rest = m_Buffer;
    while (!rest.empty() && m_Descriptor >= 0) {
        const ssize_t written = write(m_Descriptor, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            Fail(errno);
        }
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    m_Buffer.clear();
}

void MillOutputFile::Finish()
{
    if (m_Descriptor < 0) {
        return;
    }
    Flush();
    // A file system that cannot synchronise is no reason to lose the file.
    if (fsync(m_Descriptor) != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP) {
        Fail(errno);
    }
    const int descriptor = m_Descriptor;
    m_Descriptor = -1;
    if (close(descriptor) != 0) {
        Fail(errno);
    }
}

void MillOutputFile::Publish()
{
    if (m_Temporary.empty()) {
        return;
    }
    if (rename(m_Temporary.c_str(), m_Target.c_str()) != 0) {
        Fail(errno);
    }
    m_Temporary.clear();
    FreeSlot(m_Slot);
}

void MillOutputFile::Fail(int error) const
{
    throw MillError(m_Path, fmt::format("cannot be written: {}", std::strerror(error)));
}
