/// Rounds levels and percents after each step, in all functions that follow; the last include of the sources of both
/// volume controllers, so that it covers their own functions only.
///
/// A processor that can multiply and add in one operation rounds once instead of twice, and a percent may then differ
/// by one from that of another processor. The source decides, not the options of each build that compiles it: g++ and
/// MSVC obey whatever the options allow, clang unless -ffp-contract=fast is given.
#pragma once

#if defined(__clang__)
#pragma STDC FP_CONTRACT OFF
#elif defined(__GNUC__)
#pragma GCC optimize("fp-contract=off") // g++ ignores STDC FP_CONTRACT
#elif defined(_MSC_VER)
#pragma fp_contract(off)
#endif
