#include "fuzz/FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    FuzzTargets::jpegBands(FuzzTargets::view(data, size));
    return 0;
}
