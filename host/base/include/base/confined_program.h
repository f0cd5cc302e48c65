#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <base/status.h>

namespace base {

/// What a program that is run for us may take.
struct ProgramLimits {
    std::chrono::milliseconds time{10'000}; ///< by the clock; then it is ended
    std::uint64_t output = 1 << 20;         ///< bytes; more than that is a failure
    /// Set by whoever no longer wants the answer: it is ended then. Null: nobody will.
    const std::atomic<bool>* stop = nullptr;
};

/// Runs @p program to its end, in a process of its own: what it does to itself with bytes from
/// strangers (crash, hang, eat memory) is not done to us.
///
/// It finds @p input as a file at its standard input, leaves its answer in the file that is its
/// standard output, and has nothing else of ours open; what it complains about goes nowhere. It
/// ends when the calling thread does. How much memory it takes is its own to limit
/// (confineThisProcess()).
/// @param program  full path; no folder is searched.
/// @return what it wrote; Interrupted when it was ended (time, stop), else a failure when it could
///         not be started, or ended with anything but 0.
Result<std::vector<std::byte>> runConfined(const TvString& program,
                                           const std::vector<std::string>& arguments,
                                           std::span<const std::byte> input,
                                           const ProgramLimits& limits);

/// What such a program does first: it takes no more than this from now on, leaves no image of its
/// memory behind, and ends when whoever runs it does.
/// @param memoryBytes  not counted in builds that watch memory themselves.
void confineThisProcess(std::uint64_t memoryBytes, std::uint64_t cpuSeconds,
                        std::uint64_t outputBytes);

/// The folder of the program or library that @p code is part of; empty when that is not known.
TvString folderOfCode(const void* code);

} // namespace base
