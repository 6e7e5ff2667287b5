// What nearly every test program reads, compiled once for all of them.
#ifndef ZQ_TEST_HEADERS_H
#define ZQ_TEST_HEADERS_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#endif
