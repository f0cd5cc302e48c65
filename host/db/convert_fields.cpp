// What holds of every record on its way: texts, colours and references, wherever they stand.

#include "convert_colors.h"
#include "convert_data.h"
#include "db/group_items.h"

namespace db {

namespace {

constexpr std::uint64_t kFirstRelativeCode = 6;

/// Walks over everything in a record by its layout, also what neither version would write.
class FieldConverter
{
public:
    FieldConverter(Record& record, const Step& step) : m_record(record), m_step(step) {}

    void run() { convertStruct(m_record.classDef()->layout(), 0); }

private:
    std::uint64_t& word(std::uint32_t at) { return m_record.words().data()[at]; }

    void convertStruct(const StructDef& def, std::uint32_t base)
    {
        if (def.name == "CMC")
            convertColor(def, base);
        else if (def.name == "ENC")
            convertEntityColor(def, base);
        else if (def.name == "item")
            convertItem(base);
        for (const FieldDef& field : def.fields) {
            const std::uint32_t slot = base + field.slot;
            switch (field.storage) {
            case Storage::Text: convertText(slot); break;
            case Storage::Handle: convertReference(slot, field.handleCode); break;
            case Storage::Struct: convertStruct(*field.structure, slot); break;
            case Storage::Array: convertArray(field, slot); break;
            default: break;
            }
        }
    }

    void convertArray(const FieldDef& field, std::uint32_t slot)
    {
        const std::uint32_t stride = field.stride();
        const Run run = arrayOf(word(slot));
        for (std::uint32_t i = 0; i < run.count; ++i) {
            const std::uint32_t at = run.offset + i * stride;
            if (field.element == Storage::Struct)
                convertStruct(*field.structure, at);
            else if (field.element == Storage::Text)
                convertText(at);
            else if (field.element == Storage::Handle)
                convertReference(at, field.handleCode);
        }
    }

    // As a new text: how the other version had stored it is of no use here.
    void convertText(std::uint32_t slot)
    {
        Run run = runOf(word(slot));
        run.count = TextRun::length(run);
        word(slot) = wordOf(run);
        if (run.count == 0 || !m_step.reaches(kWideTexts))
            return;
        const auto* units = reinterpret_cast<const char16_t*>(m_record.words().data() + run.offset);
        const std::u16string_view text(units, run.count);
        if (text.find(u"\\U+") == std::u16string_view::npos &&
            text.find(u"\\u+") == std::u16string_view::npos)
            return;
        const Run expanded = appendText(m_record, withoutEscapes(text));
        word(slot) = wordOf(expanded);
    }

    void convertReference(std::uint32_t slot, std::uint8_t tableCode)
    {
        const std::uint64_t target = word(slot) & kTargetMask;
        const std::uint64_t stored = word(slot) >> 60;
        const std::uint64_t code = tableCode >= 2 && tableCode <= 5 ? 0
                                   : stored >= kFirstRelativeCode   ? 4
                                                                    : stored;
        word(slot) = code << 60 | target;
    }

    void convertColor(const StructDef& def, std::uint32_t base)
    {
        std::uint64_t& index = word(base + slotOf(def, "index"));
        std::uint64_t& value = word(base + slotOf(def, "value"));
        if (m_step.reaches(Version::Ac1018)) {
            value = static_cast<std::uint64_t>(
                std::int64_t(wideColor(static_cast<std::int64_t>(index))));
            index = 0;
        } else if (m_step.leaves(Version::Ac1018)) {
            index = static_cast<std::uint64_t>(colorIndex(static_cast<std::int32_t>(value)));
        }
    }

    // Narrow texts of items tell the code page that they are in.
    void convertItem(std::uint32_t base)
    {
        constexpr int kFirstOfBoth = 1000;
        const auto code = static_cast<int>(word(base + ItemSlots::kCode));
        const bool isText = code == kFirstOfBoth ||
                            (code < kFirstOfBoth && xrecordItemKind(code) == ItemKind::Text);
        if (isText && m_step.reaches(kWideTexts))
            word(base + ItemSlots::kInteger) = 0;
    }

    // The index stands in it in every version: beside a true colour it is the nearest one.
    void convertEntityColor(const StructDef& def, std::uint32_t base)
    {
        constexpr std::uint64_t kTrue = 0x8000, kNamed = 0x4000, kIndex = 0x1FF;
        if (!m_step.leaves(Version::Ac1018))
            return;
        std::uint64_t& flags = word(base + slotOf(def, "flags"));
        std::uint64_t index = flags & kIndex;
        if (index == 0 && (flags & kTrue) != 0 && (flags & kNamed) == 0)
            index = static_cast<std::uint64_t>(nearestColorIndex(
                static_cast<std::uint32_t>(word(base + slotOf(def, "rgb"))) & 0xFFFFFF));
        flags = index;
    }

    static std::uint32_t slotOf(const StructDef& def, std::string_view name)
    {
        return def.find(fieldId(name))->slot;
    }

    Record& m_record;
    const Step& m_step;
};

} // namespace

void convertFields(Record& record, const Step& step)
{
    FieldConverter(record, step).run();
}

void convertCommon(Record& record, const Step& step, const Conversion::Data& data)
{
    static const FieldId kMissing = fieldId("xdict_missing"), kExtension = fieldId("xdict"),
                         kBinary = fieldId("has_binary"), kNoLinks = fieldId("nolinks"),
                         kPrevious = fieldId("prev"), kNext = fieldId("next"),
                         kGraphics = fieldId("has_graphics");
    RecordEditor edit(record);
    if (step.reaches(Version::Ac1018))
        edit.setFlag(kMissing, record.handle(kExtension) == 0);
    if (step.crosses(Version::Ac1027))
        edit.setFlag(kBinary, false); // pictures of layouts; anything else is an obstacle
    // Pictures of entities that are known are made anew; the texts in them have the version's form.
    if (step.crosses(kWideTexts) && record.flag(kGraphics)) {
        edit.setBytes("graphics", {});
        edit.setInteger("graphics_size", 0);
        edit.setFlag(kGraphics, false);
    }
    if (!record.has(kNoLinks))
        return;
    edit.setHandle(kPrevious, 0);
    edit.setHandle(kNext, 0);
    edit.setFlag(kNoLinks, false);
    const auto found = data.neighbours.find(record.handle());
    if (step.to != Version::Ac1015 || found == data.neighbours.end())
        return;
    const auto [previous, next] = found->second;
    if (previous + 1 == record.handle() && next == record.handle() + 1 && previous != 0) {
        edit.setFlag(kNoLinks, true);
        return;
    }
    edit.setHandle(kPrevious, previous);
    edit.setHandle(kNext, next);
}

} // namespace db
