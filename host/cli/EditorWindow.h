// A module's editor in an X11 window of the command's own: its panel script (or the plain panel), the
// render thread that draws it, and the window's events, served from the thread that opened it.
#pragma once

#include <memory>
#include <string>

class BrelCorvaneBase;

namespace BR {

class EditorWindow {
public:
    EditorWindow();
    ~EditorWindow();  // closes the window, its render thread first
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;

    // Opens the editor of `module` titled `title`; false with LastError() when the window cannot open.
    bool Open(BrelCorvaneBase& module, const std::string& title);
    // Serves the window's events for up to `milliseconds`; false once the window has been closed.
    bool Pump(int milliseconds);
    void Close();
    const std::string& LastError() const { return error; }

private:
    struct Parts;
    std::unique_ptr<Parts> parts;
    std::string error;
};

}  // namespace BR
