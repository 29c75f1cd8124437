#pragma once

namespace vexa::test {

/// How much work a test may give itself: sanitizers and unoptimised builds are slow.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
constexpr bool kIsSlowBuild = true;
#else
constexpr bool kIsSlowBuild = false;
#endif

}  // namespace vexa::test
