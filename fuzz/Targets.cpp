#include "fuzz/Targets.h"

#include <algorithm>

namespace encap::fuzz {
namespace {

constexpr Target kTargets[] = {
    {"family", RunFamily},     {"checks", RunChecks},     {"strings", RunStrings},
    {"edits", RunEdits},       {"model", RunModel},       {"xpath", RunXPath},
    {"formulas", RunFormulas}, {"language", RunLanguage}, {"cache", RunCache},
    {"toc", RunToc},           {"images", RunImages},
};

} // namespace

std::span<const Target> AllTargets()
{
    return kTargets;
}

const Target* FindTarget(std::string_view name)
{
    const auto* found = std::ranges::find(kTargets, name, &Target::name);
    return found != std::end(kTargets) ? found : nullptr;
}

} // namespace encap::fuzz
