#pragma once

namespace brindle {

/// Whether this is built with the sanitizers, under which a process takes many times as long to start.
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
#define BRINDLE_UNDER_SANITIZER 1
#endif
#endif
#ifdef BRINDLE_UNDER_SANITIZER
inline constexpr bool kIsSanitized = true;
#undef BRINDLE_UNDER_SANITIZER
#else
inline constexpr bool kIsSanitized = false;
#endif

/// The undefined behaviour sanitizer's check of an object's type opens a pipe of its own and takes a failure for a
/// wrong type: a test that leaves no descriptor free can't run under it.
inline constexpr bool kSanitizerNeedsDescriptors = kIsSanitized;

} // namespace brindle
