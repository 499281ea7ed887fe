// Connection strings: attributes, braces, and passwords that never show up.
#include "kvtzug/connection_string.h"
#include "kvtzug/source.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

namespace kvtdruck::test {
namespace {

using testing::HasSubstr;

TEST(ConnectionString, AttributesAreFoundInAnyCaseAndInBraces) {
    const StringView text = u"driver={My;Driver}; DATABASE = a b ;Pwd=x";
    EXPECT_EQ(connectionAttribute(text, u"Driver"), u"My;Driver");
    EXPECT_EQ(connectionAttribute(text, u"Database"), u"a b");
    EXPECT_EQ(connectionAttribute(text, u"PWD"), u"x");
    EXPECT_EQ(connectionAttribute(text, u"UID"), u"");
}

TEST(ConnectionString, AnyValueComesBackFromItsBraces) {
    for (const StringView value :
         {u"x.sqlite;LoadExt=/tmp/evil.so", u"a}b}}", u"{a}", u"}", u"", u" blank ", u"=;={"})
        EXPECT_EQ(connectionAttribute(u"A=1;Database=" + braced(value) + u";B=2", u"Database"), value);
    EXPECT_EQ(connectionAttribute(u"Database={a;B=1};B=2", u"B"), u"2");
    EXPECT_EQ(connectionAttribute(u"Database={never closed;B=1", u"B"), u"");
    EXPECT_EQ(connectionAttribute(u";;nothing;B=2", u"B"), u"2");
}

TEST(ConnectionString, PasswordsAreMaskedAsTheyAreAndInBraces) {
    const StringView text = u"UID=a;PWD={top;secret};Password = other ";
    EXPECT_EQ(withoutPasswords(u"no login with top;secret or {top;secret}, nor other", text),
              u"no login with *** or ***, nor ***");
    EXPECT_EQ(withoutPasswords(u"nothing", u"PWD=;UID=x"), u"nothing");
}

TEST(ConnectionString, OneThatNoDriverManagerTakesIsRefused) {
    try {
        openConnection(u"Driver={PostgreSQL Unicode};Database=" + String(40000, u'x'), nullptr);
        ADD_FAILURE() << "no run-time error";
    } catch (const RuntimeError& error) {
        EXPECT_THAT(error.what(), HasSubstr("Die Verbindungszeichenfolge ist länger als 32767 Zeichen."));
    }
}

} // namespace
} // namespace kvtdruck::test
