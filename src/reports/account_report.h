// Reports on the accounts of a financial year: one line per account, with the amounts of the year and of one month.
#pragma once

#include "reports/reader_report.h"
#include "values/conversion.h"

namespace kvtdruck {

class AccountReport : public ReaderReport {
  public:
    AccountReport(const ReportEnvironment& environment, PrintRequest request, StringView className,
                  StringView title);

  protected:
    /// A getter pair for the actual and the target amount.
    struct Amounts {
        Member actual;
        Member target;
    };

    /// The factor that the current account's amounts are printed with, where it is not 1.
    virtual std::optional<double> signFactor() { return std::nullopt; }
    /// Defines the chosen month's amounts.
    virtual void defineMonth(Amounts& amounts);

    double amountOf(Member& getter) { return toDouble(reader().value(getter), locale()); }
    void defineAmount(StringView name, double amount, std::optional<double> factor);

    /// KtoBetrArt of the current account.
    float KtoBetrArt() { return toSingle(reader().value(ktoBetrArt_), locale()); }

  private:
    ReadFailure readFailure() const override;
    bool readData() override;
    bool Definiere_Übergebe_Felder() override;
    void defineAmounts(StringView actualName, StringView targetName, Amounts& amounts);
    std::optional<int> selectedMonth();

    BoundTable account_;
    BoundTable traits_;
    Amounts year_;
    std::vector<Amounts> months_;
    Member ktoBetrArt_{u"KtoBetrArt", ValueType::Single};
};

} // namespace kvtdruck
