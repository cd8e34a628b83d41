// Load and save of a 24-megapixel JPEG next to plain libjpeg-turbo decoding and encoding of the
// same file in the same run (what djpeg and cjpeg do, without their file output).
#include "desktop_only/MediaLoading.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <jpeglib.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const std::string kPhoto = std::string(VANTREL_TESTDATA) + "/nikon_d5300_6000x4000.jpg";

std::vector<uint8_t> fileBytes(const std::string& path)
{
    std::vector<uint8_t> b;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        uint8_t buf[1 << 16];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
            b.insert(b.end(), buf, buf + n);
        std::fclose(f);
    }
    return b;
}

bool libjpegDecode(const std::vector<uint8_t>& jpeg, std::vector<uint8_t>& rgb, int& w, int& h)
{
    jpeg_decompress_struct cinfo;
    jpeg_error_mgr err;
    cinfo.err = jpeg_std_error(&err);
    jpeg_create_decompress(&cinfo);
    jpeg_mem_src(&cinfo, jpeg.data(), (unsigned long)jpeg.size());
    jpeg_read_header(&cinfo, TRUE);
    cinfo.out_color_space = JCS_RGB;
    jpeg_start_decompress(&cinfo);
    w = int(cinfo.output_width);
    h = int(cinfo.output_height);
    rgb.resize(size_t(w) * size_t(h) * 3);
    while (cinfo.output_scanline < cinfo.output_height) {
        JSAMPROW row = rgb.data() + size_t(cinfo.output_scanline) * size_t(w) * 3;
        jpeg_read_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_decompress(&cinfo);
    jpeg_destroy_decompress(&cinfo);
    return true;
}

void libjpegEncode(const std::vector<uint8_t>& rgb, int w, int h, const std::string& path)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    jpeg_compress_struct cinfo;
    jpeg_error_mgr err;
    cinfo.err = jpeg_std_error(&err);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, f);
    cinfo.image_width = JDIMENSION(w);
    cinfo.image_height = JDIMENSION(h);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, 85, TRUE);
    jpeg_start_compress(&cinfo, TRUE);
    while (cinfo.next_scanline < cinfo.image_height) {
        JSAMPROW row = const_cast<uint8_t*>(rgb.data()) + size_t(cinfo.next_scanline) * size_t(w) * 3;
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::fclose(f);
}

std::string scratch(const char* name)
{
    return "/tmp/vantrel_bench_" + std::to_string(getpid()) + name;
}

void BM_LoadMediaFile24MP(benchmark::State& state)
{
    for (auto _ : state) {
        FlexImageFloat image(100, 100, 4);
        LoadedMediaInfo info;
        if (!LoadMediaFile(image, kPhoto, &info))
            state.SkipWithError("test photo missing");
        benchmark::DoNotOptimize(image.data);
    }
}

void BM_LibjpegDecode24MP(benchmark::State& state)
{
    for (auto _ : state) {
        const std::vector<uint8_t> jpeg = fileBytes(kPhoto); // djpeg reads the file too
        std::vector<uint8_t> rgb;
        int w = 0, h = 0;
        if (jpeg.empty() || !libjpegDecode(jpeg, rgb, w, h))
            state.SkipWithError("test photo missing");
        benchmark::DoNotOptimize(rgb.data());
    }
}

void BM_SaveJpeg24MPQuality85(benchmark::State& state)
{
    FlexImageFloat image(100, 100, 3);
    LoadedMediaInfo info;
    if (!LoadMediaFile(image, kPhoto, &info)) {
        state.SkipWithError("test photo missing");
        return;
    }
    const std::string out = scratch("_save.jpg");
    for (auto _ : state)
        benchmark::DoNotOptimize(saveRenderedMediaFile(image, info, out, 85.0f));
    std::remove(out.c_str());
}

void BM_LibjpegEncode24MPQuality85(benchmark::State& state)
{
    std::vector<uint8_t> rgb;
    int w = 0, h = 0;
    const std::vector<uint8_t> jpeg = fileBytes(kPhoto);
    if (jpeg.empty() || !libjpegDecode(jpeg, rgb, w, h)) {
        state.SkipWithError("test photo missing");
        return;
    }
    const std::string out = scratch("_cjpeg.jpg");
    for (auto _ : state)
        libjpegEncode(rgb, w, h, out);
    std::remove(out.c_str());
}

} // namespace

BENCHMARK(BM_LoadMediaFile24MP)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_LibjpegDecode24MP)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_SaveJpeg24MPQuality85)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_LibjpegEncode24MPQuality85)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
