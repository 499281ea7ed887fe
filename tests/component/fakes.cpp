#include "component/fakes.h"

#include "values/conversion.h"

#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace kvtdruck::test {
namespace {

/// A live fake, counted.
class Live {
  public:
    explicit Live(Outside& outside) : outside_(outside) { ++outside_.live; }
    Live(const Live&) = delete;
    Live& operator=(const Live&) = delete;
    ~Live() { --outside_.live; }

  private:
    Outside& outside_;
};

class FakeReader final : public Object {
  public:
    FakeReader(World& world, std::string name)
        : world_(world), live_(world.outside), name_(std::move(name)), records_(world.readers[name_]) {}

    MemberId idOf(StringView name) override {
        world_.outside.call(name_ + " name " + toUtf8(name));
        for (std::size_t i = 0; i < members_.size(); ++i)
            if (members_[i] == name)
                return static_cast<MemberId>(i);
        members_.emplace_back(name);
        return static_cast<MemberId>(members_.size() - 1);
    }

    Variant call(MemberId member, std::span<const Variant> arguments) override {
        const auto name = members_.at(static_cast<std::size_t>(member));
        world_.outside.call(name_ + " " + toUtf8(name));
        if (name == u"EOF")
            return position_ >= records_.count;
        if (name == u"MoveFirst")
            position_ = 0;
        else if (name == u"MoveNext")
            ++position_;
        else if (name == u"Verbinde" || name.starts_with(u"Lese"))
            return answer(name, arguments);
        else if (name == u"Fnr" && company_)
            return *company_;
        else
            return position_ < records_.count ? records_.value(name, position_) : Variant();
        return true;
    }

    void put(MemberId, std::span<const Variant>, const Variant&) override {
        throw RuntimeError(ErrorNumber::MemberNotFound);
    }

  private:
    Variant answer(const String& name, std::span<const Variant> arguments) {
        if (name != u"Verbinde")
            records_.reads.emplace_back(arguments.begin(), arguments.end());
        if (name == u"LeseFirmaAllg")
            company_ = arguments[0];
        position_ = 0;
        const auto found = records_.answers.find(name);
        return found == records_.answers.end() || found->second;
    }

    World& world_;
    Live live_;
    std::string name_;
    Records& records_;
    std::vector<String> members_;
    std::size_t position_ = 0;
    std::optional<Variant> company_; ///< whose general data were read
};

class FakeControl final : public Control {
  public:
    explicit FakeControl(World& world) : world_(world), live_(world.outside) {}

    std::int32_t call(Operation operation, std::span<const Argument> arguments) override {
        const auto name = nameOf(operation);
        try {
            world_.outside.call("control " + toUtf8(name));
        } catch (const RuntimeError& error) {
            world_.engineCalls.push_back(recordFailure(name, arguments, error.number()));
            throw;
        } catch (const std::exception&) {
            world_.engineCalls.push_back(recordFailure(name, arguments, 0));
            throw;
        }
        if (operation == Operation::LlPrintEnd && !world_.previewFile.empty())
            world_.files.insert(world_.previewFile);
        const auto scripted = world_.nextResult(operation);
        const auto result = world_.outside.answersCode() ? world_.outside.code : scripted;
        world_.engineCalls.push_back(recordLine(name, arguments, result));
        return result;
    }
    void put(std::int32_t dispatchId, bool value) override {
        world_.outside.call("control put");
        world_.engineCalls.push_back("[" + std::to_string(dispatchId) + "] = " + (value ? "-1" : "0"));
    }
    ObjectRef member(StringView name) override {
        world_.outside.call("control member " + toUtf8(name));
        throw RuntimeError(ErrorNumber::MemberNotFound);
    }

  private:
    World& world_;
    Live live_;
};

class FakeForm final : public Form {
  public:
    explicit FakeForm(World& world) : world_(world), control_(world) {}
    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return {77}; }
    bool visible() override { return world_.formVisible; }
    void hide() override {
        world_.formVisible = false;
        ++world_.hidden;
    }

  private:
    World& world_;
    FakeControl control_;
};

class FakeForms final : public FormFactory {
  public:
    explicit FakeForms(World& world) : world_(world) {}
    std::unique_ptr<Form> create() override {
        world_.outside.call("create form");
        return std::make_unique<FakeForm>(world_);
    }

  private:
    World& world_;
};

class FakeFehler final : public clsFehler {
  public:
    explicit FakeFehler(World& world) : world_(world) {}
    bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                           bool runtime) override {
        if (world_.outside.mute)
            throw RuntimeError(kInjected, u"Testfehler");
        world_.reports.push_back({toUtf8(className), toUtf8(procedure), number, toUtf8(text), runtime});
        return true;
    }

  private:
    World& world_;
};

class FakeFehlerFactory final : public ErrorReportFactory {
  public:
    explicit FakeFehlerFactory(World& world) : world_(world) {}
    std::unique_ptr<clsFehler> create() override {
        if (world_.outside.mute)
            throw RuntimeError(ErrorNumber::CannotCreateObject);
        ++world_.fehlerCreated;
        return std::make_unique<FakeFehler>(world_);
    }

  private:
    World& world_;
};

class FakeFiles final : public FileSystem {
  public:
    explicit FakeFiles(World& world) : world_(world), live_(world.outside) {}

    bool exists(StringView path) override {
        world_.outside.call("files exists");
        return world_.files.contains(toUtf8(path));
    }
    void remove(StringView path, bool force) override {
        world_.outside.call("files remove");
        const auto name = toUtf8(path);
        if (world_.readOnly.contains(name) && !force)
            throw RuntimeError(ErrorNumber::PermissionDenied);
        if (world_.files.erase(name) == 0)
            throw RuntimeError(ErrorNumber::FileNotFound);
        world_.removed.push_back(name);
    }
    void rename(StringView path, StringView newName) override {
        world_.outside.call("files rename");
        const auto name = toUtf8(path);
        if (world_.files.erase(name) == 0)
            throw RuntimeError(ErrorNumber::FileNotFound);
        world_.files.insert(name.substr(0, name.rfind('\\') + 1) + toUtf8(newName));
    }

  private:
    World& world_;
    Live live_;
};

class FakeProcesses final : public Processes {
  public:
    explicit FakeProcesses(World& world) : world_(world) {}
    Process start(StringView commandLine) override {
        world_.outside.call("process start");
        world_.started.push_back(toUtf8(commandLine));
        return {1000 + static_cast<std::int32_t>(world_.started.size())};
    }
    void terminate(const Process& process) override {
        world_.outside.call("process end");
        world_.ended.push_back(process.id);
    }

  private:
    World& world_;
};

constexpr Object::MemberId kValueId = 1;
constexpr Object::MemberId kCountId = 2;

} // namespace

std::ostream& operator<<(std::ostream& out, const ErrorReport& report) {
    return out << report.className << " / " << report.procedure << " / " << report.number << " / " << report.text
               << " / " << report.runtime;
}

void Outside::call(const std::string& name) {
    calls.push_back(name);
    if (interruptAt && *interruptAt + 1 == calls.size())
        std::exchange(interrupt, nullptr)();
    if (!hits(failAt))
        return;
    switch (fault) {
    case Fault::RuntimeError:
        throw RuntimeError(kInjected, u"Testfehler");
    case Fault::OutOfMemory:
        throw std::bad_alloc();
    case Fault::Unknown:
        throw std::runtime_error("of no kind that the component knows");
    }
}

Variant Records::value(const String& getter, std::size_t record) {
    if (const auto found = values.find(getter); found != values.end())
        return found->second[std::min(record, found->second.size() - 1)];
    const auto number = numbers_.try_emplace(getter, static_cast<int>(numbers_.size()) + 1).first->second;
    return number + fraction + 1000.0 * static_cast<double>(record);
}

Array::Array(Outside& outside, std::vector<std::vector<Variant>> contents)
    : cells(std::move(contents)), outside_(outside) {
    ++outside_.live;
}

Object::MemberId Array::idOf(StringView name) {
    outside_.call("array name " + toUtf8(name));
    return name == u"Value" ? kValueId : kCountId;
}

Variant& Array::cell(std::span<const Variant> arguments) {
    const auto row = static_cast<std::size_t>(*arguments[0].as<std::int32_t>());
    const auto column = static_cast<std::size_t>(*arguments[1].as<std::int32_t>());
    if (row >= cells.size() || column >= cells[row].size())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return cells[row][column];
}

Variant Array::call(MemberId member, std::span<const Variant> arguments) {
    outside_.call(member == kValueId ? "array Value" : "array Count");
    if (member == kValueId)
        return cell(arguments);
    return count.value_or(static_cast<std::int32_t>(cells.size()));
}

void Array::put(MemberId, std::span<const Variant> arguments, const Variant& value) {
    outside_.call("array put");
    cell(arguments) = value;
}

World::World()
    : clock(dateOf(2026, 3, 4, 5, 6, 7)), processes_(std::make_unique<FakeProcesses>(*this)),
      fehler_(std::make_unique<FakeFehlerFactory>(*this)), forms_(std::make_unique<FakeForms>(*this)) {}

World::~World() {
    EXPECT_EQ(outside.live, 0) << "something was never released";
}

std::unique_ptr<FileSystem> World::createFileSystem() {
    outside.call("create files");
    return std::make_unique<FakeFiles>(*this);
}

Date World::now() {
    outside.call("clock");
    return clock;
}

void World::processPendingMessages() {
    outside.call("messages");
    ++pumps;
    if (whilePumping)
        std::exchange(whilePumping, nullptr)();
}

ObjectRef World::create(StringView className) {
    const auto name = toUtf8(className);
    outside.call("create " + name);
    return std::make_shared<FakeReader>(*this, name);
}

std::int32_t World::nextResult(Operation operation) {
    const auto found = results.find({operation, counts_[operation]++});
    return found == results.end() ? kEngineSuccess : found->second;
}

std::shared_ptr<Array> World::array(std::vector<std::vector<Variant>> cells) {
    return std::make_shared<Array>(outside, std::move(cells));
}

} // namespace kvtdruck::test
