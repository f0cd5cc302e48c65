#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <base/faulty_file_ops.h>
#include <sm/change_scope.h>
#include <sm/environment.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "temp_folder.h"

/// File operations that do not wait for the disk: most tests need no power cut.
class QuickFileOps : public base::FaultyFileOps
{
public:
    using base::FaultyFileOps::FaultyFileOps;
    int flush(Descriptor) override { return 0; }
};

/// A folder, a clock that nobody waits for, quick file operations and a manager of its own.
struct SheetSetScene {
    SheetSetScene() : m_former(sm::environment())
    {
        sm::environment().files = &ops;
        sm::environment().clock = &clock;
    }
    ~SheetSetScene() { sm::environment() = m_former; }
    SheetSetScene(const SheetSetScene&) = delete;
    SheetSetScene& operator=(const SheetSetScene&) = delete;

    static constexpr char kName[] = "PLAN.dst";
    TvString path() const { return folder.file(kName); }
    std::string content() const { return folder.read(kName); }
    bool isThere() const { return std::filesystem::exists(folder.path() / kName); }
    /// Another version of the file from outside, as any program would write it: a new file under
    /// the old name.
    void replaceOutside(const std::string& text) const
    {
        folder.write("outside.tmp", text);
        std::filesystem::rename(folder.path() / "outside.tmp", folder.path() / kName);
    }
    /// The same with one piece of text exchanged, which must be there.
    void editOutside(const std::string& from, const std::string& to) const
    {
        std::string text = content();
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from << "\n" << text;
        replaceOutside(text.replace(at, from.size(), to));
    }
    /// Names of what stands beside the file, hidden ones too.
    std::vector<std::string> neighbours() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().filename() != kName)
                names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::vector<std::string> recoveryFiles() const
    {
        std::vector<std::string> names = neighbours();
        std::erase_if(names, [](const std::string& name) {
            return name.find("(recovered ") == std::string::npos;
        });
        return names;
    }

    TempFolder folder;
    base::ManualClock clock;
    QuickFileOps ops{base::systemFileOps()};
    TvSmSheetSetMgr manager;

    /// A new database that takes changes without a lock until it is saved.
    TvSmDatabase* create() { return manager.createDatabase(path(), TvString(), true); }
    /// A new database with nothing in it, on disk.
    TvSmDatabase* createSaved()
    {
        TvSmDatabase* db = create();
        EXPECT_TRUE(db && db->save(0));
        return db;
    }
    TvSmDatabase* open() { return manager.openDatabase(path(), true, 0); }

private:
    sm::Environment m_former;
};

class SheetSetTest : public testing::Test, protected SheetSetScene
{
};

/// A constructed object bound to its future owner, its maker's until it is added.
template <class T>
T* newFor(TvSmPersist* owner)
{
    auto made = std::make_unique<T>();
    EXPECT_TRUE(made->initNew(owner, TvString()));
    return made.release();
}

inline TvString handleOf(const TvSmPersist* object)
{
    return object ? object->objectId().getHandle() : TvString(u"(null)");
}

inline TvSmSheet* addSheet(TvSmSubset* parent, const TvString& number, const TvString& title)
{
    TvSmSheet* sheet = parent->createSheet(title, TvString());
    EXPECT_TRUE(sheet && sheet->setNumber(number) && sheet->setTitle(title) &&
                parent->insertComponent(sheet, nullptr));
    return sheet;
}

inline TvSmSubset* addSubset(TvSmSubset* parent, const TvString& name)
{
    TvSmSubset* subset = parent->createSubset(name, TvString());
    EXPECT_TRUE(subset && parent->insertComponent(subset, nullptr));
    return subset;
}

inline TvSmTvDbLayoutReference* setLayout(TvSmSheet* sheet, const TvString& path,
                                          const TvString& handle, const TvString& name)
{
    auto* layout = newFor<TvSmTvDbLayoutReference>(sheet);
    EXPECT_TRUE(layout->setFileName(path) && layout->setHandle(handle) && layout->setName(name) &&
                sheet->setLayoutReference(layout));
    return layout;
}

inline TvSmViewCategory* addCategory(TvSmSheetSet* set, const TvString& name)
{
    auto* category = newFor<TvSmViewCategory>(set->getViewCategories());
    EXPECT_TRUE(category->setName(name) && set->getViewCategories()->add(category, 0));
    return category;
}

inline TvSmSheetView* addView(TvSmSheet* sheet, const TvString& title,
                              TvSmViewCategory* category = nullptr)
{
    auto* view = newFor<TvSmSheetView>(sheet->getSheetViews());
    EXPECT_TRUE(view->setTitle(title) && view->setCategory(category) &&
                sheet->getSheetViews()->add(view));
    return view;
}

inline TvSmTvDbBlockRecordReference* addBlock(TvSmReferenceCollection* list, const TvString& name)
{
    auto* block = newFor<TvSmTvDbBlockRecordReference>(list);
    EXPECT_TRUE(block->setFileName(u"/library/blocks.dwg") && block->setHandle(u"1F") &&
                block->setName(name) && list->add(block));
    return block;
}

/// The direct children's names, in order.
inline std::vector<TvString> childrenOf(const TvSmSubset* subset)
{
    std::vector<TvString> names;
    for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator()))
        names.push_back(child->getName());
    return names;
}

template <class Item>
std::vector<Item*> itemsOf(TvSmEnumerator<Item>* owned)
{
    std::vector<Item*> items;
    for (Item* item : sm::each(owned))
        items.push_back(item);
    return items;
}

/// Everything that can be read from a database, one object a line, for comparison; with addresses
/// on demand.
class Outline
{
public:
    static std::string of(const TvSmDatabase* db, bool withAddresses = false)
    {
        Outline outline(withAddresses);
        outline.set(db->getSheetSet());
        return outline.m_out.str();
    }

private:
    explicit Outline(bool withAddresses) : m_withAddresses(withAddresses) {}

    void line(const char* what, const TvSmPersist* object)
    {
        m_out << std::string(static_cast<std::size_t>(m_depth) * 2, ' ') << what << ' '
              << handleOf(object).utf8();
        if (object)
            m_out << ' ' << TvString(object->isA()->name()).utf8() << " in "
                  << handleOf(object->owner()).utf8();
        if (m_withAddresses)
            m_out << ' ' << static_cast<const void*>(object);
    }
    void text(const char* name, const TvString& value)
    {
        m_out << ' ' << name << "=[";
        for (const TvChar unit : value.view())
            if (unit >= 0x20 && unit < 0x7F)
                m_out << static_cast<char>(unit);
            else
                m_out << '<' << static_cast<unsigned>(unit) << '>';
        m_out << ']';
    }
    void flag(const char* name, bool value)
    {
        if (value)
            m_out << ' ' << name;
    }
    void end() { m_out << '\n'; }

    void component(const TvSmComponent* object)
    {
        text("name", object->getName());
        text("desc", object->getDesc());
    }
    void properties(const TvSmComponent* object)
    {
        for (const sm::Property& property : sm::propertiesOf(object->getCustomProperties())) {
            line("property", property.value);
            text("key", property.name);
            TvVariant value;
            property.value->getValue(value);
            m_out << " type=" << value.type() << " flags=" << property.value->getFlags();
            TvString asText;
            std::int32_t wide = 0;
            std::int16_t narrow = 0;
            double real = 0;
            bool isTrue = false;
            if (value.getString(asText))
                text("text", asText);
            if (value.getInt32(wide))
                m_out << " int=" << wide;
            if (value.getInt16(narrow))
                m_out << " short=" << narrow;
            if (value.getReal(real))
                m_out << " real=" << real;
            if (value.getBool(isTrue))
                m_out << " bool=" << isTrue;
            end();
        }
    }
    void reference(const char* what, const TvSmFileReference* reference)
    {
        if (!reference)
            return;
        line(what, reference);
        text("path", reference->getFileName());
        if (const auto* object = tvrxCast<TvSmDbObjectReference>(reference)) {
            text("object", object->getHandle());
            text("name", object->getName());
        }
        end();
    }
    void references(const char* what, const TvSmReferenceCollection* list)
    {
        for (const TvSmFileReference* each : sm::each(list->getEnumerator()))
            reference(what, each);
    }

    void set(const TvSmSheetSet* set)
    {
        TvString out;
        line("set", set);
        component(set);
        text("1", set->getSheetSetText1(out));
        text("2", set->getSheetSetText2(out));
        text("3", set->getSheetSetText3(out));
        text("4", set->getSheetSetText4(out));
        subsetFields(set);
        ++m_depth;
        reference("pageSetups", set->getAltPageSetups());
        reference("labelBlock", set->getDefaultLabelBlock());
        options(set->getPublishOptions());
        references("resource", set->getResourceLocations());
        references("callout", set->getCalloutBlocks());
        line("default", set->getViewCategories()->getDefaultCategory());
        end();
        properties(set->getViewCategories());
        for (const TvSmViewCategory* each : sm::each(set->getViewCategories()->getEnumerator()))
            category(each);
        properties(set->getSheetSelections());
        for (const TvSmSheetSelection* each : sm::each(set->getSheetSelections()->getEnumerator()))
            selection(each);
        subsetBody(set);
        --m_depth;
    }
    void options(const TvSmPublishOptions* options)
    {
        line("options", options);
        component(options);
        m_out << " format=" << options->getEplotFormat();
        text("file", options->getDefaultFileName());
        flag("dwf", options->getDwfType());
        flag("prompt", options->getPromptForName());
        flag("layers", options->getLayerInfo());
        flag("merge", options->getLinesMerge());
        flag("sheetData", options->getIncludeSheetData());
        flag("setData", options->getIncludeSheetSetData());
        end();
        ++m_depth;
        reference("folder", options->getDefaultOutputdir());
        properties(options);
        --m_depth;
    }
    void category(const TvSmViewCategory* category)
    {
        line("category", category);
        component(category);
        for (const TvSmSheetView* view : sm::each(category->getSheetViewEnumerator()))
            text("view", handleOf(view));
        end();
        ++m_depth;
        properties(category);
        references("callout", category->getCalloutBlocks());
        --m_depth;
    }
    void selection(const TvSmSheetSelection* selection)
    {
        line("selection", selection);
        component(selection);
        for (const TvSmComponent* member : sm::each(selection->getEnumerator()))
            text("member", handleOf(member));
        end();
        ++m_depth;
        properties(selection);
        --m_depth;
    }
    void subsetFields(const TvSmSubset* subset)
    {
        flag("prompt", subset->getPromptForTemplate());
        flag("excluded", subset->getExcludeFromPublish());
        end();
    }
    void subsetBody(const TvSmSubset* subset)
    {
        reference("location", subset->getNewSheetLocation());
        reference("template", subset->getDefaultTemplateLayout());
        properties(subset);
        for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator())) {
            if (const auto* each = tvrxCast<TvSmSheet>(child)) {
                sheet(each);
                continue;
            }
            line("subset", child);
            component(child);
            subsetFields(tvrxCast<TvSmSubset>(child));
            ++m_depth;
            subsetBody(tvrxCast<TvSmSubset>(child));
            --m_depth;
        }
    }
    void sheet(const TvSmSheet* sheet)
    {
        TvString out;
        line("sheet", sheet);
        component(sheet);
        text("number", sheet->getNumber());
        text("title", sheet->getTitle());
        text("1", sheet->getSheetText1(out));
        text("2", sheet->getSheetText2(out));
        text("3", sheet->getSheetText3(out));
        text("4", sheet->getSheetText4(out));
        flag("excluded", sheet->getExcludeFromPublish());
        end();
        ++m_depth;
        reference("layout", sheet->getLayoutReference());
        properties(sheet);
        properties(sheet->getSheetViews());
        for (const TvSmSheetView* each : sm::each(sheet->getSheetViews()->getEnumerator()))
            view(each);
        --m_depth;
    }
    void view(const TvSmSheetView* view)
    {
        line("view", view);
        component(view);
        text("number", view->getNumber());
        text("title", view->getTitle());
        if (const TvSmViewCategory* own = view->getCategory())
            text("category", handleOf(own));
        end();
        ++m_depth;
        reference("reference", view->getViewReference());
        properties(view);
        --m_depth;
    }

    std::ostringstream m_out;
    int m_depth = 0;
    const bool m_withAddresses;
};

/// Puts something of every kind into a set, each attribute with a value of its own. Paths lead
/// nowhere.
class EveryFeature
{
public:
    static void putInto(TvSmDatabase* db)
    {
        TvSmSheetSet* set = db->getSheetSet();
        texts(set);
        setReferences(set);
        publishOptions(set->getPublishOptions());
        auto* plans = addCategory(set, u"Plans");
        addCategory(set, u""); // the default one
        auto* callout = addBlock(set->getCalloutBlocks(), u"Bubble");
        addBlock(set->getCalloutBlocks(), u"Arrow");
        EXPECT_TRUE(plans->getCalloutBlocks()->add(callout));
        EXPECT_TRUE(plans->setDesc(u"All plans"));
        tree(set, plans);
    }

private:
    static void property(TvSmComponent* owner, const TvString& name, const TvVariant& value,
                         unsigned short flags)
    {
        auto* made = newFor<TvSmCustomPropertyValue>(owner->getCustomProperties());
        EXPECT_TRUE(made->setValue(value) && made->setFlags(flags) &&
                    owner->getCustomProperties()->setProperty(name, made));
    }
    static void texts(TvSmSheetSet* set)
    {
        EXPECT_TRUE(set->setName(u"School \"North\" <A&B>"));
        EXPECT_TRUE(set->setDesc(u"Line one\nLine two\ttab\r\nend"));
        EXPECT_TRUE(set->setSheetSetText1(u"\u00c5ngstr\u00f6m \U0001F3E0"));
        EXPECT_TRUE(set->setSheetSetText2(std::u16string(u"bell\x07 lone\xd800!")));
        EXPECT_TRUE(set->setSheetSetText3(u"looks like \\u0041; a mark"));
        EXPECT_TRUE(set->setSheetSetText4(u" blanks  kept "));
        EXPECT_TRUE(set->setPromptForTemplate(true));
        EXPECT_TRUE(set->setExcludeFromPublish(true));
        property(set, u"Client", TvVariant(u"Town <council>"), 1);
        property(set, u"Checked by", TvVariant(u""), 2);
        property(set, u"Count", TvVariant(std::int32_t(-123456)), 0);
        property(set, u"Short", TvVariant(std::int16_t(-7)), 3);
        property(set, u"Scale", TvVariant(0.1), 0);
        property(set, u"Done", TvVariant(true), 0);
        property(set, u"Nothing", TvVariant(), 0);
    }
    static void setReferences(TvSmSheetSet* set)
    {
        auto* setups = newFor<TvSmFileReference>(set);
        EXPECT_TRUE(setups->setFileName(u"/nowhere/setups.dwt") && set->setAltPageSetups(setups));
        auto* label = newFor<TvSmTvDbBlockRecordReference>(set);
        EXPECT_TRUE(label->setFileName(u"C:\\library\\labels.dwg") && label->setHandle(u"2A") &&
                    label->setName(u"Label") && set->setDefaultLabelBlock(label));
        auto* location = newFor<TvSmFileReference>(set);
        EXPECT_TRUE(location->setFileName(u"sheets") && set->setNewSheetLocation(location));
        auto* layout = newFor<TvSmTvDbLayoutReference>(set);
        EXPECT_TRUE(layout->setFileName(u"\\\\server\\share\\sheet.dwt") &&
                    layout->setHandle(u"22") && layout->setName(u"A1") &&
                    set->setDefaultTemplateLayout(layout));
        for (const TvString& folder : {TvString(u"models"), TvString(u"..\\other models")}) {
            auto* resource = newFor<TvSmFileReference>(set->getResourceLocations());
            EXPECT_TRUE(resource->setFileName(folder) &&
                        set->getResourceLocations()->add(resource));
        }
    }
    static void publishOptions(TvSmPublishOptions* options)
    {
        auto* folder = newFor<TvSmFileReference>(options);
        EXPECT_TRUE(folder->setFileName(u"out") && options->setDefaultOutputdir(folder));
        EXPECT_TRUE(options->setDwfType(true) && options->setEplotFormat(-5) &&
                    options->setPromptForName(true) && options->setDefaultFileName(u"Set.pdf") &&
                    options->setLayerInfo(true) && options->setLinesMerge(true) &&
                    options->setIncludeSheetData(true) && options->setIncludeSheetSetData(true));
    }
    static void tree(TvSmSheetSet* set, TvSmViewCategory* plans)
    {
        TvSmSubset* ground = addSubset(set, u"Ground floor");
        EXPECT_TRUE(ground->setDesc(u"All of it") && ground->setExcludeFromPublish(true));
        TvSmSheet* first = addSheet(ground, u"A-101", u"Floor plan");
        setLayout(first, u"drawings/A-101.dwg", u"5E", u"Plan");
        EXPECT_TRUE(first->setDesc(u"the first") && first->setSheetText1(u"one") &&
                    first->setSheetText2(u"two") && first->setSheetText3(u"three") &&
                    first->setSheetText4(u"four") && first->setExcludeFromPublish(true));
        property(first, u"Checked by", TvVariant(u"N. N."), 2);
        TvSmSheetView* view = addView(first, u"North", plans);
        auto* reference = newFor<TvSmTvDbViewReference>(view);
        EXPECT_TRUE(reference->setFileName(u"drawings/A-101.dwg") && reference->setHandle(u"60") &&
                    reference->setName(u"NORTH") && view->setViewReference(reference) &&
                    view->setNumber(u"1") && view->setName(u"v") && view->setDesc(u"to the north"));
        addView(first, u"South");
        TvSmSheet* last = addSheet(set, u"", u"Last");
        EXPECT_TRUE(last->setTitle(TvString())); // an empty title is a title
        addSubset(ground, u"Details");
        TvSmSheetSelection* selection = set->getSheetSelections()->add(u"To print", u"on Monday");
        EXPECT_TRUE(selection->add(last) && selection->add(ground));
    }
};
