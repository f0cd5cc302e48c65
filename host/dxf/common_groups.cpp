// The groups that all objects share: handle, owner, reactors, extension dictionary, extended data.

#include "item_list.h"
#include "object_reader.h"

namespace dxf {

namespace {

constexpr int kReactors = 1, kExtension = 2, kIgnored = 3, kUnknown = -1;

int groupNamed(std::string_view name)
{
    if (name == "{ACAD_REACTORS")
        return kReactors;
    if (name == "{ACAD_XDICTIONARY")
        return kExtension;
    // Who inserts a block is found out from the inserts themselves.
    return name == "{BLKREFS" ? kIgnored : kUnknown;
}

} // namespace

// Before the first marker: the handle and the owner, which the file's structure has told already.
bool ObjectReader::readPreamble(const Tag& tag)
{
    switch (tag.code) {
    case 5:
    case 105: return !std::exchange(m_sawHandle, true);
    case 330: return !std::exchange(m_sawOwner, true);
    default: return false;
    }
}

bool ObjectReader::readBracedGroup(const Tag& tag)
{
    static const db::FieldId kReactorsField = db::fieldId("reactors"),
                             kExtensionField = db::fieldId("xdict"),
                             kNoExtension = db::fieldId("xdict_missing");
    if (tag.code == 102) {
        const int before = m_group;
        const bool opens = tag.value.starts_with('{');
        m_group = opens ? groupNamed(tag.value) : 0;
        return (opens ? m_group : before) != kUnknown && (opens || before != 0);
    }
    if (m_group == kReactors && tag.code == 330) {
        db::ArrayEditor reactors = root().array(kReactorsField);
        return reactors.setHandle(reactors.add(), handle(tag));
    }
    if (m_group == kExtension && tag.code == 360) {
        const std::uint64_t dictionary = handle(tag);
        root().setInteger(kNoExtension, dictionary == 0);
        return root().setHandle(kExtensionField, dictionary);
    }
    return m_group == kIgnored;
}

bool ObjectReader::readExtendedData(const Tag& tag)
{
    static const db::FieldId kData = db::fieldId("eed"), kApp = db::fieldId("app"),
                             kItems = db::fieldId("items");
    db::ArrayEditor groups = root().array(kData);
    if (tag.code == 1001) {
        const std::uint64_t app = named(Table::Application, tag.value);
        m_knowsApplication = app != 0;
        if (m_knowsApplication)
            groups[groups.add()].setHandle(kApp, app);
    } else if (m_knowsApplication) {
        db::RecordEditor group = groups[groups.size() - 1];
        m_knowsApplication = readItem(*this, group.array(kItems), tag, true);
    }
    if (!m_knowsApplication)
        note(tag);
    return true;
}

} // namespace dxf
