#include "run.h"

int main(int argc, char **argv) {
    return test::run(argc, argv);
}
