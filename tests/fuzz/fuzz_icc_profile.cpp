#include "fuzz/FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    FuzzTargets::iccProfile(FuzzTargets::view(data, size));
    return 0;
}
