// Build step: the Turtle of corvane-probe.lv2.
#include "HostProbe.h"

int main(int argc, char** argv) {
    return BR::RunLv2TurtleGenerator(BrelCorvaneHostProbe::ProbeBundleInfo(), argc, argv);
}
