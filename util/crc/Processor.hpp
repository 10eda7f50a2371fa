#pragma once

/// Which instructions beyond those of every processor of its kind a source may use in functions of
/// their own, to be called after they were detected at run time: TESSARON_ON_X86 or
/// TESSARON_ON_ARM, or neither.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define TESSARON_ON_X86
// Linux tells programs what the processor has. Clang 14 declares the intrinsics only to sources
// that are compiled for such processors as a whole.
#elif defined(__AARCH64EL__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__)
#define TESSARON_ON_ARM
#endif
