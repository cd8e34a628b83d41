#include "desktop_only/MediaCodec.h"

#include "core/FlexImage.h"
#include "core/SafeFileWriter.h"
#include "media/ColorTransformSet.h"
#include "media/CompactImage.h"
#include "media/LargeBuffer.h"
#include "media/MediaFormats.h"
#include "media/MediaMemoryCeiling.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <exiv2/exiv2.hpp>
#include <exiv2/matroskavideo.hpp>
#include <exiv2/quicktimevideo.hpp>
#include <exiv2/riffvideo.hpp>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void quietExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        // The XMP toolkit's own start-up isn't thread-safe; loads may run on several workers.
        Exiv2::XmpParser::initialize();
    });
}

// Exiv2's three collections behind the program's keyed-value interface.
class Exiv2MediaProperties : public MediaProperties {
public:
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    Exiv2::XmpData xmp;

    std::unique_ptr<MediaProperties> clone() const override
    {
        auto copy = std::make_unique<Exiv2MediaProperties>();
        copy->exif = exif;
        copy->iptc = iptc;
        copy->xmp = xmp;
        return copy;
    }
    bool isEmpty() const override { return exif.empty() && iptc.empty() && xmp.empty(); }
    bool has(const std::string& key) const override { return !value(key).empty() || count(key) > 0; }
    std::string value(const std::string& key) const override
    {
        try {
            if (key.rfind("Exif.", 0) == 0)
                return findIn(exif, key);
            if (key.rfind("Iptc.", 0) == 0)
                return findIn(iptc, key);
            if (key.rfind("Xmp.", 0) == 0)
                return findIn(xmp, key);
        } catch (...) {
        }
        return {};
    }
    std::vector<std::string> keys() const override
    {
        std::vector<std::string> all;
        try {
            for (const auto& d : exif)
                all.push_back(d.key());
            for (const auto& d : iptc)
                all.push_back(d.key());
            for (const auto& d : xmp)
                all.push_back(d.key());
        } catch (...) {
        }
        return all;
    }
    bool remove(const std::string& key) override
    {
        try {
            if (key.rfind("Exif.", 0) == 0)
                return eraseFrom(exif, key);
            if (key.rfind("Iptc.", 0) == 0)
                return eraseFrom(iptc, key);
            if (key.rfind("Xmp.", 0) == 0)
                return eraseFrom(xmp, key);
        } catch (...) {
        }
        return false;
    }

private:
    template <typename Data>
    static std::string findIn(const Data& data, const std::string& key)
    {
        for (const auto& d : data)
            if (d.key() == key)
                return d.toString();
        return {};
    }
    template <typename Data>
    static bool eraseFrom(Data& data, const std::string& key)
    {
        bool any = false;
        for (auto it = data.begin(); it != data.end();) {
            if (it->key() == key) {
                it = data.erase(it);
                any = true;
            } else {
                ++it;
            }
        }
        return any;
    }
    int count(const std::string& key) const
    {
        int n = 0;
        for (const auto& d : exif)
            n += d.key() == key;
        for (const auto& d : iptc)
            n += d.key() == key;
        for (const auto& d : xmp)
            n += d.key() == key;
        return n;
    }
};

std::string profileDescription(const std::vector<uint8_t>& icc)
{
    if (icc.empty())
        return {};
    cmsHPROFILE p = cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size()));
    if (!p)
        return {};
    char text[256] = {0};
    cmsGetProfileInfoASCII(p, cmsInfoDescription, "en", "US", text, sizeof text);
    cmsCloseProfile(p);
    return text;
}

float srgbEncode(float linear)
{
    if (!(linear > 0.0f))
        return 0.0f;
    if (linear >= 1.0f)
        return 1.0f;
    return linear <= 0.0031308f ? linear * 12.92f : 1.055f * std::pow(linear, 1.0f / 2.4f) - 0.055f;
}

struct ReadLayout {
    int32_t fileChannels = 3;
    int32_t alphaChannel = -1;
    bool cmyk = false;
    bool grey = false;
};

ReadLayout readLayoutOf(const OIIO::ImageSpec& imageSpec)
{
    ReadLayout l;
    l.fileChannels = imageSpec.nchannels;
    l.alphaChannel = imageSpec.alpha_channel;
    auto name = [&](int i) { return i < int(imageSpec.channelnames.size()) ? imageSpec.channelnames[i] : std::string(); };
    if (imageSpec.nchannels >= 4 && name(0) == "C" && name(1) == "M" && name(2) == "Y" && name(3) == "K")
        l.cmyk = true;
    else if (imageSpec.nchannels <= 2)
        l.grey = true;
    return l;
}

// Grey, grey with alpha and CMYK become 8-bit RGB; alpha is drawn over black and dropped.
bool redrawToRgb8(const std::vector<float>& src, int32_t w, int32_t h, const ReadLayout& l, MediaBitmap& bmp)
{
    bmp.data = std::malloc(size_t(w) * size_t(h) * 3);
    if (!bmp.data)
        return false;
    bmp.width = w;
    bmp.height = h;
    bmp.bitsPerComponent = 8;
    bmp.bitsPerPixel = 24;
    bmp.bytesPerRow = int64_t(w) * 3;
    bmp.alphaInfo = MediaAlphaNone;
    uint8_t* out = static_cast<uint8_t*>(bmp.data);
    const int32_t c = l.fileChannels;
    const size_t n = size_t(w) * size_t(h);
    for (size_t i = 0; i < n; ++i) {
        const float* px = src.data() + i * size_t(c);
        float rgb[3];
        float alpha = 1.0f;
        if (l.cmyk) {
            const float k = 1.0f - px[3];
            rgb[0] = (1.0f - px[0]) * k;
            rgb[1] = (1.0f - px[1]) * k;
            rgb[2] = (1.0f - px[2]) * k;
            if (l.alphaChannel >= 4)
                alpha = px[l.alphaChannel];
        } else {
            rgb[0] = rgb[1] = rgb[2] = px[0];
            if (l.alphaChannel == 1 || (c == 2 && l.alphaChannel < 0))
                alpha = px[1];
        }
        for (int k = 0; k < 3; ++k) {
            const float v = std::clamp(rgb[k] * std::clamp(alpha, 0.0f, 1.0f), 0.0f, 1.0f);
            out[i * 3 + size_t(k)] = uint8_t(v * 255.0f + 0.5f);
        }
    }
    return true;
}

// Float RGB(A) to 16-bit: premultiplied data divided first, linear data through the sRGB curve.
bool floatToRgb16(const std::vector<float>& src, int32_t w, int32_t h, int32_t c, bool hasAlpha, bool premultiplied,
                  bool linear, MediaBitmap& bmp)
{
    const int32_t spp = hasAlpha ? 4 : 3;
    bmp.data = std::malloc(size_t(w) * size_t(h) * size_t(spp) * 2);
    if (!bmp.data)
        return false;
    bmp.width = w;
    bmp.height = h;
    bmp.bitsPerComponent = 16;
    bmp.bitsPerPixel = 16 * spp;
    bmp.bytesPerRow = int64_t(w) * spp * 2;
    bmp.alphaInfo = hasAlpha ? MediaAlphaLast : MediaAlphaNone;
    uint16_t* out = static_cast<uint16_t*>(bmp.data);
    const size_t n = size_t(w) * size_t(h);
    for (size_t i = 0; i < n; ++i) {
        const float* px = src.data() + i * size_t(c);
        const float a = hasAlpha ? px[3] : 1.0f;
        for (int k = 0; k < 3; ++k) {
            float v = px[k];
            if (premultiplied)
                v = a > 0.0f ? v / a : 0.0f;
            v = linear ? srgbEncode(v) : std::clamp(v, 0.0f, 1.0f);
            if (!(v == v))
                v = 0.0f;
            out[i * size_t(spp) + size_t(k)] = uint16_t(v * 65535.0f + 0.5f);
        }
        if (hasAlpha)
            out[i * size_t(spp) + 3] = uint16_t(std::clamp(a, 0.0f, 1.0f) * 65535.0f + 0.5f);
    }
    return true;
}

MediaCodecStatus decodePixels(const std::string& path, MediaDecoded& out)
{
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    auto in = OIIO::ImageInput::open(path, &config);
    if (!in) {
        OIIO::geterror(); // clear the thread's message
        return MediaCodecStatus::CantOpen;
    }
    const OIIO::ImageSpec imageSpec = in->spec();
    out.formatName = in->format_name();
    const int32_t w = imageSpec.width, h = imageSpec.height;
    if (w < 1 || h < 1 || imageSpec.nchannels < 1 || imageSpec.depth > 1) {
        in->close();
        return MediaCodecStatus::CantOpen;
    }
    // Refuse what the float copy could not address, before any pixel buffer exists.
    if (!FlexImageFloat::sizeFits(w, h, 4) || int64_t(w) * h * imageSpec.nchannels > int64_t(0x7fffffff) ||
        !mediaSizeWithinMemoryCeiling(w, h)) {
        in->close();
        return MediaCodecStatus::TooLarge;
    }
    if (const OIIO::ParamValue* icc = imageSpec.find_attribute("ICCProfile")) {
        const uint8_t* bytes = static_cast<const uint8_t*>(icc->data());
        out.iccProfile.assign(bytes, bytes + icc->type().size() * size_t(icc->nvalues()));
        out.profileName = profileDescription(out.iccProfile);
    }
    const ReadLayout layout = readLayoutOf(imageSpec);
    const bool unassociated = imageSpec.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
    const OIIO::TypeDesc::BASETYPE base = OIIO::TypeDesc::BASETYPE(imageSpec.format.basetype);
    const bool isFloat = base == OIIO::TypeDesc::HALF || base == OIIO::TypeDesc::FLOAT || base == OIIO::TypeDesc::DOUBLE;
    const bool rawFile = out.formatName == "raw";
    const bool wide = rawFile || (!isFloat && imageSpec.format.size() > 1);
    const int32_t c = imageSpec.nchannels;

    if (layout.grey || layout.cmyk || isFloat) {
        std::vector<float> pixels(size_t(w) * size_t(h) * size_t(c));
        const bool ok = in->read_image(0, 0, 0, c, OIIO::TypeDesc::FLOAT, pixels.data());
        in->close();
        if (!ok) {
            OIIO::geterror();
            return MediaCodecStatus::ReadFailed;
        }
        if (layout.grey || layout.cmyk) {
            out.sourceIsRgb = false;
            return redrawToRgb8(pixels, w, h, layout, out.bitmap) ? MediaCodecStatus::Ok : MediaCodecStatus::ReadFailed;
        }
        const bool hasAlpha = c >= 4 && layout.alphaChannel == 3;
        const std::string space = imageSpec.get_string_attribute("oiio:ColorSpace");
        const bool linear = out.formatName == "openexr" || out.formatName == "hdr"
            || !(space == "sRGB" || space == "srgb");
        return floatToRgb16(pixels, w, h, c, hasAlpha, hasAlpha && !unassociated, linear, out.bitmap)
            ? MediaCodecStatus::Ok
            : MediaCodecStatus::ReadFailed;
    }

    const bool hasAlpha = c >= 4 && layout.alphaChannel == 3;
    const int32_t spp = hasAlpha ? 4 : 3;
    const size_t sampleBytes = wide ? 2 : 1;
    MediaBitmap& bmp = out.bitmap;
    bmp.data = std::malloc(size_t(w) * size_t(h) * size_t(spp) * sampleBytes);
    if (!bmp.data) {
        in->close();
        return MediaCodecStatus::TooLarge;
    }
    adviseLargeBuffer(bmp.data, size_t(w) * size_t(h) * size_t(spp) * sampleBytes);
    bmp.width = w;
    bmp.height = h;
    bmp.bitsPerComponent = wide ? 16 : 8;
    bmp.bitsPerPixel = bmp.bitsPerComponent * spp;
    bmp.bytesPerRow = int64_t(w) * spp * int64_t(sampleBytes);
    bmp.alphaInfo = hasAlpha ? (unassociated ? MediaAlphaLast : MediaAlphaPremultipliedLast) : MediaAlphaNone;
    const bool ok = in->read_image(0, 0, 0, spp, wide ? OIIO::TypeDesc::UINT16 : OIIO::TypeDesc::UINT8, bmp.data);
    in->close();
    if (!ok) {
        OIIO::geterror();
        std::free(bmp.release());
        return MediaCodecStatus::ReadFailed;
    }
    return MediaCodecStatus::Ok;
}

constexpr int kAsfType = 24;

std::unique_ptr<MediaProperties> readProperties(const std::string& path, int64_t& width, int64_t& height)
{
    quietExiv2();
    // The metadata reader takes a photo in a movie-style box container (HEIC) for a movie, finds
    // no photo metadata there, and can spend minutes on a damaged box size: leave such files to
    // the decoder.
    switch (Exiv2::ImageFactory::getType(path)) {
    case Exiv2::ImageType::qtime:
    case Exiv2::ImageType::riff:
    case Exiv2::ImageType::mkv:
    case kAsfType: // its header does not compile on its own
        return nullptr;
    default:
        break;
    }
    auto image = Exiv2::ImageFactory::open(path);
    if (!image.get())
        return nullptr;
    image->readMetadata();
    width = image->pixelWidth();
    height = image->pixelHeight();
    auto props = std::make_unique<Exiv2MediaProperties>();
    props->exif = image->exifData();
    props->iptc = image->iptcData();
    props->xmp = image->xmpData();
    if (props->isEmpty())
        return nullptr;
    return props;
}

} // namespace

std::unique_ptr<MediaProperties> readMediaProperties(const std::string& path)
{
    int64_t w = 0, h = 0;
    try {
        return readProperties(path, w, h);
    } catch (...) {
        return nullptr;
    }
}

namespace {

// Metadata and the header's pixel size, read before any decoder runs: some decoders reserve
// memory for the whole image as soon as they open it.
std::unique_ptr<MediaProperties> readPropertiesAndSize(const std::string& path, int64_t& width, int64_t& height)
{
    try {
        return readProperties(path, width, height);
    } catch (...) {
        return nullptr;
    }
}

// The frame size from a JPEG's SOF segment, walking the segments from the start; false when the
// file is no JPEG or the walk finds no frame. Independent of the metadata reader, which gives up on
// damaged EXIF, while the JPEG library would still set up a progressive frame of any size (for a
// forged 64250 x 64250 header, gigabytes of coefficient buffers) before we could look at it.
bool jpegFrameSize(const std::string& path, int64_t& width, int64_t& height)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        return false;
    bool found = false;
    uint8_t b[9];
    if (std::fread(b, 1, 2, f) == 2 && b[0] == 0xFF && b[1] == 0xD8) {
        for (int segments = 0; segments < 4096; ++segments) {
            // Like the JPEG library, skip stray bytes up to the next marker: a wrong segment
            // length does not stop it from finding the frame.
            int c = std::fgetc(f);
            while (c != EOF && c != 0xFF)
                c = std::fgetc(f);
            while (c == 0xFF) // fill bytes
                c = std::fgetc(f);
            if (c == EOF)
                break;
            const uint8_t marker = uint8_t(c);
            if (marker == 0x00 || marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
                continue; // no length
            if (marker == 0xD9 || marker == 0xDA)
                break; // end or scan data before any frame
            if (std::fread(b, 1, 2, f) != 2)
                break;
            const long length = long(b[0]) << 8 | b[1];
            if (length < 2)
                break;
            const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
            if (frame) {
                if (std::fread(b, 1, 5, f) == 5) {
                    height = int64_t(b[1]) << 8 | b[2];
                    width = int64_t(b[3]) << 8 | b[4];
                    found = true;
                }
                break;
            }
            if (std::fseek(f, length - 2, SEEK_CUR) != 0)
                break;
        }
    }
    std::fclose(f);
    return found;
}

bool isHeifPath(const std::string& path)
{
    const std::string ext = mediaPathExtension(path);
    return ext == "heic" || ext == "heif" || ext == "avif";
}

} // namespace

MediaCodecStatus decodeMediaFile(const std::string& path, MediaDecoded& out, bool withProperties)
{
    // HEIF readers apply the container's rotation themselves, and their EXIF repeats it.
    const bool readerTurns = isHeifPath(path);
    int64_t headerWidth = 0, headerHeight = 0;
    std::unique_ptr<MediaProperties> props =
        readerTurns ? nullptr : readPropertiesAndSize(path, headerWidth, headerHeight);
    const auto tooLarge = [](int64_t w, int64_t h) {
        return w > 0 && h > 0 && (!FlexImageFloat::sizeFits(w, h, 4) || !mediaSizeWithinMemoryCeiling(w, h));
    };
    if (tooLarge(headerWidth, headerHeight))
        return MediaCodecStatus::TooLarge;
    int64_t frameWidth = 0, frameHeight = 0;
    if (jpegFrameSize(path, frameWidth, frameHeight) && tooLarge(frameWidth, frameHeight))
        return MediaCodecStatus::TooLarge;
    MediaCodecStatus status = MediaCodecStatus::CantOpen;
    try {
        status = decodePixels(path, out);
    } catch (...) {
        std::free(out.bitmap.release());
        return MediaCodecStatus::CantOpen;
    }
    if (status != MediaCodecStatus::Ok)
        return status;
    if (out.formatName == "heif")
        props.reset();
    out.orientation = mediaPropertiesOrientation(props.get());
    if (withProperties)
        out.properties = std::move(props);
    return status;
}

namespace {

// The JPEG writer of OpenImageIO 2.4 garbles the last segment of a profile that needs many APP2
// segments, so JPEG profiles are written here instead.
bool profileGoesThroughExiv2(const std::string& path)
{
    const std::string ext = mediaPathExtension(path);
    return ext == "jpg" || ext == "jpeg";
}

bool writeProperties(const std::string& path, const MediaProperties* properties, const std::vector<uint8_t>& icc)
{
    const auto* props = dynamic_cast<const Exiv2MediaProperties*>(properties);
    const bool withProps = props && !props->isEmpty();
    if (!withProps && icc.empty())
        return true;
    quietExiv2();
    auto image = Exiv2::ImageFactory::open(path);
    if (!image.get())
        return false;
    image->readMetadata(); // keeps the profile the pixel writer embedded
    if (withProps) {
        // The embedded preview shows the source as it was (and the way it was turned): drop it.
        Exiv2::ExifData exif = props->exif;
        Exiv2::ExifThumb(exif).erase();
        image->setExifData(exif);
        image->setIptcData(props->iptc);
        image->setXmpData(props->xmp);
    }
    if (!icc.empty()) {
        Exiv2::DataBuf buf(icc.data(), long(icc.size()));
        image->setIccProfile(buf, true);
    }
    image->writeMetadata();
    return true;
}

// Writers that take an I/O proxy encode into memory, and the bytes reach the disk through file:
// the JPEG library ends the whole process when a write to its file fails (a full disk), and
// here a failed write is just a failed save.
bool writePixels(const MediaEncodeRequest& req, SafeFileWriter& file)
{
    const std::string& tmp = file.temporaryPath();
    const CompactImage& img = *req.image;
    auto out = OIIO::ImageOutput::create(req.path);
    if (!out) {
        OIIO::geterror();
        return false;
    }
    const int32_t fileChannels = (img.channels == 4 && !out->supports("alpha")) ? 3 : img.channels;
    const OIIO::TypeDesc type = img.is16Bit ? OIIO::TypeDesc::UINT16 : OIIO::TypeDesc::UINT8;
    OIIO::ImageSpec imageSpec(img.width, img.height, fileChannels, type);
    // Alpha is declared associated although the samples are not, as the program always has: a PNG
    // writer divides translucent colours by alpha on the way out. Opaque pixels are unaffected.
    if (fileChannels == 4)
        imageSpec.alpha_channel = 3;
    const int quality = int(std::lround(std::clamp(req.quality, 0.0f, 100.0f)));
    imageSpec.attribute("CompressionQuality", std::max(quality, 1));
    if (mediaPathExtension(req.path) == "jpg" || mediaPathExtension(req.path) == "jpeg")
        imageSpec.attribute("Compression", "jpeg:" + std::to_string(std::max(quality, 1)));
    if (!req.iccProfile.empty() && isRgbIccProfile(req.iccProfile) && !profileGoesThroughExiv2(req.path))
        imageSpec.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, int(req.iccProfile.size())),
                       req.iccProfile.data());
    const OIIO::stride_t xstride = OIIO::stride_t(img.channels * img.bytesPerSample());
    std::vector<unsigned char> encoded;
    OIIO::Filesystem::IOVecOutput memory(encoded);
    const bool inMemory = out->supports("ioproxy") && out->set_ioproxy(&memory);
    bool ok = out->open(tmp, imageSpec) && out->write_image(type, img.data, xstride);
    ok = out->close() && ok;
    if (!ok)
        OIIO::geterror();
    if (ok && inMemory)
        ok = file.write(encoded.data(), encoded.size());
    return ok;
}

} // namespace

bool canEncodeMediaPath(const std::string& path)
{
    try {
        auto out = OIIO::ImageOutput::create(path);
        OIIO::geterror();
        return bool(out);
    } catch (...) {
        return false;
    }
}

bool encodeMediaFile(const MediaEncodeRequest& req)
{
    if (!req.image || req.image->isEmpty() || (req.image->channels != 3 && req.image->channels != 4))
        return false;
    // The writers go by the extension, so the temporary file keeps it.
    SafeFileWriter file;
    std::string suffix = mediaPathExtension(req.path);
    suffix.insert(suffix.begin(), '.');
    if (!file.open(req.path, suffix))
        return false;
    const std::string tmp = file.temporaryPath();
    bool ok = false;
    try {
        const bool exivProfile = profileGoesThroughExiv2(req.path) && isRgbIccProfile(req.iccProfile);
        ok = writePixels(req, file)
            && writeProperties(tmp, req.properties, exivProfile ? req.iccProfile : std::vector<uint8_t>());
    } catch (...) {
        ok = false;
    }
    return ok && file.commit(); // an uncommitted writer removes its temporary file
}
