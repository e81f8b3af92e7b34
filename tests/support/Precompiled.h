// What nearly every test includes, parsed once for all test programs. Each test still includes what it uses.
#ifndef KELO_TESTS_SUPPORT_PRECOMPILED_H
#define KELO_TESTS_SUPPORT_PRECOMPILED_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#endif
