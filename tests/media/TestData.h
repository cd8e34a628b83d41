#pragma once
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Path of a file in the shared photo folder, or "" (and the caller skips) when it is absent.
inline std::string testDataPath(const char* name)
{
    const std::string path = std::string(VANTREL_TESTDATA) + "/" + name;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        std::fclose(f);
        return path;
    }
    return {};
}

#define REQUIRE_TESTDATA(var, name)                                                                \
    const std::string var = testDataPath(name);                                                   \
    if (var.empty())                                                                               \
        GTEST_SKIP() << "test photo " << name << " not found under " << VANTREL_TESTDATA

inline std::vector<uint8_t> readFileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
