// Build step: writes the Turtle files of corvane.lv2 from the module tables. The script host is
// installed as in the plug-in, so that rows that follow the scripts (the Quantizer's "Scale" rows and
// their names) are described as an instance shows them with the built-in scripts.
#include "host/lv2/Lv2Bundle.h"
#include "remote/RemoteServices.h"

int main(int argc, char** argv) {
    BR::InstallRemoteServices();
    return BR::RunLv2TurtleGenerator(BR::CorvaneBundleInfo(), argc, argv);
}
