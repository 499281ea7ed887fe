// Records are walked once each, whatever getters are asked for on the way, however wide texts are, and whatever
// another connection writes meanwhile.
#include "kvtzug/database.h"
#include "kvtzug/kvtzug.h"
#include "kvtzug/reader_access.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>
#include <string>

namespace kvtdruck::test {
namespace {

constexpr std::array kTexts = {u"Name", u"Ort", u"Strasse", u"Telefon1", u"Vorname"};

/// The staff of a company: employees with even numbers are there from the start, those with odd numbers come later.
class WalkedStaff : public testing::TestWithParam<unsigned> {
  protected:
    static constexpr int kEmployees = 1500;

    void SetUp() override {
        database_->executeDemoFile("schema.sql");
        database_->execute("INSERT INTO firma (fnr, name1) VALUES (1, 'Firma')");
        std::vector<int> numbers;
        for (int i = 1; i <= kEmployees; ++i)
            numbers.push_back(2 * i);
        insert(numbers);
    }

    unsigned below(unsigned bound) { return std::uniform_int_distribution<unsigned>(0, bound - 1)(random_); }

    /// Mostly short texts, in places some that no buffer was made for.
    std::string newText(int number) {
        const std::size_t length = below(40) == 0 ? below(6000) : below(20);
        return std::to_string(number) + std::string(length, 'x');
    }

    void insert(const std::vector<int>& numbers) {
        std::string sql;
        for (const auto number : numbers) {
            sql += (sql.empty()
                        ? "INSERT INTO mitarbeiter (fnr, nummer, name, ort, strasse, telefon1, vorname) VALUES "
                        : ", ") +
                   ("(1, " + std::to_string(number));
            for (auto& text : texts_[number]) {
                text = newText(number);
                sql += ", '" + text + "'";
            }
            sql += ")";
        }
        database_->execute(sql);
    }

    /// What another program does to the table while the reader stands at `current`.
    void disturb(int current) {
        const int near = 2 * int(below(kEmployees)) + 1;
        if (below(2) == 0 && !texts_.contains(near))
            insert({near});
        const int gone = below(3) == 0 ? current : 2 * (1 + int(below(kEmployees)));
        if (below(2) == 0 && deleted_.insert(gone).second)
            database_->execute("DELETE FROM mitarbeiter WHERE nummer = " + std::to_string(gone));
    }

    void expectText(const ReaderAccess& staff, int number) {
        const auto which = below(unsigned(kTexts.size()));
        const auto text = toUtf8(staff.text(kTexts[which]));
        // What was never asked for before its record vanished is not known any more.
        EXPECT_TRUE(text == texts_[number][which] || (text.empty() && deleted_.contains(number)))
            << "employee " << number << " gives " << text.substr(0, 20);
    }

    std::mt19937 random_{GetParam()};
    std::unique_ptr<Database> database_ = createDatabase();
    ReferenceKvtzug library_;
    std::map<int, std::array<std::string, kTexts.size()>> texts_;
    std::set<int> deleted_;
};

TEST_P(WalkedStaff, ComesOnceEachAndNobodyIsLost) {
    const ReaderAccess staff(library_, u"clsZugMitarbeiter", database_->connectionString());
    staff.call(u"LeseMitarbeiter", {1.0, std::int16_t(0)});
    const unsigned curiosity = 20 + below(400);
    int last = 0;
    const auto expectNobodyLostBefore = [&](int number) {
        for (int skipped = last + 2 - last % 2; skipped < number; skipped += 2)
            EXPECT_TRUE(deleted_.contains(skipped)) << "employee " << skipped << " is lost";
    };
    for (; !staff.truth(u"EOF"); staff.call(u"MoveNext")) {
        const int number = int(staff.number(u"Nummer"));
        ASSERT_GT(number, last) << "in order, and none twice";
        expectNobodyLostBefore(number);
        last = number;
        if (below(curiosity) == 0)
            expectText(staff, number);
        if (below(60) == 0) {
            disturb(number);
            EXPECT_EQ(staff.number(u"Nummer"), number);
            expectText(staff, number);
            EXPECT_EQ(staff.number(u"Nummer"), number);
        }
    }
    expectNobodyLostBefore(2 * kEmployees + 1);
}

INSTANTIATE_TEST_SUITE_P(Seeds, WalkedStaff, testing::Range(1U, 9U));

} // namespace
} // namespace kvtdruck::test
