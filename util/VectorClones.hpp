#pragma once

/// UTIL_VECTOR_CLONES in front of a function makes two versions of it, one for every processor and
/// one for those with wider vectors, of which the loader picks the right one. It is for plain loops
/// over bytes that compilers vectorise by themselves; where a compiler or platform lacks it the
/// plain version remains. Sanitizers start too late for what the loader has to call.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__SANITIZE_ADDRESS__)
#if defined(__has_feature)
#if !__has_feature(address_sanitizer)
#define UTIL_VECTOR_CLONES __attribute__((target_clones("default", "avx2")))
#endif
#else
#define UTIL_VECTOR_CLONES __attribute__((target_clones("default", "avx2")))
#endif
#endif
#ifndef UTIL_VECTOR_CLONES
#define UTIL_VECTOR_CLONES
#endif
