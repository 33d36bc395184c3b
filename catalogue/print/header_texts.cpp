#include "header_texts.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace catalogue {
namespace {

std::string trimmed(const std::string &line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    return begin == std::string::npos ? "" : line.substr(begin, line.find_last_not_of(" \t\r") - begin + 1);
}

/// The name before the first parenthesis or bracket.
std::string declaredName(const std::string &declaration) {
    const std::size_t end = declaration.find_first_of("([");
    const std::size_t begin = declaration.find_last_of(" *&", end - 1) + 1;
    return declaration.substr(begin, end - begin);
}

/// Where the name of a declaration or a parameter begins; its end where there is none.
std::size_t nameIn(const std::string &text) {
    const std::size_t begin = text.find_last_of(" *&");
    return begin == std::string::npos ? text.size() : begin + 1;
}

} // namespace

std::vector<std::string> parameterTypes(const std::string &declaration) {
    const std::size_t begin = declaration.find('(') + 1;
    const std::string list = declaration.substr(begin, declaration.rfind(')') - begin);
    std::vector<std::string> types;
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        const std::string parameter = trimmed(list.substr(at, end - at));
        types.push_back(trimmed(parameter.substr(0, nameIn(parameter))));
        at = end + 1;
    }
    return types;
}

std::string resultType(const std::string &declaration) {
    const std::string head = declaration.substr(0, declaration.find('('));
    return trimmed(head.substr(0, nameIn(head)));
}

Header readHeader(const std::filesystem::path &file) {
    constexpr std::string_view mark = "Q_MUR_API ", section = "\\name ", begin = "\\file\n";
    std::ifstream in(file);
    if (!in)
        throw std::runtime_error("cannot read " + file.string());
    Header header;
    HeaderText current;
    std::string line;
    while (std::getline(in, line)) {
        line = trimmed(line);
        if (line == "/// @{")
            continue;
        if (line == "/// @}") {
            current = {};
            continue;
        }
        if (line.starts_with("///")) {
            if (!current.text.empty())
                current.text += '\n';
            current.text += trimmed(line.substr(3));
            if (current.text.starts_with(section)) {
                current.group = current.text.substr(section.size());
                current.groupText = current.text = {};
            }
            continue;
        }
        const std::size_t marked = line.find(mark);
        if (marked != std::string::npos && (marked == 0 || line.starts_with("extern"))) {
            std::string declaration = line.substr(marked + mark.size());
            while (declaration.find(';') == std::string::npos && std::getline(in, line))
                declaration.append(" ").append(trimmed(line));
            current.declaration = declaration.substr(0, declaration.find(';'));
            header.texts[declaredName(current.declaration)].push_back(current);
        } else if (current.text.starts_with(begin)) {
            header.about = current.text.substr(begin.size());
        } else if (!current.group.empty() && current.groupText.empty()) {
            current.groupText = current.text;
        }
        current.text = {};
    }
    return header;
}

} // namespace catalogue
