#ifndef MillOutputFile_h
#define MillOutputFile_h

#include <cstddef>
#include <string>
#include <string_view>

/// A file that comes into being whole or not at all. It is written under a name of its own in the folder of
/// the target and takes the target's place in one step; a target that exists is untouched until then.
/// Destruction before Publish removes what was written. Every failure throws MillError with the target as
/// subject.
class MillOutputFile
{
public:
    /// Starts writing at once, so that a place where nothing can be written is known early. An empty path
    /// makes a file that is never written. A target that exists must be a regular file that may be written
    /// to; of a symbolic link the file behind it is replaced.
    explicit MillOutputFile(const std::string& path);
    ~MillOutputFile();
    MillOutputFile(const MillOutputFile&) = delete;
    MillOutputFile& operator=(const MillOutputFile&) = delete;

    void Write(std::string_view bytes);
    /// Brings all that was written safely to the disk.
    void Finish();
    /// Takes the target's place. Finish must have been called.
    void Publish();

    /// The file that is replaced, symbolic links followed.
    const std::string& GetTarget() const { return m_Target; }

private:
    void Resolve();
    void Open();
    void Flush();
    [[noreturn]] void Fail(int error) const;

    std::string m_Path;
    std::string m_Target;
    std::string m_Temporary;
    std::string m_Buffer;
    int m_Descriptor = -1;
    int m_Slot = -1;
    unsigned m_Mode = 0666;
};

/// From now on SIGINT, SIGTERM and SIGHUP remove what was written of every output before they end the process
/// as usual. A signal that is ignored stays so. Writing past a limit of file size becomes an ordinary
/// failure.
void MillRemoveOutputsOnSignals();

#endif
