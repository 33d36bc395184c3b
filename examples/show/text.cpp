#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace show {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

std::string printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '\t')
            result += "\\t";
        else if (code < 0x20 || code == 0x7F)
            (((result += "\\x") += digits[code >> 4]) += digits[code & 15]);
        else
            result += c;
    }
    return result;
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
