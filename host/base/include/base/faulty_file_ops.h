#pragma once

#include <functional>
#include <map>

#include <base/file_ops.h>

namespace base {

/// File operations that go wrong on purpose, for tests: counts them, fails any of them, or ends
/// them all.
///
/// Operations are numbered from 1 in the order they are called. What is asked for a number that has
/// passed has no effect until reset(). Everything else goes to the operations underneath.
///
///     FaultyFileOps ops(systemFileOps());
///     for (int n = 1;; ++n) {
///         ops.reset();
///         ops.failAt(n, ENOSPC);
///         run(ops);
///         if (ops.count() < n)
///             break; // ran through without reaching the fault
///     }
class FaultyFileOps : public FileOps
{
public:
    enum class Kind {
        Open,
        Close,
        Read,
        Write,
        Truncate,
        Flush,
        Describe,
        DescribeName,
        DescribeTarget,
        CopyMetadata,
        Rename,
        RenameNew,
        Link,
        Remove,
        MakeFolder,
        List,
        ReadLink,
        LockByte,
        UnlockByte,
        IsByteLocked,
    };
    static const char* nameOf(Kind kind);

    /// One operation that was called.
    struct Call {
        Kind kind = Kind::Open;
        std::string path;   ///< The name it was about; that of the open file for descriptors.
        std::string second; ///< The new name of a rename or link.
        int error = 0;      ///< What the caller was told.
    };
    /// "rename .a.tmp.1 a.dst -> 28", names without their folder: for failure texts.
    static std::string textOf(const Call& call);

    /// @param inner  not owned; outlives us.
    explicit FaultyFileOps(FileOps& inner) : m_inner(inner) {}
    /// Closes what is still open, as the end of a process does.
    ~FaultyFileOps() override;
    FaultyFileOps(const FaultyFileOps&) = delete;
    FaultyFileOps& operator=(const FaultyFileOps&) = delete;

    /// Operation @p n does nothing and gives @p error. A close closes all the same.
    void failAt(int n, int error) { m_failures[n] = error; }
    /// The same for @p n and every later one.
    void failFrom(int n, int error) { m_failFrom = n, m_failFromError = error; }
    /// Every operation of one kind, whatever its number.
    void failKind(Kind kind, int error) { m_kindFailures[kind] = error; }
    /// Operation @p n is carried out, and gives @p error all the same (an answer lost on the way).
    void failAfter(int n, int error) { m_lateFailures[n] = error; }
    /// A read or write with number @p n moves at most @p bytes bytes; other operations are as ever.
    void shortenAt(int n, std::size_t bytes) { m_shortened[n] = bytes; }
    /// Every read and write from @p n on moves at most @p bytes bytes.
    void shortenFrom(int n, std::size_t bytes) { m_shortenFrom = n, m_shortenBytes = bytes; }
    /// Flushing succeeds without waiting for the disk: nothing that a running system shows depends
    /// on it, and a test of hundreds of saves is quick. Survives reset().
    void skipFlushing() { m_skipsFlushing = true; }
    /// At operation @p n the process is gone: neither that one nor any later one does anything, all
    /// give EIO, and what was open is closed with its locks.
    void dieAt(int n) { m_deathAt = n; }
    /// Called before each operation, with its number: to change the world at a certain moment.
    /// Survives reset().
    std::function<void(int n, const Call& call)> before;

    int count() const { return static_cast<int>(m_trace.size()); }
    bool isDead() const { return m_isDead; }
    /// Number of files that are open now: 0 when nothing leaks.
    int openFiles() const { return static_cast<int>(m_open.size()); }
    const std::vector<Call>& trace() const { return m_trace; }
    /// The trace, one operation a line.
    std::string traceText() const;
    /// Forgets all faults and the trace, alive again, and counts from 1. Open files stay open.
    void reset();

    int open(const std::string& path, OpenMode mode, Descriptor& out) override;
    int close(Descriptor file) override;
    int read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
             std::size_t& out) override;
    int write(Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes,
              std::size_t& out) override;
    int truncate(Descriptor file, std::uint64_t size) override;
    int flush(Descriptor file) override;
    int describe(Descriptor file, FileInfo& out) override;
    int describeName(const std::string& path, FileInfo& out) override;
    int describeTarget(const std::string& path, FileInfo& out) override;
    int copyMetadata(const std::string& source, Descriptor target, bool& ownershipKept) override;
    int rename(const std::string& from, const std::string& to) override;
    int renameNew(const std::string& from, const std::string& to) override;
    int link(const std::string& from, const std::string& to) override;
    int remove(const std::string& path) override;
    int makeFolder(const std::string& path) override;
    int list(const std::string& folder, std::vector<std::string>& out) override;
    int readLink(const std::string& path, std::string& out) override;
    int lockByte(Descriptor file, std::uint64_t offset) override;
    int unlockByte(Descriptor file, std::uint64_t offset) override;
    int isByteLocked(Descriptor file, std::uint64_t offset, bool& out) override;

private:
    int run(Call call, const std::function<int()>& operation);
    int faultOf(int n, Kind kind) const;
    int lateFaultOf(int n) const;
    std::size_t lengthOf(int n, std::size_t asked) const;
    std::string nameOfOpen(Descriptor file) const;
    int closeOpen(Descriptor file);
    void die();

    FileOps& m_inner; // not owned
    std::vector<Call> m_trace;
    std::map<Descriptor, std::string> m_open;
    std::map<int, int> m_failures;
    std::map<int, int> m_lateFailures;
    std::map<Kind, int> m_kindFailures;
    std::map<int, std::size_t> m_shortened;
    int m_failFrom = 0; ///< 0: never.
    int m_failFromError = 0;
    int m_shortenFrom = 0;
    std::size_t m_shortenBytes = 0;
    int m_deathAt = 0;
    bool m_isDead = false;
    bool m_skipsFlushing = false;
};

} // namespace base
