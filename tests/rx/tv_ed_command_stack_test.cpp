#include <rx/tv_ed_command_stack.h>

namespace {

int g_runs = 0;
void run()
{
    ++g_runs;
}
void other() {}

TEST(TvEdCommandStack, FindsACommandByEitherNameWithoutRegardToCase)
{
    TvEdCommandStackImp stack;
    ASSERT_TRUE(stack.addCommand(u"G", u"OPENSHEETSET", u"ÖFFNEN", 0, &run));
    TvEdCommand* command = stack.lookupGlobalCmd(u"OpenSheetSet");
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(stack.lookupLocalCmd(u"öffnen"), command);
    EXPECT_EQ(stack.lookupGlobalCmd(u"ÖFFNEN"), nullptr);
    EXPECT_EQ(stack.lookupLocalCmd(u"OPENSHEETSET"), nullptr);
    EXPECT_EQ(command->groupName(), u"G");
    EXPECT_EQ(command->globalName(), u"OPENSHEETSET");
    EXPECT_EQ(command->localName(), u"ÖFFNEN");
    g_runs = 0;
    command->functionAddr()();
    EXPECT_EQ(g_runs, 1);
}

TEST(TvEdCommandStack, KeepsFlagsAndUserInterfaceContext)
{
    TvEdCommandStackImp stack;
    TvEdCommandStackImp context;
    stack.addCommand(u"G", u"A", u"A", 17, &run, &context);
    EXPECT_EQ(stack.lookupGlobalCmd(u"A")->commandFlags(), 17);
    EXPECT_EQ(stack.lookupGlobalCmd(u"A")->uiContext(), &context);
}

TEST(TvEdCommandStack, AnUnderscoreAsksForTheGlobalName)
{
    TvEdCommandStackImp stack;
    stack.addCommand(u"G", u"LINE", u"LINIE", 0, &run);
    stack.addCommand(u"G", u"ROW", u"LINE", 0, &other);
    EXPECT_EQ(stack.lookupCmd(u"_LINE")->functionAddr(), &run);
    EXPECT_EQ(stack.lookupCmd(u"LINE")->functionAddr(), &other) << "the local name comes first";
    EXPECT_EQ(stack.lookupCmd(u"row")->functionAddr(), &other) << "the global one helps out";
    EXPECT_EQ(stack.lookupCmd(u"_LINIE"), nullptr);
}

TEST(TvEdCommandStack, ADotAsksForTheCommandThatWasThereFirst)
{
    TvEdCommandStackImp stack;
    stack.addCommand(u"G", u"LINE", u"LINIE", 0, &run);
    stack.addCommand(u"H", u"LINE", u"LINIE", 0, &other);
    EXPECT_EQ(stack.lookupCmd(u"LINIE")->functionAddr(), &other);
    for (const TvChar* typed : {u".LINIE", u".line", u"_.LINE", u"._LINE"})
        EXPECT_EQ(stack.lookupCmd(typed)->functionAddr(), &run) << TvString(typed).utf8();
    EXPECT_EQ(stack.lookupCmd(u"_.LINIE"), nullptr);
    for (const TvChar* typed : {u".", u"_.", u"..", u""})
        EXPECT_EQ(stack.lookupCmd(typed), nullptr) << TvString(typed).utf8();
}

TEST(TvEdCommandStack, ALaterGroupShadowsAnEarlierOneUntilItGoes)
{
    TvEdCommandStackImp stack;
    stack.addCommand(u"HOST", u"ARCHIVE", u"ARCHIVE", 0, &run);
    stack.addCommand(u"MODULE", u"ARCHIVE", u"ARCHIVE", 0, &other);
    EXPECT_EQ(stack.lookupGlobalCmd(u"ARCHIVE")->functionAddr(), &other);
    EXPECT_TRUE(stack.removeGroup(u"module"));
    EXPECT_EQ(stack.lookupGlobalCmd(u"ARCHIVE")->functionAddr(), &run);
    EXPECT_FALSE(stack.removeGroup(u"MODULE"));
}

TEST(TvEdCommandStack, RefusesWhatCouldNotBeTypedOrRun)
{
    TvEdCommandStackImp stack;
    EXPECT_FALSE(stack.addCommand(u"", u"A", u"A", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"", u"A", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"A", u"", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"A B", u"A", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"A", u"A\n", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"_A", u"A", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"G", u"A", u"A", 0, nullptr));
    EXPECT_TRUE(stack.commands().empty());
}

TEST(TvEdCommandStack, AGroupHasEachNameOnce)
{
    TvEdCommandStackImp stack;
    ASSERT_TRUE(stack.addCommand(u"G", u"A", u"EINS", 0, &run));
    EXPECT_FALSE(stack.addCommand(u"g", u"a", u"ZWEI", 0, &other));
    EXPECT_FALSE(stack.addCommand(u"G", u"B", u"eins", 0, &other));
    EXPECT_EQ(stack.commands().size(), 1u);
}

TEST(TvEdCommandStack, RemovesOneCommandOfAGroup)
{
    TvEdCommandStackImp stack;
    stack.addCommand(u"G", u"A", u"A", 0, &run);
    stack.addCommand(u"G", u"B", u"B", 0, &run);
    EXPECT_FALSE(stack.removeCmd(u"H", u"A"));
    EXPECT_TRUE(stack.removeCmd(u"g", u"a"));
    EXPECT_FALSE(stack.removeCmd(u"G", u"A"));
    ASSERT_EQ(stack.commands().size(), 1u);
    EXPECT_EQ(stack.commands().front()->globalName(), u"B");
}

TEST(TvEdCommandStack, TellsCommandsInTheOrderTheyCame)
{
    TvEdCommandStackImp stack;
    for (const TvChar* name : {u"SHEETSET", u"ARCHIVE", u"PLACEVIEW"})
        stack.addCommand(u"G", name, name, 0, &run);
    std::vector<TvString> names;
    for (const TvEdCommand* command : stack.commands())
        names.push_back(command->globalName());
    EXPECT_EQ(names, (std::vector<TvString>{u"SHEETSET", u"ARCHIVE", u"PLACEVIEW"}));
}

} // namespace
