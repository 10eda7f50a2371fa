#include "selftest/SelfTest.hpp"
