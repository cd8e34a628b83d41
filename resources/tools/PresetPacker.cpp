// Packs a folder of filter files into a filter archive for the resource bundle:
//   vantrel_presetpack <out.mvr> <folder>
// Each file of the folder becomes a FILE record; each subfolder becomes a nested archive named
// "<subfolder>.mvr", which the program unpacks into a folder of the same name; an empty folder
// becomes one EMTY record. Entries go in byte order of their names, so the output is the same on
// every machine. Integers are little-endian u32.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

void putU32(std::string& out, uint64_t value)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(char((value >> (8 * i)) & 0xff));
}

bool putFile(std::string& out, const std::string& name, const std::string& payload)
{
    if (payload.size() > 0xffffffffu || name.size() > 4096)
        return false;
    out += "FILE";
    putU32(out, name.size());
    out += name;
    putU32(out, payload.size());
    out += payload;
    return true;
}

bool readWhole(const fs::path& path, std::string& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

bool packFolder(const fs::path& folder, std::string& out, int depth)
{
    if (depth > 4) {
        std::fprintf(stderr, "presetpack: %s nests too deep\n", folder.c_str());
        return false;
    }
    std::error_code ec;
    std::vector<fs::directory_entry> entries;
    for (const auto& e : fs::directory_iterator(folder, ec))
        entries.push_back(e);
    if (ec) {
        std::fprintf(stderr, "presetpack: can't list %s\n", folder.c_str());
        return false;
    }
    std::sort(entries.begin(), entries.end(),
        [](const auto& a, const auto& b) { return a.path().filename().string() < b.path().filename().string(); });
    if (entries.empty()) {
        out += "EMTY";
        return true;
    }
    for (const auto& e : entries) {
        const std::string leaf = e.path().filename().string();
        if (leaf.empty() || leaf[0] == '.')
            continue; // editor droppings, never content
        std::string payload;
        if (e.is_directory()) {
            if (!packFolder(e.path(), payload, depth + 1) || !putFile(out, leaf + ".mvr", payload))
                return false;
        } else if (e.is_regular_file()) {
            if (!readWhole(e.path(), payload) || !putFile(out, leaf, payload)) {
                std::fprintf(stderr, "presetpack: can't read %s\n", e.path().c_str());
                return false;
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: vantrel_presetpack <out.mvr> <folder>\n");
        return 2;
    }
    std::string archive;
    if (!packFolder(argv[2], archive, 0))
        return 1;
    const fs::path out(argv[1]);
    const fs::path temp = out.string() + ".part";
    {
        std::ofstream file(temp, std::ios::binary | std::ios::trunc);
        if (!file.write(archive.data(), std::streamsize(archive.size()))) {
            std::fprintf(stderr, "presetpack: can't write %s\n", temp.c_str());
            return 1;
        }
    }
    std::error_code ec;
    fs::rename(temp, out, ec);
    if (ec) {
        std::fprintf(stderr, "presetpack: can't write %s\n", out.c_str());
        return 1;
    }
    return 0;
}
