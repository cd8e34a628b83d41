#include "core/ImageModVarAnimator.h"

#include <charconv>
#include <cmath>

std::vector<float> ImageModVarAnimator::parseKeys(const std::string& text)
{
    std::vector<float> keys;
    size_t i = 0;
    const size_t n = text.size();
    while (i < n) {
        while (i < n && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r'))
            ++i;
        if (i >= n || text[i] == '\0')
            break;
        size_t end = i;
        while (end < n && text[end] != ' ' && text[end] != '\t' && text[end] != '\n' && text[end] != '\r'
               && text[end] != '\0')
            ++end;
        const char* first = text.data() + i;
        if (*first == '+')
            ++first;
        float v = 0.0f;
        const auto result = std::from_chars(first, text.data() + end, v);
        keys.push_back(result.ec == std::errc() ? v : 0.0f);
        i = end;
    }
    return keys;
}

float ImageModVarAnimator::keyPosition(int32_t keyCount, int32_t periodFrames, int32_t frame)
{
    if (periodFrames < 2 || keyCount < 1)
        return 0.0f;
    int32_t t = frame % periodFrames;
    if (t < 0)
        t += periodFrames;
    return float((keyCount - 1) * t) / float(periodFrames - 1);
}

float ImageModVarAnimator::interpolateAt(const std::vector<float>& keys, float x)
{
    if (keys.empty())
        return 0.0f;
    const float fi = std::floor(x);
    const float fj = std::ceil(x);
    const int32_t last = int32_t(keys.size()) - 1;
    int32_t i = int32_t(fi);
    int32_t j = int32_t(fj);
    if (i > last)
        i = last;
    if (j > last)
        j = last;
    if (i == j)
        return keys[size_t(i)];
    return keys[size_t(j)] * (x - fi) + keys[size_t(i)] * (fj - x);
}

float ImageModVarAnimator::keyValueAt(const std::vector<float>& keys, int32_t periodFrames, int32_t frame)
{
    return interpolateAt(keys, keyPosition(int32_t(keys.size()), periodFrames, frame));
}
