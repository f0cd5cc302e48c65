#include <set>

#include <cli/lock_words.h>
#include <cli/shell_word.h>
#include <cli/words.h>
#include <db/drawing_audit.h>
#include <resources/texts.h>
#include <sm/audit.h>

#include "tool_scene.h"

namespace {

struct Row {
    const char* name;
    int number;
};
constexpr Row kRows[] = {
#define KV_ROW(name, number) {#name, number},
    KV_TOOL_WORDS(KV_ROW)
#undef KV_ROW
};

TEST(Words, EachHasAText)
{
    for (const Row& row : kRows)
        EXPECT_NE(text::find(row.number), nullptr) << row.name;
}

TEST(Words, NumbersAscendSoThatNoneStandsTwice)
{
    int last = 21999;
    for (const Row& row : kRows) {
        EXPECT_GT(row.number, last) << row.name;
        last = row.number;
    }
    EXPECT_LT(last, 25000);
}

TEST(Words, EachTextOfTheToolIsUsed)
{
    std::set<int> used;
    for (const Row& row : kRows)
        used.insert(row.number);
    for (int at = 0; at < text::count(); ++at) {
        const int number = text::numberAt(at);
        const bool isFinding = number > 22500 && number < 22700;
        const bool isTools =
            ((number >= 22000 && number < 23000) || (number >= 24000 && number < 25000)) &&
            !isFinding;
        EXPECT_TRUE(!isTools || used.count(number)) << number;
    }
}

TEST(LockWords, EachStateHasItsNameAndItsSentence)
{
    using base::LockState;
    const std::pair<LockState, const char*> names[] = {{LockState::Free, "free"},
                                                       {LockState::HeldByMe, "heldByMe"},
                                                       {LockState::HeldSameHost, "heldSameHost"},
                                                       {LockState::HeldOtherHost, "heldOtherHost"},
                                                       {LockState::Abandoned, "abandoned"},
                                                       {LockState::Lost, "lost"},
                                                       {LockState::Denied, "denied"},
                                                       {LockState::Unsupported, "unsupported"},
                                                       {LockState::Unreachable, "unreachable"}};
    std::set<TvString> sentences;
    for (const auto& [state, name] : names) {
        EXPECT_EQ(cli::lockStateName(state), name);
        sentences.insert(cli::lockStateWords(state));
    }
    EXPECT_EQ(sentences.size(), std::size(names));
}

TEST(LockWords, ATimeThatNobodyKnowsIsLeftOut)
{
    EXPECT_EQ(cli::utcText(0), TvString());
    EXPECT_EQ(cli::utcText(-1'000'000'000), TvString());
    EXPECT_EQ(cli::utcText(951'782'400'000'000'000), TvString(u"2000-02-29T00:00:00Z"));
}

TEST(Words, EachFindingHasAText)
{
    for (int number = static_cast<int>(sm::AuditRule::HandlesUsedUp);
         number <= static_cast<int>(sm::AuditRule::NewerVersion); ++number)
        EXPECT_NE(text::find(number), nullptr) << number;
    for (int number = static_cast<int>(db::DrawingRule::FileWrong);
         number <= static_cast<int>(db::DrawingRule::SheetDataLayoutGone); ++number)
        EXPECT_NE(text::find(number), nullptr) << number;
}

TEST(ShellWord, IsQuotedWhereAShellWouldReadMoreThanAName)
{
    const std::pair<const char16_t*, const char16_t*> names[] = {
        {u"plan.dwg", u"plan.dwg"},
        {u"a/b-c_1.dwg", u"a/b-c_1.dwg"},
        {u"Größe.dwg", u"Größe.dwg"},
        {u"two words", u"'two words'"},
        {u"a$b", u"'a$b'"},
        {u"a`b`", u"'a`b`'"},
        {u"say \"hi\"", u"'say \"hi\"'"},
        {u"it's", u"'it'\\''s'"},
        {u"-n.dwg", u"./-n.dwg"},
        {u"-n x", u"'./-n x'"},
        {u"~me", u"'~me'"},
        {u"", u"''"},
    };
    for (const auto& [name, word] : names)
        EXPECT_EQ(cli::shellWord(name), TvString(word));
}

TEST(VerbNew, TellsTheNextCommandSoThatAShellTakesIt)
{
    const TempFolder folder;
    const std::string file = (folder.path() / "my house").string();
    const Said said = runLine({"new", file});
    EXPECT_EQ(said.code, cli::ExitCode::Ok);
    EXPECT_NE(said.err.find("'" + file + ".dst'"), std::string::npos) << said.err;
}

} // namespace
