#include "tool_scene.h"

#include <filesystem>
#include <fstream>
#include <memory>

#include <sm/tv_sm_sheet_set_mgr.h>

namespace {

void addSheet(TvSmSubset& parent, const char16_t* number, const char16_t* title,
              const char16_t* drawing)
{
    TvSmSheet* sheet = parent.createSheet(title, {});
    sheet->setNumber(number);
    sheet->setTitle(title);
    if (drawing) {
        auto layout = std::make_unique<TvSmTvDbLayoutReference>();
        layout->initNew(sheet, {});
        layout->setFileName(drawing);
        layout->setHandle(u"1F");
        layout->setName(u"Layout1");
        sheet->setLayoutReference(layout.release());
    }
    parent.insertComponent(sheet, nullptr);
}

TvSmSubset& addSubset(TvSmSubset& parent, const char16_t* name)
{
    TvSmSubset* subset = parent.createSubset(name, {});
    parent.insertComponent(subset, nullptr);
    return *subset;
}

} // namespace

SampleFolder::SampleFolder()
{
    std::filesystem::create_directory(m_folder.path() / "plans");
    m_folder.write("plans/a.dwg", "a drawing");
    TvSmSheetSetMgr manager;
    TvSmDatabase* db = manager.createDatabase(file(), {}, false);
    TvSmSheetSet& set = *db->getSheetSet();
    set.setName(u"Riverside house");
    set.setDesc(u"Family home");
    TvSmSubset& plans = addSubset(set, u"Plans");
    addSheet(plans, u"A-101", u"Ground floor", u"plans/a.dwg");
    addSheet(plans, u"A-102", u"First floor", u"plans/b.dwg");
    TvSmSubset& details = addSubset(set, u"Details");
    details.setExcludeFromPublish(true);
    addSheet(details, u"A-501", u"Stairs", nullptr);
    addSheet(set, u"", u"Cover", nullptr);
    sm::setTextProperty(set.getCustomProperties(), u"Client", u"City council",
                        TvSmCustomPropertyValue::kSheetSetProperty);
    db->save(0);
}

std::string SampleFolder::generalised(std::string text) const
{
    const std::string path = std::filesystem::canonical(m_folder.path()).string();
    for (const std::string& from : {path, m_folder.path().string()})
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
            text.replace(at, from.size(), "DIR");
    return text;
}

std::string SampleFolder::tree() const
{
    cli::TreeRequest request;
    request.file = file();
    return runVerb(request).out;
}

void expectGolden(const std::string& name, const std::string& actual)
{
    std::ifstream in(std::string(KV_TEST_DATA) + "/cli/" + name, std::ios::binary);
    const std::string expected{std::istreambuf_iterator<char>(in), {}};
    if (actual == expected)
        return;
    const std::string out = std::string(KV_BUILD_DIR) + "/" + name + ".out";
    std::ofstream(out, std::ios::binary) << actual;
    ADD_FAILURE() << name << " differs; what came is in " << out << "\n" << actual;
}
