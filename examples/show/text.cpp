#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace show {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The length of the letter that begins here, in UTF-8; 0 if none does.
std::size_t letterAt(std::string_view text, std::size_t place) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byteAt(place);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length > text.size() - place)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(place + i) & 0xC0) != 0x80)
            return 0;
    return length;
}

} // namespace

std::string printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        const auto code = static_cast<unsigned char>(text[i]);
        const std::size_t length = letterAt(text, i);
        if (code == '\n')
            result += "\\n";
        else if (code == '\r')
            result += "\\r";
        else if (code == '\t')
            result += "\\t";
        else if (length == 0 || code < 0x20 || code == 0x7F)
            (((result += "\\x") += digits[code >> 4]) += digits[code & 15]);
        else
            result += text.substr(i, length);
        i += std::max<std::size_t>(length, 1);
    }
    return result;
}

std::string lineOf(std::string_view bytes) {
    bool isUtf8 = true;
    for (std::size_t i = 0, length; isUtf8 && i < bytes.size(); i += length)
        isUtf8 = (length = letterAt(bytes, i)) > 0;
    std::string line;
    bool apart = false;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code <= ' ' || code == 0x7F) {
            apart = !line.empty();
            continue;
        }
        if (apart)
            line += ' ';
        apart = false;
        if (isUtf8 || code < 0x80)
            line += byte;
        else
            (line += static_cast<char>(0xC0 | code >> 6)) += static_cast<char>(0x80 | (code & 0x3F));
    }
    return line;
}

std::string utf8(const std::filesystem::path &path) {
#ifdef _WIN32
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
#else
    return path.string(); // whatever its encoding
#endif
}

std::filesystem::path pathOf(std::string_view utf8Text) {
#ifdef _WIN32
    return std::u8string(utf8Text.begin(), utf8Text.end());
#else
    return utf8Text;
#endif
}

std::string quoted(const std::filesystem::path &path) {
    return std::string("'").append(printable(utf8(path))).append("'");
}

std::string lowerCaseExtension(const std::filesystem::path &path) {
    std::string extension = utf8(path.extension());
    for (char &c : extension)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return extension;
}

std::optional<long long> wholeNumber(std::string_view text) {
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<double> decimalNumber(std::string_view text) {
    constexpr std::size_t longest = 24;
    const std::string_view magnitude = text.substr(text.starts_with('-') ? 1 : 0);
    if (magnitude.size() > longest || std::none_of(magnitude.begin(), magnitude.end(), isDigit) ||
        std::count(magnitude.begin(), magnitude.end(), '.') > 1 ||
        !std::all_of(magnitude.begin(), magnitude.end(), [](char c) { return isDigit(c) || c == '.'; }))
        return std::nullopt;
    return std::strtod(std::string(text).c_str(), nullptr); // the program never sets a locale
}

} // namespace show
