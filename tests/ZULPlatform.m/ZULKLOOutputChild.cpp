// Writes to the diagnostic stream at every stage of a process's life.
#include <cstdlib>
#include <thread>

#include "ZULKLOOutput.h"

namespace
{
struct Stage {
    explicit Stage(const char* name) : m_Name(name) { ZULKLOOutput::GetOut() << "begin " << m_Name << "\n"; }
    ~Stage() { ZULKLOOutput::GetOut() << "end " << m_Name << "\n"; }
    const char* m_Name;
};

// Destroyed last, as the first one made.
struct PartialAtUnload {
    ~PartialAtUnload() { ZULKLOOutput::GetOut() << "no line feed"; }
} g_Partial;

Stage g_Static("static");
thread_local Stage t_Thread("thread local");

void WriteAtExit()
{
    ZULKLOOutput::GetOut() << "at exit\n";
}
}  // namespace

int main()
{
    std::atexit(WriteAtExit);
    const char* const name = t_Thread.m_Name;
    ZULKLOOutput::GetOut() << "main uses " << name << "\n";
    std::thread([] { ZULKLOOutput::GetOut() << "pending at the end of a thread"; }).join();
    ZULKLOOutput::GetOut() << "\n";
    ZULKLOOutput::GetOut() << "pending at the end of main";
    return 0;
}
