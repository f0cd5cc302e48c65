#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <base/tv_string.h>

namespace sm {

/// Says which file is asked about, for as long as what it gives lives; that may be null.
using About = std::function<std::shared_ptr<void>(const TvString& path)>;

/// Asks the disk whether two names mean something that is open. It may be asked in another thread,
/// and still be asking when nobody waits for it any more: it holds what it needs by value.
struct DiskQuestion {
    std::vector<TvString> paths; ///< that it may ask about
    std::function<bool(const About& about)> ask;
};
enum class Wanted {
    All,
    FirstYes, ///< questions behind the first yes need no answer
};

/// The answers, in the order of the questions; what needed none is false.
/// @note At once and however long, unless there is a DiskAsker.
std::vector<bool> askDisk(std::vector<DiskQuestion> questions, Wanted wanted);

/// Who asks instead, for a program that must not wait: a folder that does not answer in time means
/// no. Null: nobody.
using DiskAsker = std::vector<bool> (*)(std::vector<DiskQuestion> questions, Wanted wanted);
void setDiskAsker(DiskAsker asker);

/// Whether two paths name one file: the same text, the same file on disk, or texts that differ in
/// case only, unless both spellings exist as files of their own.
bool isSameFile(const TvString& left, const TvString& right, const About& about);

} // namespace sm
