#include "media/MediaMessages.h"

MediaMessage mediaCantLoadFileMessage(const std::string& path)
{
    return {"Can't Load File",
            "Vantrel can't open " + path
                + ". You may need to install drivers for this file format or update your operating system."
                  " The formats Vantrel reads are listed in its user guide, on the page docs/formats.html."};
}

MediaMessage mediaUnsupportedTypeMessage()
{
    return {"Load Image Error", "That file type is not supported."};
}

MediaMessage mediaCantSaveFormatMessage()
{
    return {"Can't Save Format", "You must use Save As instead, Vantrel can't save in this image's format."};
}

MediaMessage mediaNoFileLoadedMessage()
{
    return {"No File Loaded", "No file loaded to save."};
}

MediaMessage mediaCantSaveOverVideoMessage()
{
    return {"Can't Save Over Video", "You must use Save As when saving a video."};
}

MediaMessage mediaProcessingErrorMessage()
{
    return {"Processing Error",
            "There was an error processing your media. You may need to try another location, format, size, or "
            "quality setting."};
}
