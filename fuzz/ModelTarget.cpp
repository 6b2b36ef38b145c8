#include "encap/platform/Encoding.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"
#include "tests/table/EditSequence.h"

#include <cstdio>

namespace encap::fuzz {

void RunModel(std::string_view input)
{
    constexpr int kMostSteps = 60;
    Choices choices(input);
    test::EditSequence sequence([&choices] { return uint32_t{choices.Byte()}; });
    for (int step = 0; step < kMostSteps && !choices.AtEnd(); ++step) {
        const CString differences = sequence.Step();
        if (!differences.empty()) {
            std::fprintf(stderr, "%s\n%s\n", platform::WideToUtf8(sequence.Log()).c_str(),
                         platform::WideToUtf8(differences).c_str());
        }
        Require(differences.empty(), "an edited family is what the model says");
    }
}

} // namespace encap::fuzz
