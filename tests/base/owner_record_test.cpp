#include <base/edit_lock.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using namespace base;

namespace {

constexpr char kToken[] = "0123456789abcdef0123456789abcdef";

LockOwner someOwner()
{
    LockOwner owner;
    owner.token = kToken;
    owner.user = "anna";
    owner.host = "drawing-room";
    owner.machineId = "3d1219c7c4c5404aaa1f6d2a48adfda4";
    owner.bootId = "9c1cbdca-3d4a-4b56-8a3c-0b2f0d6c9c11";
    owner.pid = 4711;
    owner.program = "tarvik";
    owner.sinceNs = 1'700'000'000'123'456'789;
    owner.purpose = "renumber sheets";
    return owner;
}

std::string withLine(const std::string& line)
{
    return "version=1\ntoken=" + std::string(kToken) + "\n" + line + "\n";
}

void expectEqual(const LockOwner& a, const LockOwner& b)
{
    EXPECT_EQ(a.token, b.token);
    EXPECT_EQ(a.user, b.user);
    EXPECT_EQ(a.host, b.host);
    EXPECT_EQ(a.machineId, b.machineId);
    EXPECT_EQ(a.bootId, b.bootId);
    EXPECT_EQ(a.pid, b.pid);
    EXPECT_EQ(a.program, b.program);
    EXPECT_EQ(a.sinceNs, b.sinceNs);
    EXPECT_EQ(a.purpose, b.purpose);
}

} // namespace

TEST(OwnerRecord, ReadsWhatItWrote)
{
    const std::string text = ownerRecordText(someOwner());

    EXPECT_EQ(text.size(), kOwnerRecordSize);
    const auto read = parseOwnerRecord(text);
    ASSERT_TRUE(read);
    expectEqual(*read, someOwner());
}

TEST(OwnerRecord, IsReadableLinesForPeople)
{
    const std::string text = ownerRecordText(someOwner());

    EXPECT_EQ(text.substr(0, text.find('\0')), "version=1\n"
                                               "token=0123456789abcdef0123456789abcdef\n"
                                               "user=anna\n"
                                               "host=drawing-room\n"
                                               "machine=3d1219c7c4c5404aaa1f6d2a48adfda4\n"
                                               "boot=9c1cbdca-3d4a-4b56-8a3c-0b2f0d6c9c11\n"
                                               "program=tarvik\n"
                                               "purpose=renumber sheets\n"
                                               "pid=4711\n"
                                               "since=1700000000123456789\n");
}

TEST(OwnerRecord, KeepsControlCharactersInsideTheirValue)
{
    LockOwner owner = someOwner();
    owner.user = TvString(u"an\nna\ntoken=ff\x1b[2J\\x41\u007f");

    const std::string text = ownerRecordText(owner);

    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    ASSERT_TRUE(parseOwnerRecord(text));
    EXPECT_EQ(parseOwnerRecord(text)->user, owner.user);
    EXPECT_EQ(parseOwnerRecord(text)->token, kToken);
}

TEST(OwnerRecord, CutsLongValuesAtACharacter)
{
    LockOwner owner = someOwner();
    std::u16string longText;
    for (int i = 0; i < 500; ++i)
        longText += u"\u20ac\U0001F4D0"; // 3 and 4 bytes of UTF-8
    owner.user = owner.host = owner.program = owner.purpose = TvString(longText);

    const std::string text = ownerRecordText(owner);

    EXPECT_EQ(text.size(), kOwnerRecordSize);
    EXPECT_EQ(text.back(), '\0');
    const auto read = parseOwnerRecord(text);
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->purpose.isEmpty());
    EXPECT_TRUE(owner.purpose.startsWith(read->purpose));
    EXPECT_EQ(read->sinceNs, owner.sinceNs); // what comes last is there too
}

TEST(OwnerRecord, RefusesWhatIsNone)
{
    const std::string bad[] = {
        "",
        "version=1\n",
        "token=0123456789abcdef0123456789abcdef\n",
        "version=0\ntoken=0123456789abcdef0123456789abcdef\n",
        "version=x\ntoken=0123456789abcdef0123456789abcdef\n",
        "version=1\ntoken=0123456789abcdef\n",
        "version=1\ntoken=0123456789ABCDEF0123456789ABCDEF\n",
        "version=1\ntoken=0123456789abcdef0123456789abcde/\n",
        "version=1\ntoken=0123456789abcdef0123456789abcdef", // torn
        std::string(kOwnerRecordSize, '\0'),                 // released
        std::string(10'000'000, 'x'),
        std::string(10'000'000, '\n'),
        std::string(600, '=') + withLine(""),
        "\x7f"
        "ELF\x02\x01\x01",
    };
    for (const std::string& bytes : bad)
        EXPECT_FALSE(parseOwnerRecord(bytes)) << bytes.substr(0, 60);
}

TEST(OwnerRecord, LooksNoFurtherThanItsLength)
{
    std::string bytes = withLine("user=anna");
    bytes += std::string(10'000'000, 'x') + "\nhost=far\n";

    const auto read = parseOwnerRecord(bytes);

    ASSERT_TRUE(read);
    EXPECT_EQ(read->user, TvString("anna"));
    EXPECT_TRUE(read->host.isEmpty());
}

TEST(OwnerRecord, TakesNumbersOutOfRangeAsUnknown)
{
    for (const char* pid : {"-1", "0", "9223372036854775808", "4294967296", "1e3", " 7", "7 ", "",
                            "99999999999999999999999999"})
        EXPECT_EQ(parseOwnerRecord(withLine(std::string("pid=") + pid))->pid, 0) << pid;
    EXPECT_EQ(parseOwnerRecord(withLine("pid=1"))->pid, 1);
    // The year 9999 does not fit 64 bits of nanoseconds.
    EXPECT_EQ(parseOwnerRecord(withLine("since=253370764800000000000"))->sinceNs, 0);
    EXPECT_EQ(parseOwnerRecord(withLine("since=-5"))->sinceNs, 0);
    EXPECT_EQ(parseOwnerRecord(withLine("since=9223372036854775807"))->sinceNs, INT64_MAX);
}

TEST(OwnerRecord, KeepsEscapesThatAreNoneAsTheyStand)
{
    EXPECT_EQ(parseOwnerRecord(withLine("user=a\\"))->user, TvString("a\\"));
    EXPECT_EQ(parseOwnerRecord(withLine("user=a\\x"))->user, TvString("a\\x"));
    EXPECT_EQ(parseOwnerRecord(withLine("user=a\\xg0"))->user, TvString("a\\xg0"));
    EXPECT_EQ(parseOwnerRecord(withLine("user=a\\x4"))->user, TvString("a\\x4"));
    EXPECT_EQ(parseOwnerRecord(withLine("user=a\\x41"))->user, TvString("aA"));
}

TEST(OwnerRecord, PassesOverWhatItDoesNotKnow)
{
    const auto read =
        parseOwnerRecord("version=7\ncolour=red\n\n=\n=x\nuser\ntoken=" + std::string(kToken) +
                         "\nuser=anna\nuser=eve\n");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->user, TvString("anna"));
}

TEST(OwnerRecord, MakesAnotherTokenEachTime)
{
    const std::string token = newToken();

    EXPECT_EQ(token.size(), 32u);
    EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(newToken(), token);
}

RC_GTEST_PROP(OwnerRecord, SurvivesAnyBytes, (const std::string& bytes))
{
    const auto read = parseOwnerRecord("version=1\ntoken=" + std::string(kToken) + "\n" + bytes);
    RC_ASSERT(read.has_value());
    RC_ASSERT(read->pid >= 0);
    RC_ASSERT(read->sinceNs >= 0);
}

RC_GTEST_PROP(OwnerRecord, GivesShortTextsBackWhole, (const std::string& raw))
{
    LockOwner owner = someOwner();
    std::string text = raw.substr(0, 20); // escaped, each byte takes four at most
    owner.purpose = TvString(std::string_view(text));
    owner.purpose = owner.purpose.left(16);
    const auto read = parseOwnerRecord(ownerRecordText(owner));
    RC_ASSERT(read.has_value());
    RC_ASSERT(read->purpose == TvString(std::string_view(owner.purpose.utf8())));
}
