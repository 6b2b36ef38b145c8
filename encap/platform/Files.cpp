#include "encap/platform/Files.h"

#include "encap/foundation/NumberText.h"
#include "encap/platform/Guid.h"
#include "encap/platform/ReplaceSteps.h"

namespace encap::platform {
namespace {

constexpr std::wstring_view kSeparators = L"/\\";

/// The steps that FailReplaceStep still counts down to on this thread; 0 when it is off.
thread_local int g_stepsToFailure = 0;

} // namespace

CString WithTrailingSeparator(CString directory)
{
    if (directory.empty() || kSeparators.find(directory.back()) == std::wstring_view::npos) {
        directory += PathSeparator();
    }
    return directory;
}

std::size_t FileNamePosition(std::wstring_view path)
{
    // npos + 1 is 0.
    return path.find_last_of(kSeparators) + 1;
}

bool ReplaceFileContent(const CString& path, std::string_view bytes)
{
    return TryReplaceFile(path, bytes) == Replacement::Done;
}

void FailReplaceStep(int step)
{
    g_stepsToFailure = step;
}

bool StepIsMadeToFail()
{
    return g_stepsToFailure > 0 && --g_stepsToFailure == 0;
}

CString NewTemporaryName(int attempt)
{
    const Guid guid = CreateGuid();
    return L".encap-" + FormatHexadecimal(guid.data1) + FormatHexadecimal(guid.data2) + L"-" +
           FormatInteger(attempt) + L".tmp";
}

} // namespace encap::platform
