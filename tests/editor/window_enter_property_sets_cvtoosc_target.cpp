// Under Xvfb with synthetic input, on CV To OSC's own panel: a click on the target field opens "Enter
// Property" with the field's tooltip and the current target; typing a new target and "OK" set the
// module's target, and the sender thread's next packet goes to it (a real UDP socket on loopback);
// typing and "Cancel" (or Escape) leave the target, and where packets go, as they were.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "editor/widgets/TextField.h"
#include "modules/events/CVToOSC.h"
#include "remote/RemoteServices.h"
#include "support/DialogRig.h"

namespace BR::Test {
namespace {

using BrelCorvaneCVToOSC::kPropertyTarget;

// A UDP socket on 127.0.0.1 at a port the system picks (outside the ranges the OSC tests use).
struct LoopbackSocket {
    LoopbackSocket() {
        fd = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;
        socklen_t length = sizeof address;
        if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
            port = ntohs(address.sin_port);
    }
    ~LoopbackSocket() { close(fd); }
    // Packets that arrive until none has come for `quiet` milliseconds.
    int Drain(int quiet = 300) const {
        int packets = 0;
        char buffer[2048];
        for (pollfd p{fd, POLLIN, 0}; poll(&p, 1, quiet) > 0; p.revents = 0)
            if (recv(fd, buffer, sizeof buffer, 0) > 0) ++packets;
        return packets;
    }
    int fd = -1;
    int port = 0;
};

PropertyTextField* FieldOf(Manager& manager, uint32_t property) {
    for (UIElement* element : manager.elements)
        if (auto* field = dynamic_cast<PropertyTextField*>(element); field && field->property == property)
            return field;
    return nullptr;
}

}  // namespace

TEST(WindowEnterPropertyCVToOSC, OkSetsTargetCancelLeavesIt) {
    InstallOSCTransmitter();
    LoopbackSocket first, second;
    ASSERT_GT(first.port, 0);
    ASSERT_GT(second.port, 0);
    DialogWindowRig w("cvtoosc");
    auto& module = static_cast<BrelCorvaneCVToOSC::BrelCorvane&>(w.panel.driver->Module());
    ASSERT_TRUE(w.panel.driver->SetParameterByName("Enable L", 1.0f));
    const std::string before = "127.0.0.1:" + std::to_string(first.port);
    ASSERT_EQ(module.SetProperty(kPropertyTarget, before.c_str(), uint32_t(before.size() + 1)), kNoErr);
    ASSERT_TRUE(w.OpenScript()) << w.window.LastError();

    PropertyTextField* field = FieldOf(w.panel.manager, kPropertyTarget);
    ASSERT_NE(field, nullptr) << "CV To OSC's panel has no target field";
    const Point offset = field->ParentOffset();
    const Point centre{(field->rect[0] + field->rect[3]) * 0.5f + offset.x,
                       (field->rect[1] + field->rect[4]) * 0.5f + offset.y};
    // A render at a new level: one packet to wherever the target points now.
    float level = 0.25f;
    auto renderOnce = [&] {
        RenderFrames(*w.panel.driver, 256, 256,
                     {std::vector<float>(256, level), std::vector<float>(256, 0.0f)});
        level += 0.125f;
    };

    w.Click(centre);
    Dialog* d = w.ActiveDialog();
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->Title(), "Enter Property");
    EXPECT_EQ(d->Find(kDialogCaption)->text, "Enter target address and port (e.g. 127.0.0.1:7000)");
    EXPECT_EQ(d->Find(kEnterPropertyField)->text, before);
    // Clear the shown target and type the new one.
    for (size_t i = 0; i < before.size(); ++i)
        w.Key(XK_BackSpace);
    const std::string typed = "osc.udp://127.0.0.1:" + std::to_string(second.port);
    w.Type(typed);
    EXPECT_EQ(d->Find(kEnterPropertyField)->text, typed);
    EXPECT_EQ(module.Target(), before);  // nothing is written before "OK"
    w.SaveShot("enter-property-cvtoosc-target.png");
    w.Click(w.DialogPoint(kDialogOK));
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(module.Target(), typed);
    EXPECT_EQ(StringProperty(module, kPropertyTarget), typed);
    EXPECT_EQ(module.Sender().TargetAddress(), 0x7F000001u);
    EXPECT_EQ(module.Sender().TargetPort(), second.port);
    EXPECT_TRUE(module.Sender().TargetResolved());
    renderOnce();
    EXPECT_EQ(second.Drain(), 1);
    EXPECT_EQ(first.Drain(50), 0);

    // "Cancel" after typing another target: the module keeps the one set by "OK".
    w.Click(centre);
    ASSERT_NE(w.ActiveDialog(), nullptr);
    EXPECT_EQ(w.ActiveDialog()->Find(kEnterPropertyField)->text, typed);
    for (size_t i = 0; i < std::to_string(second.port).size(); ++i)
        w.Key(XK_BackSpace);
    w.Type(std::to_string(first.port));
    w.Click(w.DialogPoint(kDialogCancel));
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(module.Target(), typed);
    EXPECT_EQ(module.Sender().TargetPort(), second.port);
    renderOnce();
    EXPECT_EQ(second.Drain(), 1);
    EXPECT_EQ(first.Drain(50), 0);

    // Escape is "Cancel" too.
    w.Click(centre);
    ASSERT_NE(w.ActiveDialog(), nullptr);
    w.Type("9");
    w.Key(XK_Escape);
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(module.Target(), typed);
    EXPECT_EQ(module.Sender().TargetPort(), second.port);
}

}  // namespace BR::Test
