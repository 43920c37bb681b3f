#pragma once

namespace brindle {

/// The undefined behaviour sanitizer's check of an object's type opens a pipe of its own and takes a failure for a
/// wrong type: a test that leaves no descriptor free can't run under it.
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
#define BRINDLE_UNDER_SANITIZER 1
#endif
#endif
#ifdef BRINDLE_UNDER_SANITIZER
inline constexpr bool kSanitizerNeedsDescriptors = true;
#undef BRINDLE_UNDER_SANITIZER
#else
inline constexpr bool kSanitizerNeedsDescriptors = false;
#endif

} // namespace brindle
