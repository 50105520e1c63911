// SPDX-License-Identifier: MIT
// Runs a fuzz target over files, and over the files in folders, as
// libFuzzer does with a corpus: for builds without libFuzzer.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            inputs.emplace_back(argv[i]);
            continue;
        }
        const std::size_t first = inputs.size();
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            if (entry.is_regular_file()) inputs.push_back(entry.path());
        std::sort(inputs.begin() + static_cast<std::ptrdiff_t>(first), inputs.end());
    }
    for (const auto& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        if (!in) {
            std::cerr << "cannot open " << path << "\n";
            return 1;
        }
        std::cout << path.filename().string() << std::endl;  // names a crash before it happens
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cout << "replayed " << inputs.size() << " inputs\n";
    return inputs.empty() ? 1 : 0;
}
