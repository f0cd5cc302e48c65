// What the host asks of the module between its start and its end.

#include "panel_scene.h"

namespace {

class InternalInterface : public PanelScene
{
protected:
    /// A set with one sheet on the layout that is shown.
    TvSmDatabase* setWithSheet(const char* name)
    {
        TvSmDatabase* database = made(name);
        EXPECT_TRUE(database->lockDb(database));
        setLayout(addSheet(database->getSheetSet(), u"1", u"Plan"), folder.file("plan.dwg"), u"22",
                  u"Layout1");
        EXPECT_TRUE(database->unlockDb(database, true));
        return database;
    }
    struct Layout : sm::CurrentLayoutProvider {
        bool currentLayout(TvDbDatabase*&, TvString& drawing, TvDbHandle& layout) override
        {
            drawing = path;
            layout = TvDbHandle(0x22);
            return true;
        }
        TvString path;
    };
};

TEST_F(InternalInterface, OfSeveralSetsWithTheCurrentLayoutTheFirstIsTold)
{
    Layout layout;
    layout.path = folder.file("plan.dwg");
    folder.write("plan.dwg", "x");
    TvSmDatabase* first = setWithSheet("z.dst");
    TvSmDatabase* second = setWithSheet("a.dst");
    sm::CurrentLayoutProvider* former = std::exchange(sm::environment().layout, &layout);
    TvString file;
    tarvGetSheetSetInternal()->GetCurrentLayoutSheetSetFile(file);
    EXPECT_EQ(file, folder.file("z.dst"));
    manager.closeDatabase(first);
    tarvGetSheetSetInternal()->GetCurrentLayoutSheetSetFile(file);
    EXPECT_EQ(file, folder.file("a.dst"));
    sm::environment().layout = former;
    manager.closeDatabase(second);
}

} // namespace
