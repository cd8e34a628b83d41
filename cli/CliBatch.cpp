#include "cli/CliBatch.h"

#include "desktop_only/MediaLoading.h"
#include "desktop_only/MediaProbe.h"
#include "desktop_only/RenderAndSave.h"
#include "media/MediaFormats.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ostream>
#include <thread>
#include <unistd.h>

namespace {

QString q(const std::string& s)
{
    return QFile::decodeName(s.c_str());
}

std::string s8(const QString& s)
{
    return QFile::encodeName(s).toStdString();
}

std::string clockText(double seconds)
{
    const long total = seconds < 0.0 ? 0L : static_cast<long>(seconds + 0.5);
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%ld:%02ld:%02ld", total / 3600, (total / 60) % 60, total % 60);
    return buffer;
}

// Shared by the workers: counts, the clock and the one stream lock.
class CliProgress {
public:
    CliProgress(size_t total, std::ostream& out, std::ostream& err, bool terminal)
        : total_(total), out_(out), err_(err), terminal_(terminal), start_(std::chrono::steady_clock::now())
    {
    }

    void finished(const CliRenderItem& item, bool ok, const std::string& error)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        ++done_;
        if (!ok) {
            if (terminal_)
                out_ << "\r\033[K" << std::flush;
            err_ << "vantrel-cli: " << item.input << ": " << error << std::endl;
        }
        if (terminal_) {
            drawBar();
            return;
        }
        if (ok)
            out_ << "[" << done_ << "/" << total_ << "] " << item.input << " -> " << item.output << std::endl;
    }

    void end()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (terminal_ && total_ > 0)
            out_ << std::endl;
    }

private:
    void drawBar()
    {
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
        const double rate = seconds > 0.0 ? static_cast<double>(done_) / seconds : 0.0;
        const double left = rate > 0.0 ? static_cast<double>(total_ - done_) / rate : 0.0;
        constexpr size_t width = 30;
        const size_t filled = total_ ? done_ * width / total_ : width;
        char rateText[32];
        std::snprintf(rateText, sizeof rateText, "%.2f", rate);
        out_ << "\r[" << std::string(filled, '#') << std::string(width - filled, '.') << "] " << done_ << "/"
             << total_ << " files  " << rateText << " files/s  " << clockText(left) << " left" << std::flush;
    }

    std::mutex mutex_;
    size_t total_;
    size_t done_ = 0;
    std::ostream& out_;
    std::ostream& err_;
    bool terminal_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace

bool parseOutputType(const std::string& word, CliOutputType& type)
{
    static const struct {
        const char* word;
        const char* extension;
        int32_t bits;
    } table[] = { { "jpg", "jpg", 8 },   { "png", "png", 8 },     { "tif", "tif", 8 },
                  { "png16", "png", 16 }, { "tif16", "tif", 16 }, { "vni", "vni", 8 } };
    for (const auto& row : table) {
        if (word == row.word) {
            type.extension = row.extension;
            type.bits = row.bits;
            return true;
        }
    }
    return false;
}

std::vector<std::string> batchInputFiles(const std::string& folder)
{
    std::vector<std::string> files;
    const QDir dir(q(folder));
    const QFileInfoList entries = dir.entryInfoList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        const std::string path = s8(entry.filePath());
        if (IsLoadableImagePath(path) || isNativeImagePath(path))
            files.push_back(path);
    }
    return files;
}

std::string batchOutputPath(const std::string& folder, const std::string& inputPath, const std::string& postfix,
                            const std::string& extension)
{
    std::string name = inputPath;
    const size_t slash = name.find_last_of('/');
    if (slash != std::string::npos)
        name.erase(0, slash + 1);
    const size_t dot = name.find_last_of('.');
    if (dot != std::string::npos && dot > 0)
        name.erase(dot);
    std::string base = folder;
    while (base.size() > 1 && base.back() == '/')
        base.pop_back();
    return base + "/" + name + postfix + "." + extension;
}

bool renderFileTo(const CliRenderItem& item, const std::vector<ImageMod*>& mods, const CliRenderSettings& settings,
                  std::string& error)
{
    if (QFileInfo(q(item.input)).canonicalFilePath() == QFileInfo(q(item.output)).canonicalFilePath()
        && QFileInfo::exists(q(item.output))) {
        error = "the output would overwrite the source";
        return false;
    }
    FlexImageFloat source(1, 1, 4);
    LoadedMediaInfo info;
    MediaLoadStatus status = MediaLoadStatus::Ok;
    if (!LoadMediaFile(source, item.input, &info, &status)) {
        switch (status) {
        case MediaLoadStatus::UnsupportedType: error = "not a supported image type"; break;
        case MediaLoadStatus::TooLarge: error = "the image is too large"; break;
        default: error = "can't load the file (missing, unreadable or damaged)"; break;
        }
        return false;
    }
    const int32_t flags = item.bits == 16 ? kRenderSave16Bit : item.bits > 0 ? kRenderSave8Bit : kRenderSaveDepthFromFormat;
    const bool sized = settings.width > 0 && settings.height > 0;
    if (!renderAndSaveTaking(source, info, item.output, sized ? settings.width : 0, sized ? settings.height : 0, mods, flags,
                             settings.quality)) {
        error = "can't render or write " + item.output;
        return false;
    }
    return true;
}

uint64_t estimateRenderBytes(int64_t width, int64_t height)
{
    // Four float channels for source, destination and a scratch image (48 bytes), a 16-bit RGBA
    // decoded bitmap and the 16-bit quantised copy for the writer (16 bytes).
    const int64_t pixels = std::max<int64_t>(width, 1) * std::max<int64_t>(height, 1);
    return static_cast<uint64_t>(pixels) * 64u;
}

uint64_t defaultMemoryBudget()
{
    uint64_t available = 0;
    if (FILE* f = std::fopen("/proc/meminfo", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, f)) {
            unsigned long long kb = 0;
            if (std::sscanf(line, "MemAvailable: %llu kB", &kb) == 1) {
                available = kb * 1024ull;
                break;
            }
        }
        std::fclose(f);
    }
    if (available == 0) {
        const long pages = sysconf(_SC_AVPHYS_PAGES);
        const long size = sysconf(_SC_PAGESIZE);
        if (pages > 0 && size > 0)
            available = static_cast<uint64_t>(pages) * static_cast<uint64_t>(size);
    }
    return std::max<uint64_t>(available / 4 * 3, 256ull << 20);
}

void CliMemoryGate::acquire(uint64_t bytes)
{
    std::unique_lock<std::mutex> lock(mutex_);
    freed_.wait(lock, [&] { return reserved_ == 0 || reserved_ + bytes <= budget_; });
    reserved_ += bytes;
    peak_ = std::max(peak_, reserved_);
}

void CliMemoryGate::release(uint64_t bytes)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        reserved_ -= std::min(bytes, reserved_);
    }
    freed_.notify_all();
}

uint64_t CliMemoryGate::peakReserved() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return peak_;
}

int32_t renderItems(const std::vector<CliRenderItem>& items, const std::vector<ImageMod*>& mods,
                    const CliRenderSettings& settings, std::ostream& out, std::ostream& err, bool terminal)
{
    const uint64_t budget = settings.memoryBudget ? settings.memoryBudget : defaultMemoryBudget();
    CliMemoryGate gate(budget);
    CliProgress progress(items.size(), out, err, terminal);
    std::atomic<size_t> next { 0 };
    std::atomic<int32_t> failed { 0 };

    auto worker = [&] {
        for (size_t i = next++; i < items.size(); i = next++) {
            const CliRenderItem& item = items[i];
            // The header gives the size; a file no reader takes is charged the whole budget, so
            // it runs alone until its load fails.
            int32_t w = 0, h = 0, c = 0;
            uint64_t bytes = budget;
            if (probeMediaSize(item.input, w, h, c)) {
                const int32_t ow = settings.width > 0 && settings.height > 0 ? std::max(w, settings.width) : w;
                const int32_t oh = settings.width > 0 && settings.height > 0 ? std::max(h, settings.height) : h;
                bytes = estimateRenderBytes(ow, oh);
            }
            gate.acquire(bytes);
            std::string error;
            const bool ok = renderFileTo(item, mods, settings, error);
            gate.release(bytes);
            if (!ok)
                ++failed;
            progress.finished(item, ok, error);
        }
    };

    const size_t jobs = std::min<size_t>(static_cast<size_t>(std::max(settings.jobs, 1)), std::max<size_t>(items.size(), 1));
    std::vector<std::thread> threads;
    for (size_t j = 1; j < jobs; ++j)
        threads.emplace_back(worker);
    worker();
    for (std::thread& t : threads)
        t.join();
    progress.end();
    return failed.load();
}
