#include "desktop_only/MultiImageLoaderSaver.h"

#include "desktop_only/MediaCodec.h"
#include "media/ColorTransformSet.h"
#include "media/CompactImage.h"
#include "media/MediaFormats.h"
#include "media/MediaPixelCopy.h"
#include "media/MultiImageLoaderSaverMetadata.h"
#include "media/NativeImage.h"

#include <QImage>
#include <QString>

#include <cstdio>

namespace {

template <typename T>
bool loadResource(const std::string& path, FlexImageT<T>& image)
{
    const QImage q(QString::fromStdString(path));
    if (q.isNull())
        return false;
    image.resize(q.width(), q.height(), image.channels);
    if (image.isEmpty())
        return false;
    const int32_t c = image.channels;
    for (int32_t y = 0; y < image.height; ++y) {
        T* row = image.row(y);
        for (int32_t x = 0; x < image.width; ++x) {
            const QRgb p = q.pixel(x, y);
            T* px = row + int64_t(x) * c;
            const T v[4] = {T((p >> 16) & 0xff), T((p >> 8) & 0xff), T(p & 0xff), T((p >> 24) & 0xff)};
            for (int32_t k = 0; k < c && k < 3; ++k)
                px[k] = v[k];
            if (c >= 4)
                px[3] = v[3];
        }
    }
    return true;
}

// Samples of a bitmap converted from the file's profile into the display's, as the redraw in the
// display's colour space does.
void toDisplaySpace(MediaDecoded& decoded)
{
    if (decoded.iccProfile.empty())
        return;
    MediaBitmap& b = decoded.bitmap;
    const int32_t spp = b.samplesPerPixel();
    CompactImage view;
    if (!view.adopt(b.release(), b.width, b.height, spp == 4 ? CompactImage::RGBA : CompactImage::RGB,
                    b.bitsPerComponent == 16))
        return;
    ColorTransformSet set;
    setCustomProfile(set, decoded.iccProfile);
    transformCompactImage(view, set, true);
    b.data = view.data;
    view.data = nullptr;
}

template <typename T>
bool loadSide(const std::string& path, FlexImageT<T>& image, bool useDisplayColorSpace)
{
    if (isNativeImagePath(path))
        return ReadNativeImage(path, image);
    if (path.size() >= 3 && path.compare(0, 2, ":/") == 0)
        return loadResource(path, image);
    MediaDecoded decoded;
    if (decodeMediaFile(path, decoded, true) != MediaCodecStatus::Ok)
        return false;
    // Premultiplied data can't be converted as it stands; the display space is for plain samples.
    if (useDisplayColorSpace && !mediaAlphaIsPremultiplied(decoded.bitmap.alphaInfo))
        toDisplaySpace(decoded);
    if (!copyBitmapToImage(decoded.bitmap, decoded.orientation, image))
        return false;
    auto* meta = new MultiImageLoaderSaverMetadata(std::move(decoded.properties));
    meta->bitsPerComponent = decoded.bitmap.bitsPerComponent;
    delete image.metadata;
    image.metadata = meta;
    return true;
}

template <typename T>
bool saveSide(const std::string& path, const FlexImageT<T>& image, bool useDisplayColorSpace, float quality,
              int32_t saveBitMode)
{
    if (isNativeImagePath(path))
        return WriteNativeImage(image, path, sizeof(T) == 1 ? 0 : 1);
    const bool sixteen = saveBitMode == 1;
    if (sixteen)
        std::printf("saving as 16-bit image\n");
    CompactImage buffer;
    if (!bufferForSideSave(image, sixteen, buffer))
        return false;
    MediaEncodeRequest req;
    req.image = &buffer;
    req.path = path;
    req.quality = quality;
    if (useDisplayColorSpace)
        req.iccProfile = displayIccBytes();
    const auto* meta = dynamic_cast<const MultiImageLoaderSaverMetadata*>(image.metadata);
    if (meta && meta->properties)
        req.properties = meta->properties.get();
    return encodeMediaFile(req);
}

} // namespace

bool MultiImageLoaderSaver::loadImage(const std::string& path, FlexImage8& image, bool useDisplayColorSpace)
{
    return loadSide(path, image, useDisplayColorSpace);
}

bool MultiImageLoaderSaver::loadImage(const std::string& path, FlexImageFloat& image, bool useDisplayColorSpace)
{
    return loadSide(path, image, useDisplayColorSpace);
}

bool MultiImageLoaderSaver::saveImage(const std::string& path, const FlexImage8& image, bool useDisplayColorSpace,
                                      float quality)
{
    return saveSide(path, image, useDisplayColorSpace, quality, saveBitMode);
}

bool MultiImageLoaderSaver::saveImage(const std::string& path, const FlexImageFloat& image,
                                      bool useDisplayColorSpace, float quality)
{
    return saveSide(path, image, useDisplayColorSpace, quality, saveBitMode);
}
