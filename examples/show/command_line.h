/// \file
/// Options and arguments, and the text that explains them.
#ifndef QMUR_SHOW_COMMAND_LINE_H
#define QMUR_SHOW_COMMAND_LINE_H

#include <functional>
#include <string>
#include <vector>

namespace show {

/// What the program was started with, its own name left out, in UTF-8.
std::vector<std::string> programArguments(int argumentCount, char **arguments);

/// The files that match a name with * or ? in its last part, in the order of their names, where the system leaves that
/// to programs. Otherwise, and where none matches, the name itself.
std::vector<std::string> matchingFiles(const std::string &name);

class CommandLine {
public:
    using TakeValue = std::function<void(const std::string &value)>;

    /// An option with a value: --name VALUE or --name=VALUE; with a letter, also -l VALUE or -lVALUE. Given twice, it
    /// is refused.
    CommandLine &option(std::string name, std::string value, std::string description, TakeValue take);
    /// The option that was added last may be given several times.
    CommandLine &repeatable();
    /// The option that was added last has a letter as well.
    CommandLine &letter(char letter);
    CommandLine &flag(std::string name, std::string description, std::function<void()> take);

    /// Calls what takes the options' values, in their order, and `takeArgument` for all else. Throws Failure.
    void parse(const std::vector<std::string> &arguments, const TakeValue &takeArgument);

    /// A paragraph for each option, in lines of less than 80 columns.
    std::string explanation() const;

private:
    struct Row {
        std::string name;
        std::string value; ///< what it is called in the explanation; empty for a flag
        std::string description;
        TakeValue take;
        char letter = 0;
        bool mayRepeat = false;
        bool given = false;
    };

    Row &add(Row row);
    Row *find(const std::string &name);

    std::vector<Row> rows;
};

} // namespace show

#endif
