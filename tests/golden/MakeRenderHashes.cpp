// Records the reference render hashes: prints one "case block hash" line per case and block size.
// Run from the build tree and redirect into tests/golden/render_hashes.txt, only when a change of
// output is intended.
#include <cstdio>

#include "tests/support/GoldenRenders.h"

int main() {
    std::printf("# case block_size fnv1a64 (made by tests/golden/MakeRenderHashes.cpp)\n");
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases())
        for (uint32_t blockSize : BR::Test::GoldenBlockSizes())
            std::printf("%s\n", BR::Test::GoldenLine(goldenCase.name, blockSize,
                                                     BR::Test::RenderGoldenHash(goldenCase, blockSize))
                                    .c_str());
    return 0;
}
