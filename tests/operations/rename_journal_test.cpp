// What a rename of many drawings keeps on disk while it runs.

#include <operations/rename_journal.h>

#include <base/edit_lock.h>
#include <base/tv_db_handle.h>
#include <gtest/gtest.h>

namespace {

/// The text with the line at its end that vouches for it.
std::string vouchedFor(const std::string& text)
{
    const base::ContentHash hash = base::hashOf(std::as_bytes(std::span(text)));
    return text + "end\t" + base::hexText(hash.low).utf8() + "\t" +
           base::hexText(hash.high).utf8() + "\n";
}

TEST(RenameJournal, ComesBackAsItWasWrittenAndNothingElseIsOne)
{
    operations::RenameJournal journal;
    journal.token = base::newToken();
    journal.stage = operations::RenameStage::Arriving;
    journal.before = {1, 2};
    journal.drawings.push_back({u"/a/a b%.dwg", u"/a/c\n.dwg", true, {3, 4}});
    journal.sheets.push_back({u"2A", u"", u"1\t", u"\xd800", u"T", 0, u"5E", u"L", u"M"});
    const std::string text = operations::journalText(journal);
    const auto read = operations::parseJournal(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(operations::journalText(*read), text);
    EXPECT_EQ(read->sheets, journal.sheets);
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string damaged = text;
        damaged[i] ^= 1;
        EXPECT_FALSE(operations::parseJournal(damaged)) << i;
        EXPECT_FALSE(operations::parseJournal(text.substr(0, i))) << i;
    }
    journal.sheets[0].drawing = 1;
    EXPECT_FALSE(operations::parseJournal(operations::journalText(journal)));
    journal.sheets[0].drawing = 0;
    journal.drawings[0].newPath = u"/elsewhere/c.dwg";
    EXPECT_FALSE(operations::parseJournal(operations::journalText(journal)))
        << "no drawing leaves its folder";
}

TEST(RenameJournal, WithALineThatMakesNoSenseIsNone)
{
    const std::string first = "kvsheetset-rename 1\n";
    const std::string token = "token\t0123456789abcdef0123456789abcdef\n";
    const std::string rest = "stage\t2\nbefore\t1\t2\n";
    const std::string drawing = "drawing\t/a/b.dwg\t/a/c.dwg\t0\t0\t0\n";
    const std::string sheet = "sheet\t2A\t\t1\tT\tT\t0\t5E\tL\tM\n";
    const std::string good = first + token + rest + drawing + sheet;
    ASSERT_TRUE(operations::parseJournal(vouchedFor(good)));
    EXPECT_TRUE(operations::parseJournal(vouchedFor(first + token)));
    const std::string bad[] = {
        first + rest,                                        // whose hidden files?
        first + "token\t0123456789abcdef0123456789abcde\n",  // one digit short
        first + "token\t../../../../../../../../../../..\n", // no digits
        first + token + "stage\t0\n",                        //
        first + token + "stage\t5\n",                        //
        first + token + "stage\t2x\n",                       //
        good + "stage\t2\t\n",                               // one field more
        good + "before\t1\n",                                // one less
        good + "drawing\tb.dwg\tb.dwg\t0\t0\t0\n",           // anywhere
        good + "drawing\t/a/b.dwg\t/c/b.dwg\t0\t0\t0\n",     // to elsewhere
        good + "other\t2A\t\t1\tT\tT\t0\t5E\tL\tM\n",        //
        good + "sheet\t2A\t\t1\tT\tT\t-2\t5E\tL\tM\n",       // no drawing at all is -1
        good + "sheet\t2A\t\t1\tT\tT\t1\t5E\tL\tM\n",        // there is one only
        good + "sheet\t2A\t\t1\tT\tT\t0\t5E\tL\t%41\n",      // half a unit
        good + "sheet\t2A\t\t1\tT\tT\t0\t5E\tL\t%00G1\n",    //
        good + "sheet\t2A\t\t1\tT\tT\t0\t5E\tL\n",           //
        good.substr(good.find('\n') + 1),                    // of something else
    };
    for (const std::string& text : bad)
        EXPECT_FALSE(operations::parseJournal(vouchedFor(text))) << text;
}

} // namespace
