#pragma once
#include <string>

// What the user reads when media can't be loaded or saved: a title and a text.
struct MediaMessage {
    std::string title;
    std::string text;
};

MediaMessage mediaCantLoadFileMessage(const std::string& path);
MediaMessage mediaUnsupportedTypeMessage();
MediaMessage mediaCantSaveFormatMessage();
MediaMessage mediaNoFileLoadedMessage();
MediaMessage mediaCantSaveOverVideoMessage();
MediaMessage mediaProcessingErrorMessage();
