#include "cli/CommandError.h"
#include "cli/FamilyChecks.h"
#include "cli/FamilyHost.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"
#include "tests/platform/TemporaryFolder.h"

#include <algorithm>
#include <fstream>

namespace encap::fuzz {
namespace {

using cli::Finding;

bool IsSame(const Finding& left, const Finding& right)
{
    return left.rule == right.rule && left.row == right.row && left.column == right.column &&
           left.language == right.language && left.message == right.message;
}

} // namespace

void RunChecks(std::string_view input)
{
    static const TemporaryFolder folder;
    static cli::FamilyHost host;
    const CString path = folder.File(L"family.xml");
    std::ofstream(folder.Native() / "family.xml", std::ios::binary)
        .write(input.data(), static_cast<std::streamsize>(input.size()));
    try {
        const std::vector<Finding> findings = cli::CheckFamilyFile(path, host);
        Require(std::ranges::none_of(findings, &CString::empty, &Finding::message),
                "a finding says what is wrong");
        Require(std::ranges::equal(findings, cli::CheckFamilyFile(path, host), IsSame),
                "a family that is checked again has the same findings");
    } catch (const cli::CommandError& error) {
        Require(*error.what() != '\0', "a file that is refused is told why");
    }
}

} // namespace encap::fuzz
