// SPDX-License-Identifier: MIT
// Runs the fuzz target over files, for builds without libFuzzer.
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        if (!in) {
            std::cerr << "cannot open " << argv[i] << "\n";
            return 1;
        }
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cout << "replayed " << argc - 1 << " inputs\n";
    return 0;
}
