// SPDX-License-Identifier: MIT
// Fuzz target for one line of the script host's language, run on a form
// with one control of each class, a raster surface and the property page
// open: whatever the line says, the host reports an error or does it, and
// nothing else comes out.
#include <sstream>
#include <string>

#include "apps/host/ScriptHost.h"
#include "apps/host/ScriptValues.h"
#include "common/Text.h"
#include "fuzz/FuzzInput.h"

namespace {

bool Is(const std::vector<std::string>& words, std::size_t i, std::string_view word) {
    return words.size() > i && kelvarin::EqualsIgnoreCase(words[i], word);
}

// Lines that read or write files, or that ask for a loop of their own
// length (a repeat count, an hour of ticks), are instructions, not hostile
// input: they are left out.
bool LeftOut(const std::string& line) {
    std::vector<std::string> words;
    try {
        words = kelvarin::script::SplitWords(line);
    } catch (const kelvarin::script::ScriptError&) {
        return false;
    }
    for (const char* files : {"save", "load", "paint"})
        if (Is(words, 0, files)) return true;
    for (const std::string& word : words)
        if (kelvarin::ToLowerAscii(word).find("picture(") != std::string::npos) return true;
    if (Is(words, 0, "gfx") && (Is(words, 2, "load") || Is(words, 2, "paint"))) return true;
    if (Is(words, 0, "gfx") && Is(words, 2, "repeat") && (words.size() < 4 || words[3].size() > 2))
        return true;
    return Is(words, 0, "tick") && (words.size() < 2 || words[1].size() > 5);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string line(reinterpret_cast<const char*>(data), size);
    line = line.substr(0, line.find('\n'));
    if (LeftOut(line)) return 0;
    std::ostringstream out;
    kelvarin::script::ScriptHost host(out);
    std::istringstream setup(
        "create DateBox d\ncreate CommandBox c\ncreate ProgressBox p\ngfx g 8 6\n"
        "page open c p\nfocus d\n");
    kelvarin::fuzz::Require(host.Run(setup), "the form for the line did not set up:\n" + out.str());
    host.Execute(line);
    return 0;
}
