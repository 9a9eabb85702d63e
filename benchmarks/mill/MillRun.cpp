#include "MillRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "ZULBenchHarness.h"

namespace ZULBench
{
namespace
{
/// Runs a program to its end, its output thrown away, and tells what it used.
rusage RunProgram(std::vector<std::string> arguments)
{
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error = posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage{};
    if (error != 0 || wait4(process, &status, 0, &usage) != process || status != 0) {
        throw std::runtime_error(arguments[0] + " fails");
    }
    return usage;
}

std::string ReadAll(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The stock that the program's first note tells.
std::string StockOf(const std::string& program)
{
    const std::regex note(R"(\(STOCK ([\d.]+) X ([\d.]+) X ([\d.]+),)");
    std::smatch found;
    if (!std::regex_search(program, found, note)) {
        throw std::runtime_error("the raster tells no stock");
    }
    return "0,0,-" + found[3].str() + "," + found[1].str() + "," + found[2].str() + ",0";
}

double SecondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}
}  // namespace

MillRun RunMill(std::size_t nbMoves, std::size_t nbThreads)
{
    const std::string folder = ZUL_BENCH_MILL_OUTPUT;
    const std::string program = folder + "/raster-" + std::to_string(nbMoves) + ".nc";
    const std::string part = folder + "/raster-" + std::to_string(nbMoves) + ".stl";
    RunProgram({"python3", ZUL_BENCH_GENERATOR, "--raster", std::to_string(nbMoves), program});
    const std::string stock = StockOf(ReadAll(program));
    const auto start = std::chrono::steady_clock::now();
    const rusage usage = RunProgram({ZUL_BENCH_MILL, program, "--stock", stock, "--tool", "1=ball:3",
                                     "--threads", std::to_string(nbThreads), "-o", part});
    MillRun run;
    run.m_Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    run.m_ProcessorSeconds = SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime);
    run.m_PeakBytes = 1024.0 * static_cast<double>(usage.ru_maxrss);
    Checksum checksum;
    for (const char byte : ReadAll(part)) {
        checksum.Add(byte);
    }
    run.m_Checksum = checksum.Get();
    std::filesystem::remove(part);
    return run;
}
}  // namespace ZULBench
