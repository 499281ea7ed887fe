#include "host.h"

#include <winternl.h>

#include <fstream>
#include <stdexcept>

namespace kvtdruck::test {

namespace {

constexpr const wchar_t* kFiles[][2] = {{L"KVT_TEST_RECORD", L"record.txt"},
                                        {L"KVT_TEST_ERRORS", L"errors.txt"},
                                        {L"KVT_TEST_HOSTING", L"hosting.txt"},
                                        {L"KVT_TEST_VIEWERS", L"viewers.txt"},
                                        {L"KVT_TEST_ANSWERS", L"answers.txt"}};

std::wstring testName() {
    const auto* const info = testing::UnitTest::GetInstance()->current_test_info();
    std::wstring name;
    for (const char letter : std::string(info->test_suite_name()) + "." + info->name())
        name += letter == '/' ? L'-' : static_cast<wchar_t>(letter);
    return name;
}

BOOL CALLBACK countWindow(HWND, LPARAM counter) {
    ++*reinterpret_cast<long*>(counter);
    return TRUE;
}

} // namespace

HRESULT invoke(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments,
               VARIANT* result) {
    std::wstring member(name);
    LPOLESTR names[] = {member.data()};
    DISPID id = DISPID_UNKNOWN;
    if (const auto found = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id); FAILED(found))
        return found;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPID put = DISPID_PROPERTYPUT;
    const bool writes = (flags & DISPATCH_PROPERTYPUT) != 0;
    DISPPARAMS parameters{reversed.data(), writes ? &put : nullptr, static_cast<UINT>(reversed.size()),
                          writes ? 1U : 0U};
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, nullptr);
}

Ref<IDispatch> create(const wchar_t* progId) {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(progId, &clsid), S_OK);
    return create<IDispatch>(clsid, IID_IDispatch);
}

long openHandles() {
    struct Entry {
        ULONG owner;
        BYTE type;
        BYTE flags;
        USHORT handle;
        void* object;
        ULONG access;
    };
    struct Table {
        ULONG count;
        Entry entries[1];
    };
    constexpr auto kSystemHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    std::vector<std::byte> buffer(1 << 20);
    ULONG needed = 0;
    auto* const query = reinterpret_cast<decltype(NtQuerySystemInformation)*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    while (query(kSystemHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &needed) != 0)
        buffer.resize(buffer.size() * 2);
    const auto* const table = reinterpret_cast<const Table*>(buffer.data());
    long count = 0;
    for (ULONG i = 0; i < table->count; ++i)
        count += table->entries[i].owner == GetCurrentProcessId() ? 1 : 0;
    return count;
}

bool eventually(const std::function<bool()>& holds) {
    for (int i = 0; i < 200; ++i) {
        if (holds())
            return true;
        Sleep(50);
    }
    return holds();
}

std::wstring setting(const wchar_t* name) {
    wchar_t value[2048];
    const auto length = GetEnvironmentVariableW(name, value, static_cast<DWORD>(std::size(value)));
    if (length == 0)
        throw std::runtime_error(std::filesystem::path(name).string() + " is not set; ctest sets it for its hosts");
    return {value, length};
}

long setting(const wchar_t* name, long otherwise) {
    wchar_t text[16];
    return GetEnvironmentVariableW(name, text, 16) == 0 ? otherwise : std::stol(text);
}

long ownWindows() {
    long count = 0;
    EnumThreadWindows(GetCurrentThreadId(), countWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

std::wstring dllPath() {
    return std::filesystem::path(setting(L"KVT_DLL")).make_preferred().wstring();
}

std::wstring databasePath() {
    return setting(L"KVT_DATABASE");
}

Ref<IDispatch> newArray(long rows, long columns) {
    auto array = create(L"XArrayDBObject.XArrayDB");
    EXPECT_EQ(
        invoke(array.get(), L"ReDim", DISPATCH_METHOD, {Value(0L), Value(rows - 1), Value(0L), Value(columns - 1)}),
        S_OK);
    return array;
}

void setCell(IDispatch* array, long row, long column, VARIANT value) {
    EXPECT_EQ(invoke(array, L"Value", DISPATCH_PROPERTYPUT, {Value(row), Value(column), value}), S_OK);
}

Value cell(IDispatch* array, long row, long column) {
    Value value;
    EXPECT_EQ(invoke(array, L"Value", DISPATCH_PROPERTYGET, {Value(row), Value(column)}, &value), S_OK);
    return value;
}

HostTest::HostTest() : folder_(std::filesystem::path(setting(L"KVT_TEST_FOLDER")) / testName()) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(previewFolder());
    for (const auto& [variable, file] : kFiles)
        SetEnvironmentVariableW(variable, (folder_ / file).c_str());
    offerControl(L"");
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
}

HostTest::~HostTest() {
    CoUninitialize();
}

std::vector<std::string> HostTest::lines(const wchar_t* file) const {
    std::ifstream stream(folder_ / file, std::ios::binary);
    std::vector<std::string> all;
    for (std::string line; std::getline(stream, line);)
        all.push_back(line);
    return all;
}

std::vector<std::string> HostTest::reportedErrors() const {
    auto errors = lines(L"errors.txt");
    std::erase(errors, "created");
    return errors;
}

void HostTest::answer(const std::string& script) const {
    std::ofstream(folder_ / L"answers.txt") << script;
}

Ref<IDispatch> HostTest::connection() {
    auto connection = create(L"KVTTest.Connection");
    Value text((L"Driver=SQLite3;Database=" + databasePath()).c_str());
    EXPECT_EQ(invoke(connection.get(), L"ConnectionString", DISPATCH_PROPERTYPUT, {text}), S_OK);
    return connection;
}

Ref<IDispatch> HostTest::everything() {
    auto selection = newArray(1, 3);
    setCell(selection.get(), 0, 0, Value(true));
    return selection;
}

Ref<DruckManager> HostTest::readyManager() {
    auto ready = manager();
    const auto open = connection();
    auto* const lent = open.get();
    IDispatch* argument = lent;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(ready->fkt_Init(&argument, &result), S_OK);
    EXPECT_EQ(result, VARIANT_FALSE) << "the result of fkt_Init says nothing, and hosts know it";
    EXPECT_EQ(argument, lent);
    return ready;
}

bool HostTest::print(DruckManager& manager, const wchar_t* list, short mode, double company, long window,
                     IDispatch* parameters, short product) {
    const auto all = everything();
    IDispatch* selection = parameters == nullptr ? all.get() : parameters;
    Text folder(applicationFolder());
    Text name(list);
    VARIANT_BOOL chooser = VARIANT_FALSE;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(
        manager.fkt_Drucken(&mode, &company, &selection, &folder, &name, &chooser, &window, &product, &result),
        S_OK);
    return result == VARIANT_TRUE;
}

std::vector<std::string> callsOf(const std::string& operation, const std::vector<std::string>& calls) {
    std::vector<std::string> found;
    for (const auto& call : calls)
        if (call.starts_with(operation + "("))
            found.push_back(call);
    return found;
}

} // namespace kvtdruck::test
