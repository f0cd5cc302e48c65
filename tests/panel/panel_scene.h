#pragma once

#include <panel/sheet_tree.h>

#include "house_sheets.h"
#include "session_scene.h"

/// Notes what a tree tells, and holds it to its word: what is told about comes before what was.
class NotingTree : public panel::TreeListener
{
public:
    explicit NotingTree(panel::SheetTree& tree) : m_tree(tree) { tree.setListener(this); }
    ~NotingTree() override { m_tree.setListener(nullptr); }

    void aboutToReset() override { told.push_back("reset"); }
    void aboutToInsert(const panel::TreeItem& parent, int first, int last) override
    {
        note("insert", parent, first, last);
        m_expected = std::ssize(parent.children()) + last - first + 1;
    }
    void wasInserted() override { check(); }
    void aboutToRemove(const panel::TreeItem& parent, int first, int last) override
    {
        note("remove", parent, first, last);
        EXPECT_LT(last, std::ssize(parent.children()));
        m_expected = std::ssize(parent.children()) - (last - first + 1);
    }
    void wasRemoved() override { check(); }
    void itemChanged(const panel::TreeItem& item) override
    {
        told.push_back("item " + item.handle().utf8());
    }
    void expansionChanged(const panel::TreeItem& item) override
    {
        told.push_back((item.isExpanded() ? "open " : "close ") + item.handle().utf8());
    }
    void selectionChanged() override { told.push_back("selection"); }

    std::vector<std::string> take() { return std::exchange(told, {}); }

    std::vector<std::string> told;

private:
    void note(const char* what, const panel::TreeItem& parent, int first, int last)
    {
        m_parent = &parent;
        told.push_back(std::string(what) + " " + parent.handle().utf8() + " " +
                       std::to_string(first) + "-" + std::to_string(last));
    }
    void check() { EXPECT_EQ(std::ssize(m_parent->children()), m_expected) << told.back(); }

    panel::SheetTree& m_tree;
    const panel::TreeItem* m_parent = nullptr;
    std::ptrdiff_t m_expected = 0;
};

/// The tree as its lines would be shown, all open: each level indented by a blank.
inline std::string outlineOf(const panel::SheetTree& tree, panel::TreeItem* item, int depth = 0)
{
    std::string text =
        std::string(static_cast<std::size_t>(depth), ' ') + tree.labelOf(*item).utf8() + "\n";
    for (const auto& child : item->children())
        text += outlineOf(tree, child.get(), depth + 1);
    return text;
}

/// A set in a tree.
class PanelTest : public SessionTest, protected HouseSheets
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        database = made("house.dst");
        change([this](TvSmSheetSet& top) { makeSheets(top); });
        tree.setDatabase(database);
    }
    void TearDown() override
    {
        tree.ClearTree();
        tree.setDatabase(nullptr);
        if (std::ranges::find(GetSessionDatabases(), database) == GetSessionDatabases().end())
            manager().closeDatabase(database);
        SessionTest::TearDown();
    }
    template <class Change>
    void change(Change change)
    {
        ASSERT_TRUE(database->lockDb(database));
        change(*database->getSheetSet());
        ASSERT_TRUE(database->unlockDb(database, true));
    }
    panel::TreeItem* itemOf(const TvSmPersist* object) { return tree.itemOf(handleOf(object)); }
    std::string name(const TvSmPersist* object) { return handleOf(object).utf8(); }
    std::string outline() { return outlineOf(tree, tree.root()); }
    std::vector<TvString> selected()
    {
        std::vector<TvString> labels;
        for (panel::TreeItem* item : tree.GetSelectedItems())
            labels.push_back(tree.labelOf(*item));
        return labels;
    }

    TvSmDatabase* database = nullptr;
    panel::SheetTree tree;
};
