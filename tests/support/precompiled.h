// What nearly every test includes, compiled once a program. Each test still names what it uses, unless a
// header of its own suite brings it.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>
