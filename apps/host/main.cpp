// SPDX-License-Identifier: MIT
// kelvarin-host [--scale pixels|twips] [--qt] [SCRIPT]: runs a control
// script against the headless host (standard input when no file is given);
// with --qt, text is measured and drawn with Qt's fonts and paint also
// writes a PNG.
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

#include <kelvarin/Version.h>

#include "apps/host/ScriptHost.h"
#ifdef KELVARIN_HOST_QT
#include "apps/host/QtMode.h"
#endif

namespace {

constexpr const char* kUsage = "usage: kelvarin-host [--scale pixels|twips] [--qt] [SCRIPT]\n";

constexpr const char* kHelp =
    "Runs a script of commands against Kelvarin's controls on a headless host,\n"
    "one command a line, from SCRIPT or standard input, and prints what they\n"
    "answer. The exit status is 1 when a command failed, 2 for bad arguments.\n"
    "\n"
    "  --scale pixels|twips  the container's units (pixels unless given)\n"
    "  --qt                  measure and draw text with Qt's fonts; paint writes\n"
    "                        a PNG beside each bitmap\n"
    "  --help                show this text and exit\n"
    "  --version             show the version and exit\n"
    "\n"
    "The script language is described in kelvarin-host(1).\n";

}  // namespace

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
        } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::cout << kUsage << "\n" << kHelp;
            return 0;
        } else if (std::strcmp(argv[i], "--version") == 0) {
            std::cout << "kelvarin-host " KELVARIN_VERSION_STRING "\n";
            return 0;
        } else if ((argv[i][0] == '-' && argv[i][1] != '\0') || path) {
            std::cerr << kUsage;
            return 2;
        } else {
            path = argv[i];
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
