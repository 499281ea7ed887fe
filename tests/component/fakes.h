// The component's surroundings as fakes. Every call that leaves the component is counted by one counter and can be
// made to fail at its position.
#pragma once

#include "control/recording_control.h"
#include "manager/clsDruckManager.h"
#include "platform/services.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kvtdruck::test {

inline constexpr long kInjected = 4711;

/// One report to the host's error log.
struct ErrorReport {
    std::string className;
    std::string procedure;
    long number;
    std::string text;
    bool runtime;
    bool operator==(const ErrorReport&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ErrorReport& report);

/// What comes of an outside call that fails.
enum class Fault { RuntimeError, OutOfMemory, Unknown };

/// Counts the calls that leave the component ("control LlPrint", "clsZugUmsatz Jahr", "array Value", "files
/// exists", …) and injects failures.
class Outside {
  public:
    std::vector<std::string> calls;
    /// The position (from 0) of the call that fails: with run-time error kInjected, or by another `fault`.
    std::optional<std::size_t> failAt;
    Fault fault = Fault::RuntimeError;
    /// The position of the engine call that answers `code` instead.
    std::optional<std::size_t> codeAt;
    std::int32_t code = -10;
    bool forGood = false; ///< all further calls fail as well
    bool mute = false;    ///< the error-report object can't be created, and takes no report
    /// Called within the call at position `interruptAt`, before it is answered.
    std::optional<std::size_t> interruptAt;
    std::function<void()> interrupt;
    /// Fakes that live; 0 after everything is gone.
    int live = 0;

    void call(const std::string& name);
    bool answersCode() const { return hits(codeAt); }

  private:
    /// Whether the last call is the one at `position`, or a further one.
    bool hits(const std::optional<std::size_t>& position) const {
        return position && (*position + 1 == calls.size() || (forGood && *position < calls.size()));
    }
};

/// Values of one reader: what a getter gives for a record. Names that are not set get a number of their own.
class Records {
  public:
    std::size_t count = 1;
    double fraction = 0.25; ///< of the numbers of getters without values
    /// Values of single getters, one per record; the last one serves for all further records.
    std::map<String, std::vector<Variant>> values;
    std::map<String, bool> answers;          ///< results of read operations; True where nothing is said
    std::vector<std::vector<Variant>> reads; ///< arguments of the read operations

    Variant value(const String& getter, std::size_t record);

  private:
    std::map<String, int> numbers_;
};

/// A host's parameter array in memory.
class Array : public Object {
  public:
    Array(Outside& outside, std::vector<std::vector<Variant>> cells);
    ~Array() override { --outside_.live; }
    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

    std::vector<std::vector<Variant>> cells;
    std::optional<std::int32_t> count; ///< what Count answers instead of the number of rows

  private:
    Variant& cell(std::span<const Variant> arguments);
    Outside& outside_;
};

/// The whole host: engine, data access, files, processes, clock, error log.
class World final : public Platform, public DataLibrary {
  public:
    Outside outside;
    Locale userLocale = germanLocale();
    Date clock{};
    std::map<std::string, Records> readers; ///< by class name
    std::set<std::string> files;            ///< paths that exist
    std::set<std::string> readOnly;
    std::vector<std::string> removed;
    std::vector<std::string> started;
    std::vector<std::int32_t> ended;
    int pumps = 0;
    int fehlerCreated = 0;
    bool formVisible = false;
    int hidden = 0;
    std::vector<std::string> engineCalls; ///< the record
    std::vector<ErrorReport> reports;
    /// Scripted results: the k-th call (from 0) of an operation.
    std::map<std::pair<Operation, int>, std::int32_t> results;
    std::function<void()> whilePumping;
    std::string previewFile; ///< what the engine leaves behind at LlPrintEnd, if anything

    World();
    ~World() override;

    // Platform
    std::unique_ptr<FileSystem> createFileSystem() override;
    Processes& processes() override { return *processes_; }
    void processPendingMessages() override;
    Date now() override;
    const Locale& locale() override { return userLocale; }
    // DataLibrary
    ObjectRef create(StringView className) override;

    ErrorReportFactory& fehler() { return *fehler_; }
    FormFactory& forms() { return *forms_; }

    /// The results scripted for an operation's calls, counted over the world's life.
    std::int32_t nextResult(Operation operation);
    std::shared_ptr<Array> array(std::vector<std::vector<Variant>> cells);

  private:
    std::map<Operation, int> counts_;
    std::unique_ptr<Processes> processes_;
    std::unique_ptr<ErrorReportFactory> fehler_;
    std::unique_ptr<FormFactory> forms_;
};

} // namespace kvtdruck::test
