// SPDX-License-Identifier: MIT
// Runs the script language against the headless host: one command a line,
// looked up in a table of commands (the .cpp) that gives each its usage,
// its number of words and what it does.
#pragma once

#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/headless/HeadlessHost.h"
#include "pages/general/General.h"

namespace kelvarin {
class clsGFX_2D;
}

namespace kelvarin::script {

class ScriptHost {
public:
    explicit ScriptHost(std::ostream& out);
    ~ScriptHost();

    // Runs every line of the stream; false when any command failed.
    bool Run(std::istream& in);
    // Runs one line (used by Run and by the modal loop of a popup).
    void Execute(std::string_view line);

    host::headless::HeadlessHost& Host() noexcept { return host_; }
    bool Failed() const noexcept { return failed_; }

    // Called after `paint` has written its bitmap file, with the pixels and
    // the file's path (a host with an image library writes another format too).
    std::function<void(const host::headless::Raster&, const std::string&)> afterPaint;

private:
    using Words = std::vector<std::string>;
    struct Command;
    static const std::vector<Command>& Commands();

    void Dispatch(const Words& words, std::string_view line);
    void RunModal(host::Popup& popup, host::Point screen);
    host::headless::Placed& Control(std::string_view name);
    const host::headless::Raster& Pixels(std::string_view target);
    // "NAME.MEMBER" -> placed control and member name.
    std::pair<host::headless::Placed*, std::string> Target(std::string_view word);
    void Save(const std::string& path);
    void Load(const std::string& path);
    void Create(const std::string& className, const std::string& name, host::Size size);
    void SendKey(std::string_view action, int code, int shift);
    // A press, release or move on a control (through its pointer protocol)
    // or on the popup. Only dblclick makes a press the second of a double click.
    void SendMouse(std::string_view target, std::string_view action, int button, int shift,
                   double x, double y, bool secondOfDouble = false);
    void TypeText(const std::string& text);
    void PrintEvents(std::string_view name);
    void PrintNotifications(std::string_view name);
    void PrintDump(std::string_view target);
    void PaintToFile(std::string_view target, const std::string& path);
    // The property page's commands (the words after "page").
    void Page(const Words& words);
    // Removes a control from the form, and from the page's selection.
    void Remove(std::string_view name);
    // The raster surfaces' commands (the words after "gfx"; ScriptGfx.cpp).
    void Gfx(const Words& words);
    clsGFX_2D& Surface(std::string_view name);

    std::ostream& out_;
    host::headless::HeadlessHost host_;
    std::istream* in_ = nullptr;
    bool failed_ = false;
    host::Point popupPosition_;
    std::unique_ptr<pages::General> page_;
    // Named raster surfaces, apart from the controls' names.
    std::vector<std::pair<std::string, std::unique_ptr<clsGFX_2D>>> surfaces_;
};

}  // namespace kelvarin::script
