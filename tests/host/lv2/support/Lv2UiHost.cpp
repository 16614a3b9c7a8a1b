// Synthetic pointer input for the UI host of the tests.
#include "Lv2UiHost.h"

#include <X11/extensions/XTest.h>

namespace BR::Test {

void Lv2UiHost::DragUp(int x, int y, int dy) {
    Display* input = XOpenDisplay(SharedDisplay());
    if (!input) return;
    XTestFakeMotionEvent(input, -1, x, y, CurrentTime);
    XSync(input, False);
    Idle(50);
    XTestFakeButtonEvent(input, 1, True, CurrentTime);
    XSync(input, False);
    Idle(50);
    for (int step = 20; step <= dy; step += 20) {
        XTestFakeMotionEvent(input, -1, x, y - step, CurrentTime);
        XSync(input, False);
        Idle(30);
    }
    XTestFakeButtonEvent(input, 1, False, CurrentTime);
    XSync(input, False);
    Idle(60);
    XCloseDisplay(input);
}

}  // namespace BR::Test
