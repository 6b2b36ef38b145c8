#include "fuzz/Targets.h"

#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

// One libFuzzer program over the target that ENCAP_FUZZ_TARGET names.

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    GTEST_FLAG_SET(throw_on_failure, true); // the model's own expectations
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const encap::fuzz::Target* const target = encap::fuzz::FindTarget(ENCAP_FUZZ_TARGET);
    target->run({reinterpret_cast<const char*>(data), size});
    return 0;
}
