#include "encap/platform/ChildProcess.h"

#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/platform/windows/NativePath.h"
#include "encap/platform/windows/OwnedHandle.h"

#include <algorithm>
#include <array>
#include <memory>

namespace encap::platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

SECURITY_ATTRIBUTES Inheritable()
{
    return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

/// The argument as programs take a command line apart: in quotes, with a backslash before a quote
/// and twice the backslashes that stand before one.
void AppendArgument(CString& line, std::wstring_view argument)
{
    line += line.empty() ? L"\"" : L" \"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') {
            line.append(backslashes + 1, L'\\');
        }
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        line += character;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

/// The input as a file at its beginning that goes with its handle: unlike a pipe it needs nobody to
/// fill it while the child runs, and does no harm when the child does not read it.
OwnedHandle InputFile(std::string_view input)
{
    CString name(MAX_PATH, L'\0');
    if (GetTempFileNameW(TemporaryDirectory().c_str(), L"enc", 0, name.data()) == 0) {
        return {};
    }
    SECURITY_ATTRIBUTES inheritable = Inheritable();
    OwnedHandle file(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kShareAll,
                                 &inheritable, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    DWORD written = 0;
    const bool isWritten =
        file.IsOpen() &&
        WriteFile(file.Get(), input.data(), static_cast<DWORD>(input.size()), &written, nullptr) &&
        written == input.size() &&
        SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER;
    return isWritten ? std::move(file) : OwnedHandle();
}

OwnedHandle Nowhere()
{
    SECURITY_ATTRIBUTES inheritable = Inheritable();
    return OwnedHandle(
        CreateFileW(L"NUL", GENERIC_WRITE, kShareAll, &inheritable, OPEN_EXISTING, 0, nullptr));
}

/// The handles that a child inherits, and no others, whatever other threads open meanwhile.
class InheritedHandles {
public:
    explicit InheritedHandles(std::array<HANDLE, 3> handles) : m_handles(handles)
    {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_memory.resize(size);
        m_isReady =
            InitializeProcThreadAttributeList(List(), 1, 0, &size) != 0 &&
            UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                      m_handles.data(), sizeof m_handles, nullptr, nullptr) != 0;
    }
    ~InheritedHandles()
    {
        if (m_isReady) {
            DeleteProcThreadAttributeList(List());
        }
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    [[nodiscard]] bool IsReady() const { return m_isReady; }
    [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST List()
    {
        return static_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(static_cast<void*>(m_memory.data()));
    }

private:
    std::array<HANDLE, 3> m_handles;
    std::vector<unsigned char> m_memory;
    bool m_isReady = false;
};

/// The new process; not open when it cannot be started.
OwnedHandle Start(const std::vector<std::string>& command, HANDLE input, HANDLE output,
                  HANDLE nowhere)
{
    CString line;
    for (const std::string& argument : command) {
        AppendArgument(line, Utf8ToWide(argument));
    }
    InheritedHandles inherited({input, output, nowhere});
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input;
    startup.StartupInfo.hStdOutput = output;
    startup.StartupInfo.hStdError = nowhere;
    startup.lpAttributeList = inherited.List();
    PROCESS_INFORMATION process{};
    if (!inherited.IsReady() ||
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                       EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW, nullptr, nullptr,
                       &startup.StartupInfo, &process) == 0) {
        return {};
    }
    CloseHandle(process.hThread);
    return OwnedHandle(process.hProcess);
}

/// Reads to the end of the output; Exited when that was reached.
ChildEnd Collect(HANDLE pipe, const ChildRun& run, Clock::time_point deadline, std::string& output)
{
    constexpr DWORD kPauseMilliseconds = 2;
    std::array<char, 65536> piece{};
    while (Clock::now() < deadline) {
        DWORD available = 0;
        if (PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr) == 0) {
            return ChildEnd::Exited; // nobody holds the other end
        }
        if (available == 0) {
            Sleep(kPauseMilliseconds);
            continue;
        }
        DWORD count = 0;
        if (ReadFile(pipe, piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) == 0) {
            return ChildEnd::Exited;
        }
        output.append(piece.data(), count);
        if (output.size() > run.mostOutput) {
            return ChildEnd::TooMuchOutput;
        }
    }
    return ChildEnd::TimedOut;
}

/// Waits for the child, or ends it when the result says already that it went wrong.
void Finish(HANDLE child, Clock::time_point deadline, ChildResult& result)
{
    // A program that an error of its own ends leaves the status of that error.
    constexpr DWORD kFirstErrorStatus = 0xC0000000;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const auto milliseconds = static_cast<DWORD>(std::clamp<int64_t>(left.count(), 0, 1 << 30));
    if (result.end == ChildEnd::Exited) {
        if (WaitForSingleObject(child, milliseconds) == WAIT_OBJECT_0) {
            DWORD status = 0;
            GetExitCodeProcess(child, &status);
            result.end = status < kFirstErrorStatus ? ChildEnd::Exited : ChildEnd::Killed;
            result.exitStatus = status < kFirstErrorStatus ? static_cast<int>(status) : -1;
            return;
        }
        result.end = ChildEnd::TimedOut;
    }
    TerminateProcess(child, 1);
    WaitForSingleObject(child, INFINITE);
}

} // namespace

ChildResult RunChild(const ChildRun& run)
{
    const Clock::time_point deadline = Clock::now() + run.timeout;
    ChildResult result;
    SECURITY_ATTRIBUTES inheritable = Inheritable();
    HANDLE readEnd = INVALID_HANDLE_VALUE;
    HANDLE writeEnd = INVALID_HANDLE_VALUE;
    CreatePipe(&readEnd, &writeEnd, &inheritable, 0);
    const OwnedHandle output(readEnd);
    OwnedHandle childsOutput(writeEnd);
    const OwnedHandle input = InputFile(run.input);
    const OwnedHandle nowhere = Nowhere();
    if (!output.IsOpen() || !input.IsOpen() || !nowhere.IsOpen()) {
        return result;
    }
    const bool collects = run.mostOutput > 0;
    const OwnedHandle child = Start(run.command, input.Get(),
                                    collects ? childsOutput.Get() : nowhere.Get(), nowhere.Get());
    if (!child.IsOpen()) {
        return result;
    }
    childsOutput.Close();
    result.end = collects ? Collect(output.Get(), run, deadline, result.output) : ChildEnd::Exited;
    Finish(child.Get(), deadline, result);
    return result;
}

} // namespace encap::platform
