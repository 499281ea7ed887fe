#include "druckwerk/common/fault.h"
#include "druckwerk/expression/text_template.h"
#include "values/conversion.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

class ExpressionTest : public ::testing::Test {
  protected:
    void define(const char* name, const char* value, bool numeric = true) {
        definitions.define(fromUtf8(name), fromUtf8(value), numeric, true);
    }
    Scene scene() const { return {definitions, totals, Moment::Now, 3, 12, 2, dateOf(2024, 3, 9, 14, 5)}; }
    double value(const char* source, AggregateScope scope = kTableScope) {
        return Expression(fromUtf8(source), definitions, &aggregates, scope).evaluate(scene());
    }
    double valueOf(const Expression& expression) { return expression.evaluate(scene()); }
    std::string refusal(const std::string& source) {
        try {
            const Expression expression(fromUtf8(source), definitions, &aggregates, kTableScope);
        } catch (const Fault& fault) {
            EXPECT_EQ(fault.code(), kLayoutInvalid);
            return fault.what();
        }
        return "";
    }
    std::string filled(const char* source) {
        String out;
        TextTemplate(fromUtf8(source), definitions, aggregates, kTableScope).append(scene(), out);
        return toUtf8(out);
    }

    std::vector<std::string> warnings;
    Definitions definitions{
        Contents(germanLocale(), [this](StringView, const std::string& message) { warnings.push_back(message); })};
    Aggregates aggregates;
    Totals totals{aggregates};
};

TEST_F(ExpressionTest, Computes) {
    define("Gewinn", "120,5");
    define("EK", "1000");
    EXPECT_DOUBLE_EQ(value("Gewinn/EK*100"), 12.05);
    EXPECT_DOUBLE_EQ(value("2+3*4^2"), 50);
    EXPECT_DOUBLE_EQ(value("-(2+3)"), -5);
    EXPECT_DOUBLE_EQ(value("0,5+0.5"), 1);
    EXPECT_DOUBLE_EQ(value("17 % 5"), 2);
}

TEST_F(ExpressionTest, ComparesAndCombines) {
    define("Seitenwechsel", "2");
    EXPECT_EQ(value("Seitenwechsel = 2"), 1);
    EXPECT_EQ(value("Seitenwechsel <> 2"), 0);
    EXPECT_EQ(value("Seitenwechsel >= 2 und Seitenwechsel < 3"), 1);
    EXPECT_EQ(value("Seitenwechsel = 1 oder Seitenwechsel = 2"), 1);
    EXPECT_EQ(value("nicht Seitenwechsel = 1"), 1);
    EXPECT_EQ(value("nicht (Seitenwechsel = 2)"), 0);
    EXPECT_EQ(value("Seitenwechsel % 2 = 0 und Seitenwechsel <> 13"), 1);
}

TEST_F(ExpressionTest, CombinesByBothSides) {
    EXPECT_EQ(value("1=1 und 1=0"), 0);
    EXPECT_EQ(value("1=0 und 1=1"), 0);
    EXPECT_EQ(value("1=0 oder 0=1"), 0);
    EXPECT_EQ(value("3 >= 4"), 0);
    EXPECT_EQ(value("4 <= 3"), 0);
    EXPECT_DOUBLE_EQ(value("wenn(1=0; 10; 20)"), 20);
    EXPECT_DOUBLE_EQ(value("+5 - -2"), 7);
    EXPECT_DOUBLE_EQ(value("+-+5"), -5);
    EXPECT_DOUBLE_EQ(value(",5 + .25"), 0.75);
    EXPECT_DOUBLE_EQ(value("1234.567 + .123 + 0.125"), 1234.815) << "no thousands are meant";
    EXPECT_DOUBLE_EQ(value("max(wenn(1=1; 4; 5); 3)"), 4);
    EXPECT_DOUBLE_EQ(value("min(wenn('a;b' = \")\"; 4; 5); 6)"), 5) << "texts separate nothing";
}

TEST_F(ExpressionTest, ComparesTexts) {
    define("Art", "Müller & Söhne", false);
    define("Leer", "  ", false);
    EXPECT_EQ(value("Art = \"Müller & Söhne\""), 1);
    EXPECT_EQ(value("Art<>'Müller & Söhne'"), 0);
    EXPECT_EQ(value("'x' <> Art"), 1);
    EXPECT_EQ(value("nicht Art = \"x\""), 1);
    EXPECT_EQ(value("leer(Leer)"), 1);
    EXPECT_EQ(value("leer( Art )"), 0);
    EXPECT_EQ(value("leer(Unbekannt)"), 1);
}

TEST_F(ExpressionTest, KnowsFunctionsAndUmlauts) {
    define("Übergröße", "3");
    EXPECT_DOUBLE_EQ(value("wenn(Übergröße > 2; 10; 20)"), 10);
    EXPECT_DOUBLE_EQ(value("min(4; Übergröße; 5)"), 3);
    EXPECT_DOUBLE_EQ(value("max(1;2)"), 2);
    EXPECT_DOUBLE_EQ(value("abs(-Übergröße)"), 3);
    EXPECT_DOUBLE_EQ(value("runden(1,005; 2)"), 1.01);
    EXPECT_DOUBLE_EQ(value("runden(-2,5; 0)"), -3);
}

TEST_F(ExpressionTest, KnowsWhereItIs) {
    EXPECT_EQ(value("Seite"), 3);
    EXPECT_EQ(value("Zeilennummer"), 12);
    EXPECT_EQ(value("Seitenzeile % 2 = 0"), 1);
}

TEST_F(ExpressionTest, WhatIsNoNumberCountsAsZero) {
    define("Text", "abc", false);
    define("NichtZahl", "-1,#IND");
    EXPECT_EQ(value("Text + 1"), 1);
    EXPECT_EQ(value("NichtZahl + 1"), 1);
    EXPECT_EQ(value("Unbekannt"), 0);
}

TEST_F(ExpressionTest, OperatorsBindAsInASpreadsheet) {
    EXPECT_DOUBLE_EQ(value("-2^2"), -4);
    EXPECT_DOUBLE_EQ(value("2^3^2"), 512);
    EXPECT_DOUBLE_EQ(value("2^-1"), 0.5);
    EXPECT_DOUBLE_EQ(value("10-4-3"), 3);
    EXPECT_DOUBLE_EQ(value("24/4/2*3"), 9);
    EXPECT_EQ(value("1+1=2 und 3>2 oder 1=0"), 1);
    EXPECT_EQ(value("nicht nicht 5"), 1);
    EXPECT_EQ(value("1=1 oder 1/0=1 und 0=1"), 1);
}

TEST_F(ExpressionTest, OnlyTheChosenBranchIsEvaluated) {
    define("A", "0");
    EXPECT_DOUBLE_EQ(value("wenn(A=0; 7; 1/A)"), 7);
    EXPECT_FALSE(std::isfinite(value("1/A")));
}

TEST_F(ExpressionTest, TwoNamesAreEqualAsNumbersOrAsTexts) {
    define("A", "2");
    define("B", "2,0");
    define("Ort", "Jena", false);
    define("Land", "Thüringen", false);
    EXPECT_EQ(value("A = B"), 1);
    EXPECT_EQ(value("Ort = Land"), 0);
    EXPECT_EQ(value("Ort <> Land"), 1);
    EXPECT_EQ(value("Ort = Ort"), 1);
    EXPECT_EQ(value("A = Ort"), 0);
    EXPECT_EQ(value("Ort = A"), 0);
}

TEST_F(ExpressionTest, GivesTexts) {
    define("KtoBetrArt", "0");
    define("Vorname", "Eva", false);
    define("Name", "Groß", false);
    EXPECT_EQ(filled("{{=wenn(KtoBetrArt=0;'Kosten';'Ertrag')}}"), "Kosten");
    EXPECT_EQ(filled("{{=wenn(KtoBetrArt=1;'Kosten';\"Ertrag\")}} "), "Ertrag ");
    EXPECT_EQ(filled("{{=Vorname & ' ' & Name}}"), "Eva Groß");
    EXPECT_EQ(filled("{{=wenn(Name='Groß'; Name; '–')}}"), "Groß");
    EXPECT_EQ(value("wenn(KtoBetrArt=0;'Kosten';'Ertrag') = 'Kosten'"), 1);
    EXPECT_EQ(value("Vorname & Name = 'EvaGroß'"), 1);
}

TEST_F(ExpressionTest, RefusesTextsWhereNumbersBelong) {
    EXPECT_NE(refusal("'Kosten'").find("hier wird eine Zahl oder ein Vergleich gebraucht"), std::string::npos);
    EXPECT_NE(refusal("'a' + 1").find("mit einem Text kann nicht gerechnet werden"), std::string::npos);
    EXPECT_NE(refusal("wenn('a'; 1; 2)").find("mit einem Text"), std::string::npos);
    EXPECT_NE(refusal("sum('a')").find("mit einem Text"), std::string::npos);
    EXPECT_NE(refusal("'a' < 'b'").find("nur mit = oder <>"), std::string::npos);
    EXPECT_NE(refusal("wenn(1; 'a'; 2) = 'a'").find("eine Zahl steht, wo ein Text gebraucht wird"),
              std::string::npos);
}

TEST_F(ExpressionTest, NamesWithinAggregatesAreKept) {
    const Expression expression(u"sum(A*B)/Kopf", definitions, &aggregates, kTableScope);
    EXPECT_EQ(expression.slots(), (std::vector{definitions.slotOf(u"Kopf")}));
    EXPECT_EQ(expression.aggregatedSlots(), (std::vector{definitions.slotOf(u"A"), definitions.slotOf(u"B")}));
}

TEST_F(ExpressionTest, EqualAggregatesAreShared) {
    const Expression first(u"sum(A)+sum( A )", definitions, &aggregates, kTableScope);
    EXPECT_EQ(aggregates.list().size(), 1U);
    const Expression second(u"sum(A)", definitions, &aggregates, 0);
    EXPECT_EQ(aggregates.list().size(), 2U);
}

TEST_F(ExpressionTest, RefusesWithReason) {
    EXPECT_NE(refusal("1 +").find("unerwartetes Ende"), std::string::npos);
    EXPECT_NE(refusal("(1").find("Klammer fehlt"), std::string::npos);
    EXPECT_NE(refusal("1 2").find("Operator fehlt"), std::string::npos);
    EXPECT_NE(refusal("foo(1)").find("unbekannte Funktion „foo“"), std::string::npos);
    EXPECT_NE(refusal("wenn(1;2)").find("zu wenige Argumente"), std::string::npos);
    EXPECT_NE(refusal("a ! b").find("unerwartetes Zeichen „!“"), std::string::npos);
    EXPECT_NE(refusal("Art = \"x").find("Anführungszeichen ohne Ende"), std::string::npos);
    EXPECT_NE(refusal("Seiten > 1").find("erst am Ende"), std::string::npos);
    EXPECT_NE(refusal("sum()").find("Argument fehlt"), std::string::npos);
    EXPECT_NE(refusal("1+sum(avg(a))").find("„1+sum(avg(a))“: avg() steht innerhalb von sum()"), std::string::npos);
    EXPECT_NE(refusal("count(a)").find("count() hat kein Argument"), std::string::npos);
    EXPECT_NE(refusal("1 < 2 < 3").find("zwei Vergleiche hintereinander"), std::string::npos);
    EXPECT_NE(refusal("a > 1.000").find("mehrdeutig"), std::string::npos);
    EXPECT_NE(refusal("wenn(1;2;3;4)").find("zu viele Argumente"), std::string::npos);
    EXPECT_NE(refusal("1 * * 2").find("unerwarteter Operator „*“"), std::string::npos);
    EXPECT_NE(refusal("1)").find("unerwartete Klammer"), std::string::npos);
    EXPECT_NE(refusal("1;2").find("unerwartetes Semikolon"), std::string::npos);
    EXPECT_NE(refusal("").find("Ungültiger Ausdruck"), std::string::npos);
    EXPECT_NE(refusal(std::string(3000, '1')).find("zu lang"), std::string::npos);
    EXPECT_NE(refusal(std::string(1990, '(')), "");
    for (const auto& [source, reason] : {std::pair("1 + oder", "unerwartetes „oder“"),
                                         {"1 + und", "unerwartetes „und“"},
                                         {"2 * nicht", "unerwartetes „nicht“"},
                                         {"1=1 und", "unerwartetes Ende"},
                                         {"1=1 undA", "Operator fehlt"},
                                         {"1 'a'", "Operator fehlt"},
                                         {"1 (2)", "Operator fehlt"},
                                         {"abs(1 2)", "Operator fehlt"},
                                         {"abs(1;2)", "zu viele Argumente"},
                                         {"min(1;2", "Klammer fehlt"},
                                         {"runden(1", "unerwartetes Ende"},
                                         {"runden(1 2)", "Operator fehlt"},
                                         {"leer()", "Name erwartet"},
                                         {"leer(1)", "Name erwartet"},
                                         {"leer(A;B)", "leer() braucht genau einen Namen"},
                                         {"1,2,3", "ungültige Zahl"},
                                         {",", "ungültige Zahl"}})
        EXPECT_NE(refusal(source).find(reason), std::string::npos) << source << ": " << refusal(source);
    EXPECT_NE(refusal(std::string(400, '9')).find("Zahl ist zu groß"), std::string::npos);
    std::string powers = "2";
    for (int i = 0; i < 500; ++i)
        powers += "^2";
    EXPECT_NE(refusal(powers).find("zu tief verschachtelt"), std::string::npos);
    try {
        const Expression outside(u"sum(A)", definitions, nullptr, kTableScope);
        FAIL() << "nothing is summed there";
    } catch (const Fault& fault) {
        EXPECT_NE(std::string(fault.what()).find("sum() ist hier nicht möglich"), std::string::npos);
    }
}

TEST_F(ExpressionTest, AggregatesRunOverTheirScope) {
    const Expression sum(u"sum(JWIst)", definitions, &aggregates, 0);
    const Expression average(u"avg(JWIst*2)", definitions, &aggregates, kTableScope);
    const Expression count(u"count()", definitions, &aggregates, 0);
    const Expression range(u"max(JWIst) - min(JWIst)", definitions, &aggregates, kTableScope);
    EXPECT_EQ(valueOf(average), 0);
    for (const char* amount : {"10,5", "-3", "0"}) {
        define("JWIst", amount);
        totals.accumulate(scene());
    }
    EXPECT_DOUBLE_EQ(valueOf(sum), 7.5);
    EXPECT_DOUBLE_EQ(valueOf(average), 5);
    EXPECT_DOUBLE_EQ(valueOf(range), 13.5);
    EXPECT_EQ(valueOf(count), 3);
    totals.reset(0);
    EXPECT_EQ(valueOf(sum), 0);
    EXPECT_EQ(valueOf(count), 0);
    EXPECT_DOUBLE_EQ(valueOf(average), 5);
    EXPECT_TRUE(sum.hasAggregates());
}

TEST_F(ExpressionTest, SumsOfManyAmountsStayExactToTheCent) {
    const Expression sum(u"sum(Betrag)", definitions, &aggregates, kTableScope);
    define("Betrag", "0,1");
    for (int i = 0; i < 1'000'000; ++i)
        totals.accumulate(scene());
    EXPECT_EQ(valueOf(sum), 100000);
}

TEST_F(ExpressionTest, FillsTemplates) {
    define("Name", "Weiß & Cie <KG>", false);
    define("JWIst", "-1234,5");
    define("Datum", "09.11.1989", false);
    EXPECT_EQ(filled("{{Name}}: {{ JWIst | #.##0,00 }} €"), "Weiß & Cie <KG>: -1.234,50 €");
    EXPECT_EQ(filled("{{=JWIst*2|0}}"), "-2469");
    EXPECT_EQ(filled("{{=JWIst/3}}"), "-411,5");
    EXPECT_EQ(filled("{{Datum|d.M.yy}}"), "9.11.89");
    EXPECT_EQ(filled("Seite {{Seite}}, {{Druckdatum}}"), "Seite 3, 09.03.2024");
    EXPECT_EQ(filled("{{Druckdatum|HH:mm}}"), "14:05");
    EXPECT_EQ(filled("{{=1/0|0,0}}"), "–");
    EXPECT_EQ(filled("{{Name|0,00}}"), "Weiß & Cie <KG>");
    EXPECT_EQ(filled("{{Unbekannt}}"), "");
}

TEST_F(ExpressionTest, WhatIsNoNumberOrNoDateIsReportedOnceAndPrintedAsItIs) {
    define("Betrag", "12.34");
    EXPECT_EQ(filled("{{Betrag|0,00}} {{=Betrag*2|0}}"), "12.34 0");
    define("Betrag", "abc");
    EXPECT_EQ(filled("{{Betrag|0,00}}"), "abc");
    EXPECT_EQ(warnings, std::vector<std::string>{"Der Inhalt von „Betrag“: „12.34“ ist keine Zahl wie 1.234,5"});
    for (const char* text : {"257.01.2024", "31.13.2024", "unbekannt", "1.2", "1.2.3.4.5.6.7", "99999.1.1"}) {
        define("Datum", text, false);
        EXPECT_EQ(filled("{{Datum|TT.MM.JJJJ}}"), text);
    }
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[1], "Der Inhalt von „Datum“: „257.01.2024“ ist kein Datum wie 31.12.2024");
    for (const char* text : {"", " ", "08:15:00"}) {
        define("Tag", text, false);
        EXPECT_EQ(filled("{{Tag|TT.MM.JJJJ}}"), text);
    }
    define("Tag", "00:00:00", false); // the zero date
    EXPECT_EQ(filled("{{Tag|TT.MM.JJJJ}}{{Tag}}"), "00:00:00");
    EXPECT_EQ(filled("{{Betrag}}"), "abc");
    EXPECT_EQ(warnings.size(), 2U);
}

TEST_F(ExpressionTest, NamesTheMonthOfANumber) {
    const auto month = [&](const char* content, const char* placeholder) {
        define("Monat", content);
        return filled(placeholder);
    };
    EXPECT_EQ(month("3", "{{Monat|MMMM}}"), "März");
    EXPECT_EQ(month("12", "{{Monat|MMM}}"), "Dez");
    EXPECT_EQ(month("07.03.2024", "{{Monat|MMMM}}"), "März");
    for (const char* text : {"0", "13", "1,5", "-1"})
        EXPECT_EQ(month(text, "{{Monat|MMMM}}"), text);
    EXPECT_EQ(month("3", "{{Monat|T. MMMM}}"), "3");
}

TEST_F(ExpressionTest, TheMarkForThePageCountComesFromThePlaceholderAlone) {
    define("Name",
           "a\xEF\xBF\xBF"
           "b",
           false);
    EXPECT_EQ(filled("{{Name}}{{=Name & 'x'}}"), "a\uFFFDba\uFFFDbx");
    EXPECT_EQ(fromUtf8(filled("{{Seiten}}")), String(1, kPageCountMark));
}

TEST_F(ExpressionTest, CountsPagesAndLines) {
    EXPECT_EQ(filled("Seite {{Seite}}, Zeile {{Zeilennummer}}, auf der Seite {{Seitenzeile}}"),
              "Seite 3, Zeile 12, auf der Seite 2");
    define("Tag", "07.03.2024", false);
    EXPECT_EQ(filled("{{Tag|JJJJ}}"), "2024");
    const std::string much(61, 'x');
    define("Betrag", much.c_str());
    EXPECT_EQ(filled("{{Betrag|0,00}}"), much);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings[0].find("„" + much.substr(1) + "…“ ist keine Zahl"), std::string::npos) << warnings[0];
}

TEST_F(ExpressionTest, RefusesTemplatesWithReason) {
    for (const char* source : {"{{Name", "{{}}", "{{a b}}", "{{Name|x}}", "{{=}}", "{{Name|tt.MM.JJJJ}}", "{{a@}}",
                               "{{a[}}", "{{a`b}}", "{{a~b}}", "{{a-b}}"})
        EXPECT_THROW(filled(source), Fault) << source;
}

TEST(Definitions, TheLaterDefinitionCountsAndOrderIsKept) {
    Definitions definitions;
    for (int record = 0; record < 3; ++record)
        for (const StringView name : {u"B", u"A", u"C"})
            definitions.define(name, decimal(record), true, true);
    definitions.define(u"A", u"außer der Reihe", false, true);
    const auto list = definitions.list();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].name, "B");
    EXPECT_EQ(list[1].name, "A");
    EXPECT_EQ(list[1].value, "außer der Reihe");
    EXPECT_FALSE(list[1].numeric);
    EXPECT_EQ(list[2].value, "2");
}

TEST(Definitions, ForgetsFieldsAndVariablesApart) {
    Definitions definitions;
    definitions.define(u"V", u"1", true, false);
    definitions.define(u"F", u"2", true, true);
    definitions.forget(true);
    ASSERT_EQ(definitions.list().size(), 1U);
    EXPECT_EQ(definitions.list()[0].name, "V");
    definitions.forget(false);
    EXPECT_TRUE(definitions.list().empty());
}

TEST(Definitions, KeepsEarlierValues) {
    Definitions definitions;
    definitions.define(u"Jahr", u"2010", true, true);
    const std::size_t slot = definitions.slotOf(u"Jahr");
    definitions.keep(slot, Moment::Printed);
    EXPECT_EQ(definitions.value(slot, Moment::Printed).text, u"2010");
    definitions.mark(Moment::Printed);
    definitions.define(u"Jahr", u"2011", true, true);
    EXPECT_EQ(definitions.value(slot, Moment::Printed).text, u"2010");
    EXPECT_EQ(definitions.value(slot, Moment::Now).text, u"2011");
    definitions.release();
    EXPECT_EQ(definitions.value(slot, Moment::Printed).text, u"2011");
}

} // namespace
} // namespace kvtdruck::druckwerk
