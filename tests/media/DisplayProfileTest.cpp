#include "desktop_only/DisplayProfile.h"
#include "media/BuiltinIccProfiles.h"
#include "media/ColorTransformSet.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>

#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#if __has_include(<xcb/xcb.h>)
#include <xcb/xcb.h>
#define HAVE_XCB_HEADERS 1
#endif

namespace {

// A private X server for the length of one test, with DISPLAY pointing at it.
class PrivateXServer {
public:
    bool start()
    {
        if (QStandardPaths::findExecutable("Xvfb").isEmpty())
            return false;
        const char* old = std::getenv("DISPLAY");
        oldDisplay = old ? old : "";
        hadDisplay = old != nullptr;
        // -displayfd: the server picks a free display and prints its number on stdout.
        // -noreset: it would drop the root's properties when the last client leaves.
        server.start("Xvfb", {"-displayfd", "1", "-noreset", "-nolisten", "tcp", "-screen", "0", "64x64x24"});
        if (!server.waitForStarted(5000))
            return false;
        QByteArray number;
        while (!number.contains('\n') && server.waitForReadyRead(10000))
            number += server.readAllStandardOutput();
        bool ok = false;
        const int n = number.trimmed().toInt(&ok);
        if (!ok)
            return false;
        display = (QByteArray(":") + QByteArray::number(n)).toStdString();
        setenv("DISPLAY", display.c_str(), 1);
        return true;
    }
    ~PrivateXServer()
    {
        if (server.state() != QProcess::NotRunning) {
            server.terminate();
            server.waitForFinished(3000);
        }
        if (hadDisplay)
            setenv("DISPLAY", oldDisplay.c_str(), 1);
        else
            unsetenv("DISPLAY");
    }
    std::string display;

private:
    QProcess server;
    std::string oldDisplay;
    bool hadDisplay = false;
};

#ifdef HAVE_XCB_HEADERS
void setRootProfile(const std::string& display, const std::vector<uint8_t>& bytes)
{
    xcb_connection_t* c = xcb_connect(display.c_str(), nullptr);
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    xcb_intern_atom_reply_t* atom = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, 12, "_ICC_PROFILE"), nullptr);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, screen->root, atom->atom, XCB_ATOM_CARDINAL, 8,
                        uint32_t(bytes.size()), bytes.data());
    free(atom);
    free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // round trip: the change is done
    xcb_disconnect(c);
}
#endif

} // namespace

TEST(DisplayProfileTest, ReadsTheRootWindowProfileAndFallsBackOnSrgb)
{
#ifndef HAVE_XCB_HEADERS
    GTEST_SKIP() << "no xcb headers";
#else
    PrivateXServer x;
    if (!x.start())
        GTEST_SKIP() << "Xvfb could not be started";
    installDisplayIccProvider();
    EXPECT_TRUE(readX11DisplayIccProfile().empty());
    EXPECT_EQ(displayIccBytes(), builtinIccProfile(ColorSpaceKind::SRGB)); // no profile published

    const std::vector<uint8_t> adobe = builtinIccProfile(ColorSpaceKind::AdobeRGB);
    setRootProfile(x.display, adobe);
    EXPECT_EQ(readX11DisplayIccProfile(), adobe);
    EXPECT_EQ(displayIccBytes(), adobe);
    // A set built now sees the display's profile.
    ColorTransformSet set;
    setKind(set, ColorSpaceKind::Rec709);
    EXPECT_TRUE(set.valid);
    EXPECT_EQ(set.displayProfile, adobe);
    setDisplayIccProvider(nullptr);
#endif
}

TEST(DisplayProfileTest, NoDisplayMeansNoProfile)
{
    const char* old = std::getenv("DISPLAY");
    const std::string saved = old ? old : "";
    unsetenv("DISPLAY");
    EXPECT_TRUE(readX11DisplayIccProfile().empty());
    if (old)
        setenv("DISPLAY", saved.c_str(), 1);
}
