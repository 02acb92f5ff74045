#include "sys/platform/Process.h"

#include <windows.h>
#include <shellapi.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <system_error>
#include <utility>

#include "sys/platform/windows/system.h"

namespace sys::platform {

namespace {

/// The operating system ends the process when this returns, or after some seconds.
BOOL WINAPI holdClose(DWORD event) {
    if (event == CTRL_CLOSE_EVENT) {
        Sleep(INFINITE);
    }
    return FALSE;
}

}  // namespace

void prepareProcess() {
    // No signal ends a process here, and a closed standard stream has no number that a file could
    // get.
}

void ignoreTerminalClose() {
    SetConsoleCtrlHandler(&holdClose, TRUE);
}

std::vector<std::string> Arguments::Read(int, char const* const*) {
    // Those of main were converted to an 8-bit code page, with loss.
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const values = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; i < count; ++i) {
        arguments.push_back(toUtf8(values[i]));
    }
    LocalFree(values);
    return arguments;
}

int programPath(std::string& path) {
    std::wstring found(MAX_PATH, L'\0');
    for (;;) {
        DWORD const length =
            GetModuleFileNameW(nullptr, found.data(), static_cast<DWORD>(found.size()));
        if (length == 0) {
            return negativeLastError();
        }
        if (length < found.size()) {
            path = toUtf8(found.substr(0, length));
            return 0;
        }
        found.resize(2 * found.size());  // it was truncated
    }
}

int processId() {
    return static_cast<int>(GetCurrentProcessId());
}

unsigned currentThreadId() {
    return GetCurrentThreadId();
}

void nameThread(char const* name) {
    using SetDescription = HRESULT(WINAPI*)(HANDLE, wchar_t const*);
    // Look it up at run time: systems before Windows 10 do not have it.
    auto const found = reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    if (found != nullptr && *name != '\0') {
        reinterpret_cast<SetDescription>(found)(GetCurrentThread(), toUtf16(name).c_str());
    }
}

bool environmentValue(char const* name, std::string& value) {
    // Names with "=" are internal: they store the working directory of each drive.
    if (std::strchr(name, '=') != nullptr) {
        return false;
    }
    std::wstring const utf16Name = toUtf16(name);
    std::wstring found;
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        DWORD const length = GetEnvironmentVariableW(utf16Name.c_str(), found.data(),
                                                     static_cast<DWORD>(found.size()));
        if (length == 0 && GetLastError() != ERROR_SUCCESS) {
            return false;
        }
        if (length <= found.size()) {
            found.resize(length);
            value = toUtf8(found);
            return true;
        }
        found.resize(length);  // the size needed, with the terminating 0
    }
}

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    wchar_t* const block = GetEnvironmentStringsW();
    if (block == nullptr) {
        return entries;
    }
    for (wchar_t const* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        entries.push_back(toUtf8(entry));
    }
    FreeEnvironmentStringsW(block);
    return entries;
}

std::string errorText(int number) {
    char text[2048];
    DWORD const length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(number), 0, text, sizeof text, nullptr);
    std::string const message(text, length);
    return length > 0 ? message.substr(0, message.find_last_not_of("\r\n") + 1)
                      : std::generic_category().message(number);
}

bool hasArmCrcInstructions() {
    return IsProcessorFeaturePresent(PF_ARM_V8_CRC32_INSTRUCTIONS_AVAILABLE) != FALSE;
}

namespace {

std::mutex oneAtATime;
std::mutex acting;            ///< locked while the function runs
void (*pending)() = nullptr;  ///< the function still to be called
std::atomic<Interruption> received = Interruption::none;

/// The operating system creates a thread for each call.
BOOL WINAPI notice(DWORD event) {
    {
        std::unique_lock locked(oneAtATime);
        if (pending == nullptr) {
            return FALSE;
        }
        std::lock_guard const running(acting);
        received = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? Interruption::user
                                                                      : Interruption::termination;
        auto const act = std::exchange(pending, nullptr);
        // A second interruption must not wait for the function.
        locked.unlock();
        act();
    }
    if (event == CTRL_CLOSE_EVENT) {
        // See holdClose.
        Sleep(INFINITE);
    }
    return TRUE;
}

}  // namespace

struct InterruptHandler::State {};

InterruptHandler::InterruptHandler(void (*act)()) {
    std::lock_guard const locked(oneAtATime);
    pending = act;
    SetConsoleCtrlHandler(&notice, TRUE);
}

InterruptHandler::~InterruptHandler() {
    SetConsoleCtrlHandler(&notice, FALSE);
    {
        std::lock_guard const locked(oneAtATime);
        pending = nullptr;
    }
    std::lock_guard const ended(acting);
}

Interruption InterruptHandler::Received() const {
    return received;
}

void InterruptHandler::EndAtOnce(int exitStatus) {
    if (received != Interruption::none) {
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitStatus));
    }
}

void InterruptHandler::EndIfInterrupted() {
    std::lock_guard const locked(oneAtATime);
    if (received != Interruption::none) {
        // The exit status that the default handler sets.
        ExitProcess(STATUS_CONTROL_C_EXIT);
    }
}

}  // namespace sys::platform
