// What authors are told of variables and fields.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

namespace kvtdruck::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

class FieldsTest : public ProgramTest {
  protected:
    /// What jq makes of the JSON that the command gives.
    std::string asked(const std::string& list, const std::string& query,
                      const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"felder", list, "--format", "json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto outcome = kvtdruck(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        const auto answer = run({"jq", "-r", query}, {}, outcome.output);
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        return answer.output;
    }
};

TEST_F(FieldsTest, EveryNameOfEveryListHasAMeaningAndEveryNumberAPattern) {
    for (const auto* list :
         {"Umsatz", "MitUeber", "Firma", "GemeinK", "NeutralA", "MaKost", "MaZeit", "MaStKost", "MaStZeit",
          "KalkKo", "MatUeber", "Bilanz", "BsEMa", "BsEStd", "BsEGes", "KalkW", "WasWenn", "UmsatzHW"}) {
        EXPECT_EQ(asked(list, ".felder[] | select(.bedeutung == \"\""
                              " or (.typ == \"Text\") != (.muster == \"\")"
                              " or .wert != null)"), // has no data here
                  "")
            << list;
    }
}

TEST_F(FieldsTest, TellsTypeValueMeaningAndPattern) {
    const std::vector<std::string> data{"-d", database(), "-f", "1", "-j", "2024"};
    EXPECT_EQ(
        asked("Umsatz", ".felder[] | select(.name == \"IUmsatzDM_12\") | .art, .typ, .bedeutung, .muster", data),
        "Feld\nZahl\nUmsatz Ist, Dezember\n#.##0,00\n");
    EXPECT_EQ(asked("Umsatz", ".felder[] | select(.name == \"FnrName1\") | .art, .typ, .wert, .bedeutung", data),
              "Variable\nText\nMüller & Söhne GmbH\nFirma: Name\n");
    EXPECT_EQ(asked("MitUeber", ".felder[] | select(.name == \"Eintrittsdatum\") | .typ, .muster"),
              "Datum\nTT.MM.JJJJ\n");
    EXPECT_EQ(asked("MaZeit", ".felder[] | select(.name == \"IUrlT\") | .muster"), "0,0\n");
    EXPECT_EQ(asked("KalkW", ".felder[] | select(.name == \"SDBPr\") | .muster"), "0,0\n");

    auto arguments = data;
    arguments.insert(arguments.begin(), {"felder", "Umsatz"});
    const auto table = kvtdruck(arguments).output;
    EXPECT_THAT(table, ContainsRegex("\\{\\{FnrName1\\}\\} +Text +Müller & Söhne GmbH +Firma: Name\n"));
    EXPECT_THAT(table, ContainsRegex("\\{\\{sUmsatzDM\\|#\\.##0,00\\}\\} +Zahl +[0-9]+ +Umsatz Soll des Jahres\n"));
}

TEST_F(FieldsTest, ALayoutFileIsCheckedInPlaceOfTheLists) {
    const auto file = folder / "entwurf.svg";
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/layouts/Umsatz.svg", file);
    EXPECT_THAT(kvtdruck({"pruefen", "Umsatz", "--layout", file.string()}).output,
                HasSubstr("entwurf.svg ist in Ordnung"));
    auto text = readFile(file);
    text.replace(text.find("{{Ueberschrift}}"), 16, "{{Ueberschrft}}");
    writeFile(file, text);
    const auto outcome = kvtdruck({"pruefen", "Umsatz", "--layout", file.string()});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, ContainsRegex("entwurf.svg, Zeile .*Unbekannter Name „Ueberschrft“"));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("BerichteLLVT")));
    EXPECT_EQ(kvtdruck({"pruefen", "--layout", file.string()}).exitCode, 2) << "of which list?";
    EXPECT_THAT(kvtdruck({"pruefen", "Umsatz", "--layout", "/nirgends/a.svg"}).errors,
                HasSubstr("Das Layout „/nirgends/a.svg“"));
}

} // namespace
} // namespace kvtdruck::testing
