#pragma once
#include "core/FlexImage.h"
#include "media/CompactImage.h"
#include "media/MediaBitmap.h"

#include <cstdint>

// Side route: a decoded bitmap into an image of either depth, turned upright. The destination keeps
// its channel count; premultiplied samples are divided by alpha. False for depths other than 8/16.
bool copyBitmapToImage(const MediaBitmap& bitmap, int32_t orientation, FlexImageFloat& dest);
bool copyBitmapToImage(const MediaBitmap& bitmap, int32_t orientation, FlexImage8& dest);

// Document route: a decoded bitmap into a compact image at the file's depth, turned upright, alpha
// un-premultiplied. Takes the bitmap's buffer over when nothing needs changing.
bool compactFromBitmap(MediaBitmap& bitmap, int32_t orientation, CompactImage& out);

// The float copy of a compact image (0..255 scale). The destination keeps its channel count; a
// 3-channel destination gets an alpha image baked onto black.
bool compactToFloat(CompactImage& compact, FlexImageFloat& dest);

// Quantises a rendered image for writing: RGBA when a 4-channel image has any alpha below 255,
// else RGB. value = truncate(sample * 257), low 16 bits kept; 8 bits take its high byte.
bool quantiseForSave(const FlexImageFloat& image, bool sixteenBit, CompactImage& out);

// The side route's save buffer: RGBA for 4-channel images, else RGB; samples truncated (8-bit) or
// truncate(sample * 257) (16-bit), no clamp, low bits kept.
bool bufferForSideSave(const FlexImageFloat& image, bool sixteenBit, CompactImage& out);
bool bufferForSideSave(const FlexImage8& image, bool sixteenBit, CompactImage& out);

// Float to an integer's low bits the way a plain conversion does; NaN and huge values give 0.
static inline uint32_t truncateToBits(double v)
{
    if (!(v > -2147483648.0 && v < 2147483648.0))
        return 0;
    return static_cast<uint32_t>(static_cast<int32_t>(v));
}
