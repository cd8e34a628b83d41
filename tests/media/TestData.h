#pragma once
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

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

inline void writeFileBytes(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    if (!bytes.empty())
        std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
}

// A folder that is removed with everything in it when the test ends.
struct TempFolder {
    QTemporaryDir dir;
    std::string path(const char* name) const { return dir.filePath(name).toStdString(); }
    int entryCount() const { return int(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot).size()); }
};
