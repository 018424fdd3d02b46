#pragma once

// Time limits in tests hold for a plain build; under AddressSanitizer the
// same code runs a few times slower.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr int SanitizerSlowdown = 3;
#else
inline constexpr int SanitizerSlowdown = 1;
#endif
