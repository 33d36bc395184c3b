#include "areas.h"
#include "row.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace catalogue {
namespace {

/// A number of the contract, at times at one of its ends.
double randomNumber(const Argument &argument, bool real, Random &random) {
    const Range &range = argument.contract;
    if (real) {
        if (!std::isfinite(range.low) || !std::isfinite(range.high))
            return static_cast<double>(random.realBetween(-8, 8));
        return range.low + (range.high - range.low) * random.between(0, 4096) / 4096;
    }
    if (random.oneIn(8))
        return random.oneIn(2) ? range.low : range.high;
    if (range.high > anyInt.high) // then it is anyWord
        return random.word();
    return random.between(static_cast<int>(range.low), static_cast<int>(range.high));
}

/// The surface that an argument belongs to, where it has been made.
tagRECT surroundings(const Call &call, const Argument &argument) {
    if (!argument.of.empty() && call[argument.of].is<Plane>())
        return call[argument.of].plane().rect();
    return {0, 0, 16, 16};
}

/// The block of a module that draws in three dimensions, as `make` makes it for its destination.
template <class Make>
Value privateBlock(const Call &call, std::size_t index, Make make) {
    const Argument &argument = call.row().arguments[index];
    const Type type = call.row().functions.types[index];
    const Plane destination = argument.of.empty() ? Plane::surface(16, 16) : call[argument.of].plane();
    if (type == Type::pipelineBlock)
        return make(std::type_identity<PipelineBlock>(), destination);
    if (type == Type::texturedBlock)
        return make(std::type_identity<TexturedBlock>(), destination);
    return {};
}

Value randomValue(const Call &call, std::size_t index, Random &random) {
    const Argument &argument = call.row().arguments[index];
    const tagRECT around = surroundings(call, argument);
    const int width = widthOf(around);
    const int height = heightOf(around);
    switch (argument.kind) {
    case Kind::clip: // every other one open
        return random.oneIn(2) ? around : random.rectInsideOrEmpty(width, height);
    case Kind::rectangle:
        return random.rectInsideOrEmpty(width, height);
    case Kind::point:
        return tagPOINT{random.between(0, width - 1), random.between(0, height - 1)};
    case Kind::position:
        return static_cast<double>(random.between(-6, 21));
    case Kind::extent:
        return static_cast<double>(random.between(0, std::min(width, height)));
    case Kind::colour:
    case Kind::key:
        return static_cast<double>(random.pixel());
    case Kind::angle:
        if (call.row().isReal(index) && random.oneIn(4))
            return random.between(-8, 8) * quarterTurn;
        break;
    case Kind::matrix:
        return Plane::array<float>(16, [&random](int) { return random.real(); });
    case Kind::privateBlock:
        return privateBlock(call, index, [&random]<class Block>(std::type_identity<Block>, const Plane &surface) {
            return Block::random(random, surface);
        });
    case Kind::radius:
    case Kind::count:
    case Kind::weight:
    case Kind::alpha:
    case Kind::scale:
    case Kind::number:
    case Kind::choice:
    case Kind::unused:
        break;
    default:
        return {};
    }
    return randomNumber(argument, call.row().isReal(index), random);
}

Value sceneValue(const Call &call, std::size_t index, const Stage &stage) {
    const Argument &argument = call.row().arguments[index];
    const double number = stage.along(argument.inScene);
    switch (argument.kind) {
    case Kind::rectangle:
    case Kind::clip:
        return tagRECT{0, 0, stage.width, stage.height};
    case Kind::point:
        return tagPOINT{stage.width / 2, stage.height / 2};
    case Kind::position:
        // A name ends in X or Y, or begins so.
        return std::floor(number *
                          (argument.name.find_first_of("yY") == std::string_view::npos ? stage.width : stage.height));
    case Kind::extent:
        return argument.name.ends_with("idth") ? stage.width : stage.height;
    case Kind::colour:
        return 0xFFB060;
    case Kind::key:
        return 0;
    case Kind::matrix:
        return Plane::array<float>(16, [](int i) { return i % 5 == 0 ? 1.0F : 0.25F; });
    case Kind::privateBlock:
        return privateBlock(call, index, []<class Block>(std::type_identity<Block>, const Plane &surface) {
            return Block::fresh(surface);
        });
    default:
        return call.row().isReal(index) ? number : std::floor(number);
    }
}

/// Surfaces first, since the other arguments lie on them.
template <class Make>
void fill(Call &call, Make make) {
    for (const bool surfaces : {true, false})
        for (std::size_t i = 0; i < call.size(); ++i)
            if (isSurface(call.row().arguments[i].kind) == surfaces)
                call[i] = make(i);
}

Call chosenCall(const Row &row, Random &random, tagPOINT size) {
    Call call(row);
    fill(call, [&](std::size_t i) -> Value {
        if (isSurface(row.arguments[i].kind)) {
            const int width = size.x > 0 ? static_cast<int>(size.x) : random.between(1, 16);
            const int height = size.y > 0 ? static_cast<int>(size.y) : random.between(1, 16);
            return Plane::randomSurface(random, width, height);
        }
        return randomValue(call, i, random);
    });
    if (row.arrange)
        row.arrange(call, random);
    call.settle();
    return call;
}

/// Whether nothing is in the region that a call may write.
bool writesNothing(const Call &call) {
    if (!call.row().writes)
        return false;
    const Areas areas = call.row().writes(call);
    return std::all_of(areas.begin(), areas.end(), [](const Area &area) { return area.part.isEmpty(); });
}

} // namespace

std::string Row::fullName() const {
    return label.empty() ? std::string(name) : std::string(name) + " " + std::string(label);
}

const Argument *Row::argument(std::string_view wanted) const {
    const auto found =
        std::find_if(arguments.begin(), arguments.end(), [wanted](const Argument &a) { return a.name == wanted; });
    return found == arguments.end() ? nullptr : &*found;
}

const std::vector<Subsystem> &subsystems() {
    // Never destroyed: hosts make calls at the very end of a program, and the checked library keeps rows in mind.
    static const auto &all = *new std::vector<Subsystem>{
        {"frame", frameRows()},       {"blit", blitRows()},     {"warp", warpRows()},     {"draw", drawRows()},
        {"region", regionRows()},     {"filter", filterRows()}, {"math3d", math3dRows()}, {"pipeline", pipelineRows()},
        {"textured", texturedRows()}, {"sprite", spriteRows()},
    };
    return all;
}

void forEachRow(const std::function<void(const Row &)> &visit) {
    for (const Subsystem &subsystem : subsystems())
        for (const Row &row : subsystem.rows)
            visit(row);
}

bool keepsToContract(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call[i].is<double>() && !call.row().arguments[i].contract.contains(call[i].number()))
            return false;
    for (const Rule &rule : call.row().rules)
        if (!rule.holds(call))
            return false;
    for (const Region *region : {&call.row().writes, &call.row().reads}) {
        if (!*region)
            continue;
        for (const Area &area : (*region)(call)) {
            const Value &value = call[area.argument];
            const Plane *plane = value.surface();
            if (!plane && call.row().argument(area.argument)->mayBeNull)
                continue;
            if (plane ? !plane->holds(area.part) : value.is<Plane>() && !area.part.isEmpty())
                return false;
        }
    }
    return true;
}

Call randomCall(const Row &row, Random &random, tagPOINT size) {
    Call call = chosenCall(row, random, size);
    // Of those that miss their surface or their clip a few are left.
    for (int more = random.oneIn(4) ? 0 : 4; more > 0 && writesNothing(call); --more)
        call = chosenCall(row, random, size);
    return call;
}

Call sceneCall(const Row &row, const Scene &scene, const Stage &stage) {
    Call call(row);
    int pictures = 0;
    fill(call, [&](std::size_t i) -> Value {
        if (isSurface(row.arguments[i].kind))
            return stage.picture(pictures++);
        return sceneValue(call, i, stage);
    });
    if (scene.set)
        scene.set(call, stage);
    call.settle();
    return call;
}

std::vector<Call> sceneCalls(const Row &row, const Scene &scene, Stage stage) {
    std::vector<Call> calls;
    calls.reserve(static_cast<std::size_t>(scene.calls));
    if (scene.calls > 1)
        stage.time = 0;
    calls.push_back(sceneCall(row, scene, stage));
    for (stage.call = 1; stage.call < scene.calls; ++stage.call) {
        stage.time = static_cast<double>(stage.call) / scene.calls;
        Call next = calls.front().sharingMemory();
        for (std::size_t i = 0; i < next.size(); ++i)
            if (next[i].is<double>() && row.arguments[i].kind != Kind::pitch)
                next[i] = sceneValue(next, i, stage);
        if (scene.set)
            scene.set(next, stage);
        calls.push_back(std::move(next));
    }
    return calls;
}

Scene pictureOf(const Row &row) {
    return row.picture ? *row.picture : scenesOf(row).front();
}

std::vector<Scene> scenesOf(const Row &row) {
    return row.scenes.empty() ? std::vector<Scene>{{}} : row.scenes;
}

} // namespace catalogue
