#include "commandline/FollowedText.h"

namespace quillmar {
namespace {

TEST(FollowedTextTest, whatAReaderMissesHasAWordInItsPlaceAndAReaderWhoNeverReadsCostsOneMebibyte) {
    FollowedText text("missed\n");
    std::string read;
    const auto takes = [&](std::size_t bytes) {
        read += text.waiting().substr(0, bytes);
        text.remove(bytes);
    };
    const std::string line = std::string(1023, 'x') + "\n";
    for (int i = 0; i < 100000; ++i) text.add(line);
    EXPECT_EQ(text.waiting().size(), FollowedText::maximumBytes + 7);
    takes(line.size());
    text.add("too early\n");
    takes(FollowedText::maximumBytes / 2);
    text.add("again\n");
    takes(text.waiting().size());
    EXPECT_EQ(read.size(), FollowedText::maximumBytes + 7 + 6);
    EXPECT_TRUE(read.ends_with("x\nmissed\nagain\n"));
}

}  // namespace
}  // namespace quillmar
