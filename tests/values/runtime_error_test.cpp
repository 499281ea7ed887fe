#include "values/runtime_error.h"

#include <gtest/gtest.h>

#include <string>

using namespace kvtdruck;

namespace {

TEST(RuntimeError, DescriptionsAreThoseOfTheHostsErrorLog) {
    EXPECT_EQ(describe(5), u"Ungültiger Prozeduraufruf oder ungültiges Argument");
    EXPECT_EQ(describe(6), u"Überlauf");
    EXPECT_EQ(describe(7), u"Nicht genügend Speicher");
    EXPECT_EQ(describe(9), u"Index außerhalb des gültigen Bereichs");
    EXPECT_EQ(describe(11), u"Division durch Null");
    EXPECT_EQ(describe(13), u"Typen unverträglich");
    EXPECT_EQ(describe(51), u"Interner Fehler");
    EXPECT_EQ(describe(53), u"Datei nicht gefunden");
    EXPECT_EQ(describe(58), u"Datei existiert bereits");
    EXPECT_EQ(describe(61), u"Datenträger voll");
    EXPECT_EQ(describe(70), u"Zugriff verweigert");
    EXPECT_EQ(describe(75), u"Fehler beim Zugriff auf Pfad/Datei");
    EXPECT_EQ(describe(76), u"Pfad nicht gefunden");
    EXPECT_EQ(describe(91), u"Objektvariable oder With-Blockvariable nicht festgelegt");
    EXPECT_EQ(describe(94), u"Unzulässige Verwendung von Null");
    EXPECT_EQ(describe(429), u"Objekterstellung durch ActiveX-Komponente nicht möglich");
    EXPECT_EQ(describe(438), u"Objekt unterstützt diese Eigenschaft oder Methode nicht");
    EXPECT_EQ(describe(445), u"Objekt unterstützt diese Aktion nicht");
}

TEST(RuntimeError, OtherNumbersShareOneDescription) {
    for (const long number : {-1L, 0L, 1L, 1000L, -2147467259L})
        EXPECT_EQ(describe(number), u"Anwendungs- oder objektdefinierter Fehler") << number;
}

TEST(RuntimeError, CarriesNumberAndDescription) {
    const RuntimeError own(ErrorNumber::Overflow);
    EXPECT_EQ(own.number(), 6);
    EXPECT_EQ(own.description(), u"Überlauf");
    const RuntimeError foreign(-2147467259, u"Verbindung getrennt");
    EXPECT_EQ(foreign.number(), -2147467259);
    EXPECT_EQ(foreign.description(), u"Verbindung getrennt");
    EXPECT_NE(std::string(foreign.what()).find("-2147467259"), std::string::npos);
    EXPECT_NE(std::string(foreign.what()).find("Verbindung getrennt"), std::string::npos);
}

} // namespace
