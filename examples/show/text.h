/// \file
/// Names and numbers as people read and write them.
#ifndef QMUR_SHOW_TEXT_H
#define QMUR_SHOW_TEXT_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace show {

/// The text with line breaks, other control characters and bytes that are no UTF-8 written as \n, \x1B and the like.
std::string printable(std::string_view text);

/// A line in UTF-8 of bytes that may be of another time: those that are no UTF-8 are taken for Latin-1. Blanks and
/// control characters between words become one space each.
std::string lineOf(std::string_view bytes);

std::string utf8(const std::filesystem::path &path);
std::filesystem::path pathOf(std::string_view utf8Text);

/// The path in quotes, fit for one line.
std::string quoted(const std::filesystem::path &path);

/// The extension with its dot, in lower case.
std::string lowerCaseExtension(const std::filesystem::path &path);

/// The whole text as a number in decimal digits.
std::optional<long long> wholeNumber(std::string_view text);

/// The whole text as a number such as 4, 4.5 or .5; no signs but minus, no exponents.
std::optional<double> decimalNumber(std::string_view text);

} // namespace show

#endif
