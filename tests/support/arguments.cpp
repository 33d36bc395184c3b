#include "cases.h"
#include "run.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

/// The number behind an option's name; nothing where it is another option or no number.
std::optional<int> numberBehind(std::string_view name, std::string_view argument) {
    if (!argument.starts_with(name))
        return std::nullopt;
    argument.remove_prefix(name.size());
    int number = 0;
    const auto [end, error] = std::from_chars(argument.data(), argument.data() + argument.size(), number);
    return error == std::errc() && end == argument.data() + argument.size() ? std::optional(number) : std::nullopt;
}

} // namespace

bool test::takesArguments(int argc, char **argv) {
    // Most builds run only the first cases of each function: others compute the whole checksums, and hold rows to what
    // they state.
    if (const char *count = std::getenv("Q_MUR_TESTS_CASES"); count && !std::getenv("Q_MUR_TESTS_ALL_CASES")) {
        limitCases(std::atoi(count));
        leaveOutStatements();
    }
    for (int i = 1; i < argc; ++i) {
        if (const auto number = numberBehind("--case=", argv[i])) {
            replayCase(*number);
        } else if (const auto count = numberBehind("--cases=", argv[i])) {
            limitCases(*count);
        } else if (const auto few = numberBehind("--few-cases=", argv[i])) {
            limitCasesWithoutSums(*few);
        } else {
            std::fprintf(stderr, "%s: unknown argument %s\n", argv[0], argv[i]);
            return false;
        }
    }
    return true;
}
