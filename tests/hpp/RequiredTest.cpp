// Variables that a document must have.
#include <kel/kel.hpp>

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

Lines markedMessages(const std::vector<kel::mismatch>& found) {
    Lines lines;
    for (const kel::mismatch& each : found) {
        lines.push_back((each.is_missing ? "- " : "+ ") + each.message);
    }
    return lines;
}

kel::checked makeArticle() {
    return kel::checked({{"price", kel::describe<double>().range(0, 100).required()},
                         {"count", kel::describe<int>().fallback(1).required()},
                         {"name", kel::describe<std::string>()}});
}

TEST(Required, ADocumentThatLacksAVariableIsReported) {
    kel::checked part = makeArticle();
    EXPECT_EQ(markedMessages(part.merge(kel::object())),
              (Lines{"- count: is missing.", "- price: is missing."}));
    EXPECT_EQ(markedMessages(part.merge(kel::object({{"price", 3}, {"count", 2}}))), Lines());
    EXPECT_EQ(markedMessages(part.merge(kel::object({{"count", 2}, {"colour", 2}}))),
              (Lines{"+ colour: no such variable.", "- price: is missing."}))
        << "although the part has a price";
    EXPECT_EQ(part.get<double>("price"), 3.0);
    EXPECT_EQ(part.merge(kel::object({{"count", 2}}), kel::missing::reset).at(0).path, "price");
    EXPECT_TRUE(part.is_default("price"));
}

TEST(Required, ARefusedValueIsNotMissing) {
    kel::checked part = makeArticle();
    EXPECT_EQ(markedMessages(part.merge(kel::object({{"price", 300}, {"count", nullptr}}))),
              (Lines{"+ count: wanted an int, found null.",
                     "+ price: 300 is not allowed; allowed is from 0 to 100."}));
}

TEST(Required, ADefaultRemainsInEffectInTheProgram) {
    kel::checked part = makeArticle();
    EXPECT_EQ(part.get<int>("count"), 1);
    EXPECT_EQ(markedMessages(kel::checked(makeArticle()).merge(part)),
              (Lines{"- price: is missing."}))
        << "a checked document has its defaults";
    EXPECT_THROW((void)part.get<double>("price"), kel::not_found);
}

TEST(Required, StructsThatADocumentLacksAreReportedWithTheirPath) {
    kel::value stock =
        kel::object({{"parts", kel::object({{"odd one", makeArticle()}, {"other", makeArticle()}})},
                     {"size", 1}});
    const kel::value whole = kel::object({{"price", 3}, {"count", 2}});
    const Lines missing = {"- parts[\"odd one\"].count: is missing.",
                           "- parts[\"odd one\"].price: is missing."};
    EXPECT_EQ(
        markedMessages(stock.merge(kel::object({{"parts", kel::object({{"other", whole}})}}))),
        missing);
    stock["parts"]["other"] = kel::object();
    EXPECT_EQ(markedMessages(stock.merge(kel::object({{"size", 2}}))), missing);
    EXPECT_EQ(markedMessages(stock.merge(kel::object({{"size", 2}}), kel::missing::reset)),
              missing);
}

TEST(Required, TheDescriptionSaysSo) {
    const auto price = kel::describe<double>();
    EXPECT_FALSE(price.is_required());
    EXPECT_TRUE(price.required().is_required());
    EXPECT_FALSE(price.required().required(false).is_required());
    EXPECT_FALSE(price.is_required()) << "a changed copy";
    const kel::checked part = makeArticle();
    EXPECT_TRUE(part.description("price").is_required());
    const kel::checked read(kel::from_text(kel::to_text(part)));
    EXPECT_TRUE(read.description("price").is_required()) << "text keeps it";
    EXPECT_FALSE(read.description("name").is_required());
}

} // namespace
