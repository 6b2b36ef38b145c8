#include "encap/platform/StandardStreams.h"

#include "encap/platform/Encoding.h"
#include "encap/platform/windows/WindowsHeaders.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace encap::platform {

// The arguments of main are in the user's code page, which has not every character.
std::vector<std::string> ProgramArguments(int, const char* const*)
{
    int count = 0;
    wchar_t** const list = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; list != nullptr && i < count; ++i) {
        arguments.push_back(WideToUtf8(list[i]));
    }
    LocalFree(list);
    return arguments;
}

struct StandardStreamsScope::Saved {
    UINT codePage; ///< of the console; 0: there is none
};

StandardStreamsScope::StandardStreamsScope()
    : m_saved(std::make_unique<Saved>(Saved{GetConsoleOutputCP()}))
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

StandardStreamsScope::~StandardStreamsScope()
{
    if (m_saved->codePage != 0) {
        SetConsoleOutputCP(m_saved->codePage);
    }
}

} // namespace encap::platform
