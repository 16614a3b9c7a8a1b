// Build step: writes the Turtle files of corvane.lv2 from the module tables.
#include "host/lv2/Lv2Bundle.h"

int main(int argc, char** argv) {
    return BR::RunLv2TurtleGenerator(BR::CorvaneBundleInfo(), argc, argv);
}
