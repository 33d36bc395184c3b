#include "chosen_set.h"

#include "frame/instruction_sets.h"

#include <q_Mur.h>

#include <iterator>

namespace test {
namespace {

using qmur::InstructionSet;

constexpr std::string_view names[] = {"sse2", "v3", "v4"};

std::string nameOf(InstructionSet set) {
    return std::string(names[static_cast<int>(set)]);
}

} // namespace

std::string runOnSet(std::string_view name) {
    for (int i = 0; i < static_cast<int>(std::size(names)); ++i) {
        if (names[i] != name)
            continue;
        const auto set = static_cast<InstructionSet>(i);
        if (set > qmur::widestInLibrary())
            return "this library has no set " + nameOf(set);
        if (set > qmur::widestRunnable())
            return "this processor has no x86-64-" + nameOf(set);
        qmur::limitInstructionSets(set);
        Init_qMur_GlobalData(nullptr, nullptr);
        return qmur::instructionSetInUse() == set ? "" : "the library runs on " + nameOf(qmur::instructionSetInUse());
    }
    return "there is no set " + std::string(name);
}

std::string setInUse() {
    if (qmur::widestInLibrary() == InstructionSet::floor)
        return "the only one that it was built for";
    std::string text = nameOf(qmur::instructionSetInUse()) + " of";
    for (int i = 0; i <= static_cast<int>(qmur::widestInLibrary()); ++i)
        text += (i == 0 ? " " : ", ") + std::string(names[i]);
    return text;
}

} // namespace test
