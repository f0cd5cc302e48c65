#include <string>

#include <gtest/gtest.h>

#include <base/content_hash.h>

namespace {

std::span<const std::byte> bytesOf(const std::string& text)
{
    return std::as_bytes(std::span(text));
}

TEST(ContentHash, TellsVersionsApart)
{
    EXPECT_EQ(base::hashOf(bytesOf("plan")), base::hashOf(bytesOf("plan")));
    EXPECT_NE(base::hashOf(bytesOf("plan")), base::hashOf(bytesOf("plaN")));
    EXPECT_NE(base::hashOf(bytesOf("plan")), base::hashOf(bytesOf("plan ")));
    EXPECT_NE(base::hashOf(bytesOf("plan")), base::hashOf({}));
}

TEST(ContentHash, IsTheSameOnEveryMachine)
{
    // The value that this hash is defined to have for no bytes at all.
    const base::ContentHash empty = base::hashOf({});
    EXPECT_EQ(empty.low, 0x6001c324468d497fu);
    EXPECT_EQ(empty.high, 0x99aa06d3014798d8u);
}

TEST(ContentHash, DoesNotDependOnThePiecesThatContentComesIn)
{
    const std::string text(100'000, 'x');
    for (const std::size_t piece : {1u, 7u, 4096u, 99'999u, 100'000u}) {
        base::ContentHasher hasher;
        for (std::size_t at = 0; at < text.size(); at += piece)
            hasher.add(bytesOf(text.substr(at, piece)));
        EXPECT_EQ(hasher.result(), base::hashOf(bytesOf(text))) << "pieces of " << piece;
    }
}

TEST(ContentHash, OfNothingAddedIsThatOfNoBytes)
{
    base::ContentHasher hasher;
    hasher.add({});
    EXPECT_EQ(hasher.result(), base::hashOf({}));
}

} // namespace
