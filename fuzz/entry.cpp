// The entry of libFuzzer for the target that OVW_FUZZ_TARGET names.

#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovw::fuzz::OVW_FUZZ_TARGET({data, size});
    return 0;
}
