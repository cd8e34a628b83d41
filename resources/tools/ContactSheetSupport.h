#pragma once
// What the contact-sheet tools share: the conversions between QImage and float images, the photo
// list from the command line, and reading and writing the pictures with a message on failure.
#include "core/FlexImage.h"

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <QtGui/QImage>

#include <cstdio>
#include <initializer_list>

// The sheets draw without a display unless one is asked for. Call before the application exists.
inline void preferOffscreenPlatform()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

// RGB, each sample rounded and clamped to 0..255; channels past the third are dropped.
inline QImage toQImage(const FlexImageFloat& img)
{
    QImage out(img.width, img.height, QImage::Format_RGB888);
    for (int y = 0; y < img.height; ++y) {
        const float* p = img.row(y);
        uchar* d = out.scanLine(y);
        for (int x = 0; x < img.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                const float v = p[x * img.channels + c];
                d[x * 3 + c] = uchar(v <= 0.0f ? 0 : v >= 255.0f ? 255 : int(v + 0.5f));
            }
        }
    }
    return out;
}

inline void fromQImage(const QImage& src, FlexImageFloat& img)
{
    const QImage rgb = src.convertToFormat(QImage::Format_RGB888);
    img.resize(rgb.width(), rgb.height(), 3);
    for (int y = 0; y < rgb.height(); ++y) {
        const uchar* s = rgb.constScanLine(y);
        float* p = img.row(y);
        for (int x = 0; x < rgb.width() * 3; ++x)
            p[x] = float(s[x]);
    }
}

// The arguments from `first` on, or else the named files of the shared test folder.
inline QStringList photoArguments(int argc, char** argv, int first, std::initializer_list<const char*> testPhotos)
{
    QStringList photos;
    for (int i = first; i < argc; ++i)
        photos << QString::fromLocal8Bit(argv[i]);
    if (photos.isEmpty()) {
        const QString dir = QStringLiteral(VANTREL_TESTDATA "/");
        for (const char* name : testPhotos)
            photos << dir + name;
    }
    return photos;
}

// False, with a message, when the file can't be read.
inline bool readPhoto(const QString& path, QImage& photo)
{
    photo = QImage(path);
    if (photo.isNull()) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return false;
    }
    return true;
}

// "sheet.png" gives "sheet-1.png", "sheet-2.png", ... beside it.
inline QString numberedBeside(const QString& path, int number)
{
    const QFileInfo info(path);
    return info.path() + "/" + info.completeBaseName() + "-" + QString::number(number) + ".png";
}

// Saves the sheet and says where; the exit code for main.
inline int saveSheet(const QImage& sheet, const QString& path, const QString& note = QString())
{
    if (!sheet.save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return 1;
    }
    std::printf("%s (%dx%d)%s\n", qPrintable(path), sheet.width(), sheet.height(), qPrintable(note));
    return 0;
}
