#include "command_line.h"

#include "failure.h"
#include "text.h"

#include <algorithm>
#include <sstream>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

namespace show {

#ifdef _WIN32

std::vector<std::string> programArguments(int, char **) {
    int count = 0;
    wchar_t **const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; i < count; ++i)
        result.push_back(utf8(wide[i]));
    LocalFree(wide);
    return result;
}

std::vector<std::string> matchingFiles(const std::string &name) {
    const std::filesystem::path pattern = pathOf(name);
    if (utf8(pattern.filename()).find_first_of("*?") == std::string::npos)
        return {name};
    std::vector<std::string> result;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return {name};
    do
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            result.push_back(utf8(pattern.parent_path() / found.cFileName));
    while (FindNextFileW(search, &found));
    FindClose(search);
    std::sort(result.begin(), result.end());
    return result.empty() ? std::vector<std::string>{name} : result;
}

#else

std::vector<std::string> programArguments(int argumentCount, char **arguments) {
    return {arguments + std::min(argumentCount, 1), arguments + argumentCount};
}

std::vector<std::string> matchingFiles(const std::string &name) {
    return {name};
}

#endif

CommandLine::Row &CommandLine::add(Row row) {
    rows.push_back(std::move(row));
    return rows.back();
}

CommandLine &CommandLine::option(std::string name, std::string value, std::string description, TakeValue take) {
    add({std::move(name), std::move(value), std::move(description), std::move(take)});
    return *this;
}

CommandLine &CommandLine::repeatable() {
    rows.back().mayRepeat = true;
    return *this;
}

CommandLine &CommandLine::letter(char letter) {
    rows.back().letter = letter;
    return *this;
}

CommandLine &CommandLine::flag(std::string name, std::string description, std::function<void()> take) {
    add({std::move(name), "", std::move(description), [take = std::move(take)](const std::string &) { take(); }});
    return *this;
}

CommandLine::Row *CommandLine::find(const std::string &name) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row &row) {
        return name == "--" + row.name || (row.letter && name == std::string{'-', row.letter});
    });
    return found == rows.end() ? nullptr : &*found;
}

void CommandLine::parse(const std::vector<std::string> &arguments, const TakeValue &takeArgument) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            takeArgument(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        const bool isLong = argument[1] == '-';
        const std::size_t equals = isLong ? argument.find('=') : std::string::npos;
        const std::string name = isLong ? argument.substr(0, equals) : argument.substr(0, 2);
        Row *const row = find(name);
        if (!row)
            throw Failure("there is no option '" + printable(name) + "'; --help explains them all");
        if (row->given && !row->mayRepeat)
            throw Failure(name + " stands twice");
        row->given = true;

        const bool valueInside = isLong ? equals != std::string::npos : argument.size() > 2;
        std::string value = isLong ? argument.substr(std::min(equals, argument.size() - 1) + 1) : argument.substr(2);
        if (row->value.empty() && valueInside)
            throw Failure(name + " takes no value");
        if (!row->value.empty() && !valueInside) {
            if (i + 1 == arguments.size() || find(arguments[i + 1].substr(0, arguments[i + 1].find('='))))
                throw Failure(name + " lacks its value, " + row->value);
            value = arguments[++i];
        }
        row->take(value);
    }
}

std::string CommandLine::explanation() const {
    constexpr std::size_t descriptionColumn = 24;
    constexpr std::size_t lineLength = 79;
    std::string text;
    for (const Row &row : rows) {
        std::string line = row.letter ? std::string("  -") + row.letter + ", --" : "      --";
        line += row.name + (row.value.empty() ? "" : " " + row.value);
        if (line.size() + 1 > descriptionColumn) {
            text += line + '\n';
            line.clear();
        }
        line.resize(descriptionColumn, ' ');
        std::istringstream words(row.description);
        std::string lineSoFar = line;
        bool first = true;
        for (std::string word; words >> word; first = false) {
            if (!first && lineSoFar.size() + 1 + word.size() > lineLength) {
                text += lineSoFar + '\n';
                lineSoFar = std::string(descriptionColumn, ' ') + word;
            } else {
                lineSoFar += (first ? "" : " ") + word;
            }
        }
        text += lineSoFar + '\n';
    }
    return text;
}

} // namespace show
