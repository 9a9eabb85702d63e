#include "MillOutputFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

using Names = std::vector<std::string>;

std::string Complaint(const std::string& path)
{
    return MillComplaint<MillError>([&path] { MillOutputFile file(path); });
}

TEST(MillOutputFile, AppearsWholeAndOnlyWhenPublished)
{
    const MillTestFolder folder;
    MillOutputFile file(folder / "a.stl");
    file.Write("half");
    EXPECT_EQ(folder.List().size(), 1U);
    EXPECT_NE(folder.List()[0], "a.stl");
    file.Write(" whole");
    file.Finish();
    EXPECT_NE(folder.List()[0], "a.stl");
    file.Publish();
    EXPECT_EQ(folder.List(), Names{"a.stl"});
    EXPECT_EQ(MillReadFile(folder / "a.stl"), "half whole");
}

TEST(MillOutputFile, LeavesNothingBehindWhenDropped)
{
    const MillTestFolder folder;
    folder.Add("a.stl", "old");
    {
        MillOutputFile file(folder / "a.stl");
        file.Write(std::string(1'000'000, 'x'));
        file.Finish();
    }
    EXPECT_EQ(folder.List(), Names{"a.stl"});
    EXPECT_EQ(MillReadFile(folder / "a.stl"), "old");
}

TEST(MillOutputFile, ReplacesAFileAndKeepsItsMode)
{
    const MillTestFolder folder;
    folder.Add("a.stl", "old and longer than the new one");
    chmod((folder / "a.stl").c_str(), 0640);
    MillOutputFile file(folder / "a.stl");
    file.Write("new");
    file.Finish();
    file.Publish();
    EXPECT_EQ(MillReadFile(folder / "a.stl"), "new");
    struct stat status = {};
    ASSERT_EQ(stat((folder / "a.stl").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST(MillOutputFile, ReplacesTheFileBehindALink)
{
    const MillTestFolder folder;
    folder.Add("real.stl", "old");
    ASSERT_EQ(symlink("real.stl", (folder / "link.stl").c_str()), 0);
    MillOutputFile file(folder / "link.stl");
    file.Write("new");
    file.Finish();
    file.Publish();
    EXPECT_EQ(MillReadFile(folder / "real.stl"), "new");
    struct stat status = {};
    ASSERT_EQ(lstat((folder / "link.stl").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST(MillOutputFile, SeveralFilesDoNotMeet)
{
    const MillTestFolder folder;
    MillOutputFile first(folder / "a");
    MillOutputFile second(folder / "b");
    first.Write("1");
    second.Write("2");
    for (MillOutputFile* file : {&first, &second}) {
        file->Finish();
        file->Publish();
    }
    EXPECT_EQ(MillReadFile(folder / "a"), "1");
    EXPECT_EQ(MillReadFile(folder / "b"), "2");
}

TEST(MillOutputFile, WithoutANameIsNeverWritten)
{
    MillOutputFile file("");
    file.Write("x");
    file.Finish();
    file.Publish();
    EXPECT_EQ(file.GetTarget(), "");
}

TEST(MillOutputFile, KnowsAtOnceWhereNothingCanBeWritten)
{
    const MillTestFolder folder;
    EXPECT_EQ(Complaint(folder / "no/a.stl"),
              folder / "no/a.stl: cannot be written: No such file or directory");
    EXPECT_EQ(Complaint(folder.GetPath()), folder.GetPath() + ": cannot be written: Is a directory");
    EXPECT_EQ(Complaint(folder / "new/"), folder / "new/: cannot be written: Is a directory");
    folder.Add("file", "");
    EXPECT_EQ(Complaint(folder / "file/a.stl"), folder / "file/a.stl: cannot be written: Not a directory");
    EXPECT_EQ(Complaint("/dev/null"), "/dev/null: cannot be written: not a regular file");
    EXPECT_EQ(symlink("nowhere", (folder / "dangling").c_str()), 0);
    EXPECT_EQ(Complaint(folder / "dangling"),
              folder / "dangling: cannot be written: No such file or directory");
    EXPECT_EQ(folder.List(), (Names{"dangling", "file"}));
}

/// As a user from whom files can be protected. Status 0 when both complaints are the right ones.
[[noreturn]] void WriteWhatIsProtected(const MillTestFolder& folder)
{
    constexpr unsigned kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
        _exit(1);
    }
    const auto isDenied = [&folder](const char* name) {
        return Complaint(folder / name) == folder / name + ": cannot be written: Permission denied";
    };
    _exit(isDenied("a.stl") && isDenied("b.stl") ? 0 : 2);
}

TEST(MillOutputFile, RefusesAWriteProtectedFileOrFolder)
{
    const MillTestFolder folder;
    folder.Add("a.stl", "old");
    chmod((folder / "a.stl").c_str(), 0444);
    chmod(folder.GetPath().c_str(), 0555);
    EXPECT_EXIT(WriteWhatIsProtected(folder), testing::ExitedWithCode(0), "");
    chmod(folder.GetPath().c_str(), 0755);
    EXPECT_EQ(folder.List(), Names{"a.stl"});
}

/// The process ends with status 0 when the file could not be written and the complaint is the right one.
[[noreturn]] void WriteBeyondTheLimit(const std::string& path)
{
    const rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    MillRemoveOutputsOnSignals();
    const std::string complaint = MillComplaint<MillError>([&path] {
        MillOutputFile file(path);
        file.Write(std::string(300'000, 'x'));
        file.Finish();
        file.Publish();
    });
    _exit(complaint == path + ": cannot be written: File too large" ? 0 : 1);
}

TEST(MillOutputFile, AFullDiskLeavesTheOldFile)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const MillTestFolder folder;
    folder.Add("a.stl", "old");
    EXPECT_EXIT(WriteBeyondTheLimit(folder / "a.stl"), testing::ExitedWithCode(0), "");
    EXPECT_EQ(folder.List(), Names{"a.stl"});
    EXPECT_EQ(MillReadFile(folder / "a.stl"), "old");
}

[[noreturn]] void WriteAndRaise(const std::string& path, int signal)
{
    MillRemoveOutputsOnSignals();
    MillOutputFile file(path);
    file.Write(std::string(300'000, 'x'));
    std::raise(signal);
    _exit(0);
}

TEST(MillOutputFile, ASignalLeavesTheOldFile)
{
    const MillTestFolder folder;
    folder.Add("a.stl", "old");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(WriteAndRaise(folder / "a.stl", signal), testing::KilledBySignal(signal), "");
        EXPECT_EQ(folder.List(), Names{"a.stl"});
        EXPECT_EQ(MillReadFile(folder / "a.stl"), "old");
    }
}

[[noreturn]] void IgnoreAndRaise()
{
    std::signal(SIGHUP, SIG_IGN);
    MillRemoveOutputsOnSignals();
    std::raise(SIGHUP);
    _exit(7);
}

TEST(MillOutputFile, AnIgnoredSignalStaysIgnored)
{
    EXPECT_EXIT(IgnoreAndRaise(), testing::ExitedWithCode(7), "");
}

}  // namespace
