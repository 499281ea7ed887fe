// The libraries around the component, played by the test itself: what they are asked can be interrupted, and they
// notice who calls them from where.
#pragma once

#include "host.h"
#include "lasting_object.h"

#include <atomic>
#include <deque>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace kvtdruck::test {

class Actor;

/// Stands before the registered classes of one apartment, from its making to its end: the engine's control, the
/// readers of the data access, the error-report object. What a reader gives follows from its company, the getter's
/// name and the record, so that a mix-up shows.
class Stage {
  public:
    Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    /// Called within every call that an actor gets, before it is answered; the text says which
    /// ("clsZugUmsatz.EOF").
    std::function<void(const std::string& call)> interrupt;
    /// Records of every reader.
    long records = 2;
    /// What a value reads as, in place of the one that follows from company, name and record.
    std::function<VARIANT()> value;
    /// What a call answers in place of success; S_OK leaves it as it is.
    std::function<HRESULT()> failure;

    /// A new parameter array, or connection.
    Ref<IDispatch> array() { return make(L"array"); }
    Ref<IDispatch> connection() { return make(L"connection"); }

    /// The calls that each control got, in the order of their making.
    const std::deque<std::vector<std::string>>& engineCalls() const { return engineCalls_; }
    /// Takes the calls of the control that was made last.
    std::vector<std::string> takeEngineCalls();
    const std::vector<std::string>& errors() const { return errors_; }
    void forgetErrors() { errors_.clear(); }
    /// All calls of all actors so far.
    long calls() const { return calls_; }
    /// Actors that live.
    long living() const { return living_; }
    /// Calls on a thread that the actor does not belong to.
    long strayCalls() const { return strayCalls_; }

    /// A manager that was given a connection of this stage.
    Ref<DruckManager> readyManager();
    void init(DruckManager& manager);
    bool print(DruckManager& manager, const wchar_t* list, short mode = 0, double company = 1, long window = 100);
    bool terminate(DruckManager& manager, long window = 100);

    /// Where layouts and previews lie.
    std::wstring applicationFolder = L"C:\\kvtdruck-test";

  private:
    friend class Actor;
    class Factory;

    Ref<IDispatch> make(const std::wstring& kind);

    std::vector<Factory*> factories_;
    std::deque<std::vector<std::string>> engineCalls_;
    std::vector<std::string> errors_;
    long calls_ = 0;
    std::atomic<long> living_ = 0;
    std::atomic<long> strayCalls_ = 0;
};

/// What the DLL under test answers; S_OK while it is not loaded.
HRESULT dllCanUnloadNow();

/// A thread with a single-threaded apartment of its own, and a stage in it, on which `work` runs.
std::thread apartment(std::function<void(Stage& stage)> work);

/// Handles the messages of the calling thread until `done` holds; false after ten seconds.
bool pumpUntil(const std::function<bool()>& done);

} // namespace kvtdruck::test
