#include "druckwerk/common/message_filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using ::testing::Optional;
using ::testing::StrEq;

std::string tooWide(int number) {
    return "Zeile 4, Ebene „Übertrag“: Zahl „" + std::to_string(number) + "“ passt nicht in das Feld";
}

TEST(MessageFilter, TellsEachMessageOnce) {
    MessageFilter filter;
    EXPECT_THAT(filter.pass("Bild fehlt"), Optional(StrEq("Bild fehlt")));
    EXPECT_EQ(filter.pass("Bild fehlt"), std::nullopt);
    EXPECT_THAT(filter.pass("Bild ist zu groß"), Optional(StrEq("Bild ist zu groß")));
}

TEST(MessageFilter, TellsTheFirstTenOfAKindAndThatThereAreMore) {
    MessageFilter filter;
    for (int i = 1; i <= 10; ++i) {
        EXPECT_THAT(filter.pass(tooWide(i)), Optional(tooWide(i)));
        EXPECT_EQ(filter.pass(tooWide(i)), std::nullopt);
    }
    EXPECT_THAT(filter.pass(tooWide(11)),
                Optional(tooWide(11) + "; weitere Hinweise dieser Art werden nicht gezeigt"));
    for (int i = 1; i <= 1000; ++i)
        EXPECT_EQ(filter.pass(tooWide(i)), std::nullopt);
    EXPECT_THAT(filter.pass("Zeile 5, Ebene „Übertrag“: Zahl „1“ passt nicht in das Feld"),
                Optional(::testing::HasSubstr("Zeile 5")))
        << "another place is another kind";
}

TEST(MessageFilter, FiguresMakeNoOtherKindButLinesOfALayoutDo) {
    MessageFilter filter;
    int told = 0;
    for (int i = 0; i < 100; ++i)
        told += filter.pass("Zeile 7: Werte von 0,5 bis " + std::to_string(i) + " liegen nicht alle in data-scale")
                    .has_value();
    EXPECT_EQ(told, 11);
    for (int i = 0; i < 100; ++i)
        EXPECT_NE(filter.pass("Zeile " + std::to_string(i) + ": Pfad ist beschädigt"), std::nullopt);
    EXPECT_NE(filter.pass("“ schließt, was nie begann „"), std::nullopt);
}

} // namespace
} // namespace kvtdruck::druckwerk
