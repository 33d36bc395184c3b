#include <q_Mur/surface.hpp>

#include <cstdio>

int main() {
    q_Mur::Surface surface(4, 4);
    q_Mur::fill(surface, {1, 1, 3, 3}, 0x123456);
    const bool works = surface.at(0, 0) == 0 && surface.at(1, 1) == 0x123456 && surface.at(2, 2) == 0x123456;
    std::puts(works ? "the installed surface works" : "the installed surface does not work");
    return works ? 0 : 1;
}
