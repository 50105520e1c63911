// kelvarin-host [--scale pixels|twips] [SCRIPT]: runs a control script
// against the headless host (standard input when no file is given).
#include <cstring>
#include <fstream>
#include <iostream>

#include "apps/host/ScriptHost.h"

int main(int argc, char** argv) {
    double unitsPerPixel = 1.0;
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--scale") == 0 && i + 1 < argc) {
            const char* scale = argv[++i];
            if (std::strcmp(scale, "twips") == 0) {
                unitsPerPixel = 15.0;
            } else if (std::strcmp(scale, "pixels") != 0) {
                std::cerr << "kelvarin-host: --scale takes pixels or twips\n";
                return 2;
            }
        } else if (argv[i][0] == '-' && argv[i][1] != '\0') {
            std::cerr << "usage: kelvarin-host [--scale pixels|twips] [SCRIPT]\n";
            return 2;
        } else if (!path) {
            path = argv[i];
        } else {
            std::cerr << "usage: kelvarin-host [--scale pixels|twips] [SCRIPT]\n";
            return 2;
        }
    }
    kelvarin::script::ScriptHost script(std::cout);
    script.Host().unitsPerPixel = unitsPerPixel;
    if (!path) return script.Run(std::cin) ? 0 : 1;
    std::ifstream in(path);
    if (!in) {
        std::cerr << "kelvarin-host: cannot open " << path << "\n";
        return 2;
    }
    return script.Run(in) ? 0 : 1;
}
