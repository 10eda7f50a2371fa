#pragma once
namespace SelfTest {
inline void runAll() {}
}  // namespace SelfTest
