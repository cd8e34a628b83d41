#pragma once
#include <string>
#include <string_view>
#include <vector>

// Numbers as the program writes them into its text files: floats as "%f", integers as "%i",
// always with a '.' decimal point whatever locale the process runs under (Qt sets it from the
// environment at start-up, which would otherwise turn "4.200000" into "4,200000").
std::string formatFloat(double value);
std::string formatInt(long long value);

// Readers behave like the C library's parsers in the "C" locale: leading white space is skipped,
// the longest prefix that forms a number counts, and text with no number reads as 0.
double parseFloat(std::string_view text);
// Numbers separated by white space, read like repeated "%f" conversions of scanf: reading stops
// at the first text that is no number. At most maxCount numbers are read.
std::vector<double> parseFloatList(std::string_view text, size_t maxCount = size_t(-1));
// Reads the text as a float and truncates toward zero, clamped to the int range.
int parseTruncatedInt(std::string_view text);
