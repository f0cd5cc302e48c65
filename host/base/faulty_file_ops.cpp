#include "base/faulty_file_ops.h"

#include <algorithm>
#include <cerrno>

namespace base {

namespace {

std::string nameWithoutFolder(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

const char* FaultyFileOps::nameOf(Kind kind)
{
    switch (kind) {
    case Kind::Open: return "open";
    case Kind::Close: return "close";
    case Kind::Read: return "read";
    case Kind::Write: return "write";
    case Kind::Truncate: return "truncate";
    case Kind::Flush: return "flush";
    case Kind::Describe: return "describe";
    case Kind::DescribeName: return "describeName";
    case Kind::DescribeTarget: return "describeTarget";
    case Kind::CopyMetadata: return "copyMetadata";
    case Kind::Rename: return "rename";
    case Kind::RenameNew: return "renameNew";
    case Kind::Link: return "link";
    case Kind::Remove: return "remove";
    case Kind::MakeFolder: return "makeFolder";
    case Kind::List: return "list";
    case Kind::ReadLink: return "readLink";
    case Kind::LockByte: return "lockByte";
    case Kind::UnlockByte: return "unlockByte";
    case Kind::IsByteLocked: return "isByteLocked";
    }
    return "?";
}

std::string FaultyFileOps::textOf(const Call& call)
{
    std::string text = nameOf(call.kind);
    text += " " + nameWithoutFolder(call.path);
    if (!call.second.empty())
        text += " " + nameWithoutFolder(call.second);
    if (call.error)
        text += " -> " + std::to_string(call.error);
    return text;
}

FaultyFileOps::~FaultyFileOps()
{
    die();
}

std::string FaultyFileOps::traceText() const
{
    std::string text;
    int number = 0;
    for (const Call& call : m_trace)
        text += std::to_string(++number) + " " + textOf(call) + "\n";
    return text;
}

void FaultyFileOps::reset()
{
    m_trace.clear();
    m_failures.clear();
    m_lateFailures.clear();
    m_kindFailures.clear();
    m_shortened.clear();
    m_failFrom = m_shortenFrom = m_deathAt = 0;
    m_isDead = false;
}

void FaultyFileOps::die()
{
    m_isDead = true;
    for (const auto& [file, name] : m_open)
        m_inner.close(file);
    m_open.clear();
}

int FaultyFileOps::faultOf(int n, Kind kind) const
{
    if (const auto found = m_failures.find(n); found != m_failures.end())
        return found->second;
    if (m_failFrom && n >= m_failFrom)
        return m_failFromError;
    const auto found = m_kindFailures.find(kind);
    return found == m_kindFailures.end() ? 0 : found->second;
}

int FaultyFileOps::lateFaultOf(int n) const
{
    const auto found = m_lateFailures.find(n);
    return found == m_lateFailures.end() ? 0 : found->second;
}

std::size_t FaultyFileOps::lengthOf(int n, std::size_t asked) const
{
    if (const auto found = m_shortened.find(n); found != m_shortened.end())
        return std::min(asked, found->second);
    return m_shortenFrom && n >= m_shortenFrom ? std::min(asked, m_shortenBytes) : asked;
}

std::string FaultyFileOps::nameOfOpen(Descriptor file) const
{
    const auto found = m_open.find(file);
    return found == m_open.end() ? std::string() : found->second;
}

/// Counts one operation, and carries it out unless it is to fail.
int FaultyFileOps::run(Call call, const std::function<int()>& operation)
{
    const int n = count() + 1;
    if (n == m_deathAt)
        die();
    if (before && !m_isDead)
        before(n, call);
    call.error = m_isDead ? EIO : faultOf(n, call.kind);
    if (!call.error) {
        call.error = operation();
        if (const int late = lateFaultOf(n); late && !call.error)
            call.error = late;
    }
    m_trace.push_back(std::move(call));
    return m_trace.back().error;
}

int FaultyFileOps::open(const std::string& path, OpenMode mode, Descriptor& out)
{
    Descriptor opened = kNone;
    const int error = run({Kind::Open, path, {}, 0}, [&] {
        const int result = m_inner.open(path, mode, opened);
        if (!result)
            m_open[opened] = path;
        return result;
    });
    if (!error)
        out = opened;
    else if (opened != kNone) { // opened, but the caller will not learn of it
        m_open.erase(opened);
        m_inner.close(opened);
    }
    return error;
}

int FaultyFileOps::closeOpen(Descriptor file)
{
    return m_open.erase(file) ? m_inner.close(file) : EBADF;
}

int FaultyFileOps::close(Descriptor file)
{
    const int error = run({Kind::Close, nameOfOpen(file), {}, 0}, [&] { return closeOpen(file); });
    closeOpen(file); // the descriptor goes whatever was reported
    return error;
}

int FaultyFileOps::read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
                        std::size_t& out)
{
    const std::size_t length = lengthOf(count() + 1, buffer.size());
    return run({Kind::Read, nameOfOpen(file), {}, 0},
               [&] { return m_inner.read(file, offset, buffer.first(length), out); });
}

int FaultyFileOps::write(Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes,
                         std::size_t& out)
{
    const std::size_t length = lengthOf(count() + 1, bytes.size());
    return run({Kind::Write, nameOfOpen(file), {}, 0},
               [&] { return m_inner.write(file, offset, bytes.first(length), out); });
}

int FaultyFileOps::truncate(Descriptor file, std::uint64_t size)
{
    return run({Kind::Truncate, nameOfOpen(file), {}, 0},
               [&] { return m_inner.truncate(file, size); });
}

int FaultyFileOps::flush(Descriptor file)
{
    return run({Kind::Flush, nameOfOpen(file), {}, 0},
               [&] { return m_skipsFlushing ? 0 : m_inner.flush(file); });
}

int FaultyFileOps::describe(Descriptor file, FileInfo& out)
{
    return run({Kind::Describe, nameOfOpen(file), {}, 0},
               [&] { return m_inner.describe(file, out); });
}

int FaultyFileOps::describeName(const std::string& path, FileInfo& out)
{
    return run({Kind::DescribeName, path, {}, 0}, [&] { return m_inner.describeName(path, out); });
}

int FaultyFileOps::describeTarget(const std::string& path, FileInfo& out)
{
    return run({Kind::DescribeTarget, path, {}, 0},
               [&] { return m_inner.describeTarget(path, out); });
}

int FaultyFileOps::copyMetadata(const std::string& source, Descriptor target, bool& ownershipKept)
{
    return run({Kind::CopyMetadata, source, nameOfOpen(target), 0},
               [&] { return m_inner.copyMetadata(source, target, ownershipKept); });
}

int FaultyFileOps::rename(const std::string& from, const std::string& to)
{
    return run({Kind::Rename, from, to, 0}, [&] { return m_inner.rename(from, to); });
}

int FaultyFileOps::renameNew(const std::string& from, const std::string& to)
{
    return run({Kind::RenameNew, from, to, 0}, [&] { return m_inner.renameNew(from, to); });
}

int FaultyFileOps::link(const std::string& from, const std::string& to)
{
    return run({Kind::Link, from, to, 0}, [&] { return m_inner.link(from, to); });
}

int FaultyFileOps::remove(const std::string& path)
{
    return run({Kind::Remove, path, {}, 0}, [&] { return m_inner.remove(path); });
}

int FaultyFileOps::makeFolder(const std::string& path)
{
    return run({Kind::MakeFolder, path, {}, 0}, [&] { return m_inner.makeFolder(path); });
}

int FaultyFileOps::list(const std::string& folder, std::vector<std::string>& out)
{
    return run({Kind::List, folder, {}, 0}, [&] { return m_inner.list(folder, out); });
}

int FaultyFileOps::readLink(const std::string& path, std::string& out)
{
    return run({Kind::ReadLink, path, {}, 0}, [&] { return m_inner.readLink(path, out); });
}

int FaultyFileOps::lockByte(Descriptor file, std::uint64_t offset)
{
    return run({Kind::LockByte, nameOfOpen(file), {}, 0},
               [&] { return m_inner.lockByte(file, offset); });
}

int FaultyFileOps::unlockByte(Descriptor file, std::uint64_t offset)
{
    return run({Kind::UnlockByte, nameOfOpen(file), {}, 0},
               [&] { return m_inner.unlockByte(file, offset); });
}

int FaultyFileOps::isByteLocked(Descriptor file, std::uint64_t offset, bool& out)
{
    return run({Kind::IsByteLocked, nameOfOpen(file), {}, 0},
               [&] { return m_inner.isByteLocked(file, offset, out); });
}

} // namespace base
