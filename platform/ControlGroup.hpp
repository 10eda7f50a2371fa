#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Platform {

/// Bytes of memory that the control groups of a process leave it, the tightest of them, or the
/// highest number if none of them sets a limit. What the file cache holds is free: the kernel takes
/// it back before it refuses anything.
///
/// Only Linux has control groups. See cgroup-v1/memory.rst and cgroup-v2.rst of its documentation.
///
/// @param membership  the contents of /proc/self/cgroup
/// @param root        where the file systems of control groups are mounted
std::uint64_t freeGroupMemory(std::string_view membership, const std::string& root);

}  // namespace Platform
