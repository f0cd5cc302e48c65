#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <base/tv_string.h>
#include <db/drawing_file.h>
#include <db/entity_chain.h>
#include <dwg/dwg_codec.h>
#include <dxf/dxf_codec.h>

/// The folder of real drawings, which are not part of the sources; may be absent.
inline std::filesystem::path drawingsFolder()
{
    const char* chosen = std::getenv("KV_DRAWINGS");
    return chosen ? chosen : KV_DRAWINGS_DEFAULT;
}

inline std::vector<std::uint8_t> readFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::vector<std::uint8_t> bytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

/// What a status says, for the text of a failure.
inline std::string told(const base::Status& status)
{
    std::string text = "E" + std::to_string(static_cast<int>(status.reason()));
    for (const TvString& argument : status.arguments())
        text += " " + argument.utf8();
    return text;
}

using OpenFile = std::unique_ptr<db::DrawingFile>;

inline OpenFile openDxf(std::string_view text)
{
    auto file = dxf::DxfCodec().open(bytesOf(text));
    EXPECT_TRUE(file) << told(file.status());
    return file ? std::move(*file) : nullptr;
}

inline OpenFile openDwg(const std::filesystem::path& path)
{
    auto file = dwg::DwgCodec().open(readFile(path));
    EXPECT_TRUE(file) << path << " " << told(file.status());
    return file ? std::move(*file) : nullptr;
}

/// One of the minimal drawings that are part of the sources.
inline OpenFile openMinimal(const std::string& name)
{
    return openDwg(std::filesystem::path(KV_TEST_DATA) / "dwg" / name);
}

/// A file with changes, ready to be written.
class Edit
{
public:
    explicit Edit(const db::DrawingFile& file) : m_file(file)
    {
        auto header = file.header();
        EXPECT_TRUE(header);
        if (header)
            m_header = std::move(*header);
    }

    db::Record& header()
    {
        m_headerChanged = true;
        return m_header;
    }
    /// The object, to be changed.
    db::Record& change(std::uint64_t handle)
    {
        const auto [at, isNew] = m_changed.try_emplace(handle);
        if (isNew) {
            EXPECT_TRUE(m_file.read(handle, at->second)) << std::hex << handle;
        }
        return at->second;
    }
    db::Record& add(const char* className, std::uint64_t handle)
    {
        db::Record& record = m_changed[handle];
        record = db::Record(*db::classNamed(className));
        record.setVersion(m_file.version());
        record.setHandle(handle);
        return record;
    }
    void erase(std::uint64_t handle) { m_erased.insert(handle); }

    const std::map<std::uint64_t, db::Record>& changed() const { return m_changed; }

    base::Result<std::vector<std::uint8_t>> write(db::Version version,
                                                  const db::Codec& codec = dxf::DxfCodec())
    {
        db::Contents contents;
        std::set<std::uint64_t> all(m_file.handles().begin(), m_file.handles().end());
        std::map<std::uint64_t, const db::Record*> changed;
        for (const auto& [handle, record] : m_changed) {
            changed[handle] = &record;
            all.insert(handle);
        }
        for (const std::uint64_t handle : m_erased)
            all.erase(handle);
        const std::vector<std::uint64_t> handles(all.begin(), all.end());
        contents.origin = &m_file;
        contents.changed = &changed;
        contents.erased = &m_erased;
        contents.header = &m_header;
        contents.headerChanged = m_headerChanged;
        contents.handles = handles;
        contents.record = [&](std::uint64_t handle) -> base::Result<const db::Record*> {
            if (const auto known = m_changed.find(handle); known != m_changed.end())
                return &known->second;
            if (base::Status done = m_file.read(handle, m_record); !done)
                return done;
            if (base::Status done = db::fillOwnedFromChain(m_file, m_record); !done)
                return done;
            return &m_record;
        };
        return codec.write(contents, version);
    }
    /// Written and read again; null, with a failure told, when it cannot be.
    OpenFile written(db::Version version)
    {
        auto bytes = write(version);
        EXPECT_TRUE(bytes) << told(bytes.status());
        if (!bytes)
            return nullptr;
        text.assign(bytes->begin(), bytes->end());
        return openDxf(text);
    }

    /// The same as a drawing of bits.
    OpenFile writtenAsDwg(db::Version version)
    {
        auto bytes = write(version, dwg::DwgCodec());
        EXPECT_TRUE(bytes) << told(bytes.status());
        if (!bytes)
            return nullptr;
        auto file = dwg::DwgCodec().open(std::move(*bytes));
        EXPECT_TRUE(file) << told(file.status());
        return file ? std::move(*file) : nullptr;
    }

    std::string text; ///< what was written

private:
    const db::DrawingFile& m_file;
    db::Record m_header;
    bool m_headerChanged = false;
    std::map<std::uint64_t, db::Record> m_changed;
    std::set<std::uint64_t> m_erased;
    db::Record m_record;
};

inline db::Record recordOf(const db::DrawingFile& file, std::uint64_t handle)
{
    db::Record record;
    const base::Status done = file.read(handle, record);
    EXPECT_TRUE(done) << std::hex << handle << " " << told(done);
    return record;
}

/// The handles of all objects of a class.
inline std::vector<std::uint64_t> handlesOf(const db::DrawingFile& file, std::string_view className)
{
    std::vector<std::uint64_t> found;
    for (const std::uint64_t handle : file.handles())
        if (const auto kind = file.kind(handle); kind && kind->className == className)
            found.push_back(handle);
    return found;
}
