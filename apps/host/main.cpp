// kelvarin-host [--scale pixels|twips] [--qt] [SCRIPT]: runs a control
// script against the headless host (standard input when no file is given);
// with --qt, text is measured and drawn with Qt's fonts and paint also
// writes a PNG.
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

#include "apps/host/ScriptHost.h"
#ifdef KELVARIN_HOST_QT
#include "apps/host/QtMode.h"
#endif

int main(int argc, char** argv) {
    double unitsPerPixel = 1.0;
    bool qt = false;
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
        } else if (std::strcmp(argv[i], "--qt") == 0) {
            qt = true;
        } else if (argv[i][0] == '-' && argv[i][1] != '\0') {
            std::cerr << "usage: kelvarin-host [--scale pixels|twips] [--qt] [SCRIPT]\n";
            return 2;
        } else if (!path) {
            path = argv[i];
        } else {
            std::cerr << "usage: kelvarin-host [--scale pixels|twips] [--qt] [SCRIPT]\n";
            return 2;
        }
    }
#ifdef KELVARIN_HOST_QT
    std::unique_ptr<kelvarin::script::QtMode>
        qtMode;  // outlives the script host that draws with it
#endif
    kelvarin::script::ScriptHost script(std::cout);
    script.Host().unitsPerPixel = unitsPerPixel;
#ifdef KELVARIN_HOST_QT
    if (qt) qtMode = std::make_unique<kelvarin::script::QtMode>(argc, argv, script);
#else
    if (qt) {
        std::cerr << "kelvarin-host: built without Qt, so --qt is not available\n";
        return 2;
    }
#endif
    if (!path) return script.Run(std::cin) ? 0 : 1;
    std::ifstream in(path);
    if (!in) {
        std::cerr << "kelvarin-host: cannot open " << path << "\n";
        return 2;
    }
    return script.Run(in) ? 0 : 1;
}
