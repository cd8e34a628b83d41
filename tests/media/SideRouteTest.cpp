#include "TestData.h"

#include "desktop_only/MultiImageLoaderSaver.h"
#include "media/BuiltinIccProfiles.h"
#include "media/ColorTransformSet.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QResource>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cmath>

namespace {

std::vector<uint8_t> gAdobeDisplay;
std::vector<uint8_t> adobeDisplay() { return gAdobeDisplay; }

} // namespace

TEST(SideRouteTest, QtResourcesLoadWithTheirAlpha)
{
    const QString rcc = QStandardPaths::findExecutable("rcc");
    if (rcc.isEmpty())
        GTEST_SKIP() << "rcc not found";
    QTemporaryDir dir;
    QImage art(3, 2, QImage::Format_ARGB32);
    art.fill(qRgba(10, 20, 30, 255));
    art.setPixel(2, 1, qRgba(200, 150, 100, 50));
    ASSERT_TRUE(art.save(dir.filePath("art.png")));
    QFile qrc(dir.filePath("t.qrc"));
    ASSERT_TRUE(qrc.open(QIODevice::WriteOnly));
    qrc.write("<RCC><qresource prefix=\"/sidetest\"><file>art.png</file></qresource></RCC>\n");
    qrc.close();
    QProcess p;
    p.setWorkingDirectory(dir.path());
    p.start(rcc, {"-binary", "t.qrc", "-o", "t.rcc"});
    ASSERT_TRUE(p.waitForFinished(20000));
    ASSERT_TRUE(QResource::registerResource(dir.filePath("t.rcc")));

    MultiImageLoaderSaver io;
    FlexImageFloat rgba(1, 1, 4);
    ASSERT_TRUE(io.loadImage(":/sidetest/art.png", rgba, false));
    ASSERT_EQ(rgba.width, 3);
    ASSERT_EQ(rgba.height, 2);
    EXPECT_EQ(rgba.row(0)[0], 10.0f);
    EXPECT_EQ(rgba.row(0)[2], 30.0f);
    // QImage::pixel gives the stored (unpremultiplied) values: no division here.
    EXPECT_EQ(rgba.row(1)[2 * 4 + 0], 200.0f);
    EXPECT_EQ(rgba.row(1)[2 * 4 + 3], 50.0f);
    FlexImage8 rgb(1, 1, 3);
    ASSERT_TRUE(io.loadImage(":/sidetest/art.png", rgb, true));
    EXPECT_EQ(rgb.channels, 3);
    EXPECT_EQ(rgb.row(1)[2 * 3 + 1], 150);
    EXPECT_FALSE(io.loadImage(":/sidetest/missing.png", rgb, false));
    EXPECT_EQ(rgb.width, 3);
    QResource::unregisterResource(dir.filePath("t.rcc"));
}

TEST(SideRouteTest, DisplayColourSpaceConvertsFromTheFileProfile)
{
    REQUIRE_TESTDATA(path, "spacex_rocket_adobergb.jpg");
    MultiImageLoaderSaver io;
    FlexImage8 asIs(1, 1, 3), forSrgbScreen(1, 1, 3), forAdobeScreen(1, 1, 3);
    ASSERT_TRUE(io.loadImage(path, asIs, false));
    ASSERT_TRUE(io.loadImage(path, forSrgbScreen, true));
    gAdobeDisplay = builtinIccProfile(ColorSpaceKind::AdobeRGB);
    setDisplayIccProvider(&adobeDisplay);
    ASSERT_TRUE(io.loadImage(path, forAdobeScreen, true));
    setDisplayIccProvider(nullptr);
    int64_t movedOnSrgb = 0, movedOnAdobe = 0;
    const int64_t n = int64_t(asIs.width) * asIs.height * 3;
    for (int64_t i = 0; i < n; ++i) {
        movedOnSrgb += std::abs(int(forSrgbScreen.data[i]) - int(asIs.data[i])) > 2;
        movedOnAdobe += std::abs(int(forAdobeScreen.data[i]) - int(asIs.data[i])) > 2;
    }
    EXPECT_GT(movedOnSrgb, n / 20); // Adobe numbers shown on an sRGB screen change
    EXPECT_LT(movedOnAdobe, n / 1000); // on a screen of the file's own space they barely move
}
