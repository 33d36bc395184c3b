/// \file
/// Prints the catalogue for programs that make something from it.
///
/// usage: q_Mur_catalogue --json [--headers DIRECTORY]
#include "catalogue/names.h"
#include "catalogue/row.h"
#include "header_texts.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <exception>

namespace catalogue {
namespace {

using Json = nlohmann::ordered_json;

constexpr Stage smallStage = {320, 180, 0.5};

Json limit(double number) {
    constexpr double wholeInJson = 9007199254740992.0; // beyond this not every whole number is a double
    if (!std::isfinite(number))
        return nullptr;
    return number == std::floor(number) && std::fabs(number) < wholeInJson ? Json(static_cast<std::int64_t>(number))
                                                                           : Json(number);
}

Json pairOf(double first, double second) {
    return {limit(first), limit(second)};
}

Json argumentOf(const Row &row, std::size_t index, const std::string &type) {
    const Argument &argument = row.arguments[index];
    Json json = {{"name", argument.name}, {"type", type}, {"kind", nameOf(argument.kind)}};
    if (!argument.unit.empty())
        json["unit"] = argument.unit;
    if (!argument.of.empty())
        json["of"] = argument.of;
    if (isNumber(argument.kind)) {
        json["contract"] = pairOf(argument.contract.low, argument.contract.high);
        if (argument.contract.isASample)
            json["contractIsASample"] = true;
        if (std::isfinite(argument.meant.low) || std::isfinite(argument.meant.high))
            json["meant"] = pairOf(argument.meant.low, argument.meant.high);
        if (argument.idle.low <= argument.idle.high)
            json["idle"] = pairOf(argument.idle.low, argument.idle.high);
        if (argument.fractionBits >= 0)
            json["fractionBits"] = argument.fractionBits;
    }
    if (argument.inScene.begin != 0 || argument.inScene.end != 0)
        json["inScene"] = pairOf(argument.inScene.begin, argument.inScene.end);
    if (argument.mayBeNull)
        json["mayBeNull"] = true;
    return json;
}

/// One word for all channels, or that of the lower ones, where a carry comes from.
std::string_view nameOfAll(const Sums &sums) {
    return nameOf(sums.areAll(sums.red) || sums.blue == Sum::carryOver ? sums.blue : sums.red);
}

/// What a call reads or writes, area by area.
Json areasOf(const Call &call, const Region &areas) {
    Json json = Json::array();
    if (areas)
        for (const Area &area : areas(call))
            json.push_back({{"argument", area.argument},
                            {"part", {area.part.left, area.part.top, area.part.right, area.part.bottom}}});
    return json;
}

Json rowOf(const Row &row, const HeaderText &header) {
    Json json = {{"name", row.name}};
    if (!row.label.empty())
        json["overload"] = row.label;
    json["sentence"] = row.sentence;
    json["declaration"] = header.declaration;
    json["text"] = header.text;
    json["group"] = header.group;
    json["groupText"] = header.groupText;
    json["result"] = resultType(header.declaration);
    json["aliases"] = row.aliases;
    json["arguments"] = Json::array();
    const std::vector<std::string> types = parameterTypes(header.declaration);
    if (types.size() != row.arguments.size())
        throw std::runtime_error(row.fullName() + " has other arguments than its declaration");
    for (std::size_t i = 0; i < row.arguments.size(); ++i)
        json["arguments"].push_back(argumentOf(row, i, types[i]));
    json["overlap"] = nameOf(row.overlap);
    json["topByte"] = nameOf(row.topByte);
    json["sums"] = nameOfAll(row.sums);
    json["sumsOfChannels"] = {
        {"red", nameOf(row.sums.red)}, {"green", nameOf(row.sums.green)}, {"blue", nameOf(row.sums.blue)}};
    json["fractions"] = nameOf(row.fractions);
    json["uniform"] = nameOf(row.uniform);
    json["lookup"] = nameOf(row.lookup);
    if (row.lookup == Lookup::filtered)
        json["tapBits"] = tapBits;
    if (row.positions)
        json["positions"] = {{"wholeBits", row.positions->wholeBits},
                             {"fractionBits", row.positions->fractionBits},
                             {"isSigned", row.positions->isSigned}};
    json["rules"] = Json::array();
    for (const Rule &rule : row.rules)
        json["rules"].push_back(rule.broken);
    json["waived"] = Json::object();
    for (const Waiver &waiver : row.waived)
        json["waived"][std::string(waiver.proof)] = waiver.reason;
    json["drawsRandomNumbers"] = row.drawsRandomNumbers;
    json["pixelOnPixel"] = bool(row.pixelOnPixel);
    json["hasTwin"] = row.functions.twin != nullptr;
    json["drawsPixels"] = row.figure == Figure::none;
    json["looksLike"] = row.looksLike;
    json["scenes"] = Json::array();
    for (const Scene &scene : scenesOf(row)) {
        Json described = {{"label", scene.label}};
        const Call call = sceneCall(row, scene, smallStage);
        described["writes"] = areasOf(call, row.writes);
        described["reads"] = areasOf(call, row.reads);
        json["scenes"].push_back(described);
    }
    return json;
}

Json everything(const std::filesystem::path &headers) {
    Json json = {{"library", "q_Mur"}, {"subsystems", Json::array()}};
    for (const Subsystem &subsystem : subsystems()) {
        const Header header = readHeader(headers / (std::string(subsystem.name) + ".h"));
        Json rows = Json::array();
        std::map<std::string, std::size_t> met;
        for (const Row &row : subsystem.rows) {
            const std::string name(row.name);
            const auto found = header.texts.find(name);
            if (found == header.texts.end() || met[name] >= found->second.size())
                throw std::runtime_error(row.fullName() + " is not declared in the header of its subsystem");
            rows.push_back(rowOf(row, found->second[met[name]++]));
        }
        json["subsystems"].push_back({{"name", subsystem.name}, {"about", header.about}, {"functions", rows}});
    }
    return json;
}

} // namespace
} // namespace catalogue

int main(int argc, char **argv) {
    CLI::App app("Prints the catalogue of q_Mur's functions.");
    bool json = false;
    std::string headers = Q_MUR_CATALOGUE_HEADERS;
    app.add_flag("--json", json, "All of it as JSON")->required();
    app.add_option("--headers", headers, "The directory of the public headers, for their texts");
    CLI11_PARSE(app, argc, argv);
    try {
        Init_qMur_GlobalData(nullptr, nullptr);
        const std::string text = catalogue::everything(headers).dump(2) + "\n";
        const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
        if (!written || std::fflush(stdout) != 0)
            throw std::runtime_error("cannot write to the standard output");
        return 0;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "q_Mur_catalogue: %s\n", failure.what());
        return 1;
    }
}
