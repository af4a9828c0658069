// Lengths of described texts.
#include "ValueSupport.h"

using value_test::thrown;

namespace {

kel::checked note() {
    return kel::checked(
        {{"title", kel::describe<std::string>().longest(3).not_empty().fallback("new")},
         {"text", kel::describe<std::string>().longest(3)},
         {"name", kel::describe<std::string>().not_empty()},
         {"letter", kel::describe<std::string>().longest(1).not_empty()}});
}

TEST(TextLength, IsSaidInWordsAndByTheDescription) {
    const kel::checked fields = note();
    EXPECT_EQ(fields.allowed_text("title"), "any text of 1 to 3 characters");
    EXPECT_EQ(fields.allowed_text("text"), "any text of at most 3 characters");
    EXPECT_EQ(fields.allowed_text("name"), "any text that is not empty");
    EXPECT_EQ(fields.allowed_text("letter"), "any text of 1 character");
    EXPECT_EQ(fields.description("title").longest(), 3);
    EXPECT_EQ(fields.description("name").longest(), std::nullopt);
    EXPECT_FALSE(fields.description("title").allows_empty());
    EXPECT_TRUE(fields.description("text").allows_empty());
}

TEST(TextLength, IsCheckedWhereverAValueEnters) {
    kel::checked fields = note();
    const std::string too_long = ": a text of 4 characters is not allowed; allowed is ";
    EXPECT_EQ(fields.try_set("title", "long").message(),
              "title" + too_long + "any text of 1 to 3 characters.");
    EXPECT_EQ(fields.try_set_text("text", "long").message(),
              "text" + too_long + "any text of at most 3 characters.");
    EXPECT_EQ(thrown<kel::not_allowed>([&] { fields["name"] = ""; }),
              "name: an empty text is not allowed; allowed is any text that is not empty.");
    EXPECT_EQ(fields.merge(kel::object({{"text", "long"}})).at(0).message,
              "text" + too_long + "any text of at most 3 characters.");
    fields.set("name", " ");
    EXPECT_EQ(thrown<kel::not_allowed>([&] { fields["name"].assign(""); }),
              "name: an empty text is not allowed; allowed is any text that is not empty.");
    EXPECT_EQ(fields.stored_values(), kel::object({{"name", " "}}));
    EXPECT_TRUE(fields.try_set_text("text", ""));
}

TEST(TextLength, CountsCharactersOfUtf8) {
    kel::checked fields = note();
    const auto fits = [&](const char* text) { return bool(fields.try_set("text", text)); };
    EXPECT_TRUE(fits("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80")) << "two, three and four bytes";
    EXPECT_FALSE(fits("\xC3\xA4\xC3\xA4\xC3\xA4."));
    EXPECT_TRUE(fits("\x80\x80\x80"));
    EXPECT_FALSE(fits("\x80\x80\x80\x80")) << "bytes without a character count";
    EXPECT_TRUE(fits("\xF0\x9F\x98")) << "a character that is cut off";
    EXPECT_FALSE(fits("\xF0\x9F\x98.")) << "and what follows it";
    EXPECT_FALSE(fits("\xFF\xC0\x80."));
}

TEST(TextLength, ADescriptionWithoutSenseIsRefused) {
    const auto text = kel::describe<std::string>();
    EXPECT_EQ(thrown<kel::error>([&] { (void)text.longest(0); }),
              "The longest text has at least one character.");
    const std::string both = "A description has either a length or choices.";
    EXPECT_EQ(thrown<kel::error>([&] { (void)text.longest(2).one_of({"a"}); }), both);
    EXPECT_EQ(thrown<kel::error>([&] { (void)text.one_of({"a"}).not_empty(); }), both);
    EXPECT_EQ(thrown<kel::not_allowed>([&] {
                  kel::checked({{"name", text.not_empty().fallback("")}});
              }),
              "The default of name: an empty text is not allowed; allowed is any text that is not "
              "empty.");
}

} // namespace
