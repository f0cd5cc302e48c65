#pragma once

#include <cstdlib>
#include <map>
#include <vector>

#include <db/default_drawing.h>
#include <db/record_editor.h>
#include <dwg/dwg_codec.h>

inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

inline const dwg::DwgCodec& codec()
{
    static const dwg::DwgCodec codec;
    return codec;
}

/// A new drawing with many entities in model space, for measurements.
class MadeDrawing
{
public:
    explicit MadeDrawing(db::Version version)
        : m_version(version), m_content(db::makeDefaultDrawing(version, db::Measurement::Metric)),
          m_next(m_content.header.handle("HANDSEED"))
    {
    }

    /// A variable of the header that is a handle.
    std::uint64_t handle(const char* variable) const { return m_content.header.handle(variable); }
    /// An entity to be filled: on the current layer, in the current text style, with a text for the
    /// classes that have one.
    /// @param index  its number, from 0, which the text tells.
    db::Record entity(const char* className, int index)
    {
        db::Record record(*db::classNamed(className));
        record.setHandle(m_next++);
        record.setTypeNumber(record.classDef()->typeNumber());
        record.setVersion(m_version);
        db::RecordEditor edit(record);
        edit.setInteger("entmode", 2);
        edit.setFlag("nolinks", true);
        edit.setHandle("layer", handle("CLAYER"));
        edit.setHandle("style", handle("TEXTSTYLE"));
        edit.setText("text", u"General arrangement, level " +
                                 std::u16string(1, static_cast<char16_t>(u'0' + index % 10)));
        return record;
    }
    /// The file with these entities, all made here, in their order.
    std::vector<std::uint8_t> fileWith(std::vector<db::Record> entities)
    {
        own(entities);
        std::move(entities.begin(), entities.end(), std::back_inserter(m_content.objects));
        db::RecordEditor(m_content.header).setHandle("HANDSEED", m_next);
        std::map<std::uint64_t, const db::Record*> records;
        std::vector<std::uint64_t> handles;
        for (const db::Record& record : m_content.objects) {
            records.emplace(record.handle(), &record);
            handles.push_back(record.handle());
        }
        db::Contents contents;
        contents.changed = &records;
        contents.header = &m_content.header;
        contents.handles = handles;
        const auto bytes = codec().write(contents, m_version);
        require(bool(bytes));
        return *bytes;
    }

private:
    void own(const std::vector<db::Record>& entities)
    {
        for (db::Record& record : m_content.objects)
            if (record.handle() == handle("BRMSPACE")) {
                db::RecordEditor edit(record);
                db::ArrayEditor owned = edit.array("owned");
                owned.resize(static_cast<std::uint32_t>(entities.size()));
                for (std::uint32_t i = 0; i < owned.size(); ++i)
                    owned.setHandle(i, entities[i].handle());
                edit.setHandle("first_entity", entities.front().handle());
                edit.setHandle("last_entity", entities.back().handle());
            }
    }

    db::Version m_version;
    db::DrawingContent m_content;
    std::uint64_t m_next;
};
