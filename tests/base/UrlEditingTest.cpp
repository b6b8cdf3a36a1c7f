#include "base/UrlEditing.h"

using namespace testing;

namespace quillmar {
namespace {

Url url(std::string_view text) { return *Url::parse(text); }

TEST(UrlEditingTest, queryItemsStandBehindTheOthersAndOnlyTheirOwnTextComesOutAgain) {
    const std::vector<QueryItem> items = {{"q", "a b&c=d+e%"}, {"ratios", "16x9,4x3"}, {"empty", ""}};
    const std::string query = "q=a%20b%26c%3Dd%2Be%25&ratios=16x9,4x3&empty=";
    EXPECT_EQ(appendingQueryItems(url("https://h/p"), items).string(), "https://h/p?" + query);
    EXPECT_EQ(appendingQueryItems(url("https://h/p?x=1#f"), items).string(),
              "https://h/p?x=1&" + query + "#f");
    EXPECT_EQ(appendingQueryItems(url("https://h/p?"), items).string(), "https://h/p?" + query);
    EXPECT_EQ(appendingQueryItems(url("https://h/p"), {}).string(), "https://h/p");
    EXPECT_EQ(appendingQueryItems(url("https://h"), {{"n", "Ã© 日"}}).string(),
              "https://h?n=%C3%83%C2%A9%20%E6%97%A5");
}

TEST(UrlEditingTest, aPathIsPutBehindTheOneThatIsThere) {
    EXPECT_EQ(appendingPath(url("https://h"), "/a/b").string(), "https://h/a/b");
    EXPECT_EQ(appendingPath(url("https://h/x/"), "a").string(), "https://h/x/a");
    EXPECT_EQ(appendingPath(url("https://h/x?q=1"), "a").string(), "https://h/x/a?q=1");
    EXPECT_EQ(escapedPathComponent("a b/../c?d#e"), "a%20b%2F..%2Fc%3Fd%23e");
}

TEST(UrlEditingTest, referencesAreResolvedAsInADocument) {
    const Url base = url("https://www.bing.com/a/b?c");
    EXPECT_EQ(resolvedReference(base, "/th?id=X&a=b")->string(), "https://www.bing.com/th?id=X&a=b");
    EXPECT_EQ(resolvedReference(base, "//cdn.example/p")->string(), "https://cdn.example/p");
    EXPECT_EQ(resolvedReference(base, "http://other/p")->string(), "http://other/p");
    EXPECT_EQ(resolvedReference(base, ""), std::nullopt);
    EXPECT_EQ(resolvedReference(base, "a b"), std::nullopt);
}

TEST(UrlEditingTest, anAuthorityReplacesSchemeHostAndPortAlone) {
    EXPECT_EQ(withAuthorityOf(url("https://id.example/200?x#f"), url("http://127.0.0.1:8080/r")).string(),
              "http://127.0.0.1:8080/200?x#f");
    EXPECT_EQ(withAuthorityOf(url("https://id.example"), url("https://data.example")).string(),
              "https://data.example/");
    EXPECT_EQ(withAuthorityOf(url("200"), url("https://data.example")).string(), "https://data.example/200");
}

TEST(UrlEditingTest, aPathExtensionIsThatOfTheLastComponentInLowerCase) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"https://h/a.JPG?x=b.png", "jpg"},
        {"https://h/a.tar.gz", "gz"},
        {"https://h.com", ""},
        {"https://h/a.b/c", ""},
        {"https://h/.hidden", ""},
        {"https://h/a.", ""},
    };
    for (const auto& [text, extension] : rows) EXPECT_EQ(pathExtension(url(text)), extension) << text;
}

}  // namespace
}  // namespace quillmar
