#include "shell/console.h"

int main(int argc, char** argv) {
    return tessor::console(argc, argv);
}
