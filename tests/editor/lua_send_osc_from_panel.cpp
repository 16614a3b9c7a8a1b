// sendOSC in a panel's state is the remote scripting's own: a message to a UDP socket on loopback arrives
// with its path and arguments, and a bad address or argument is a Lua error.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/LuaPanelRig.h"

namespace BR::Test {

TEST(LuaSendOSCFromPanel, MessageArrivesOnLoopback) {
    // A socket on a port the system picks.
    const int receiver = socket(AF_INET, SOCK_DGRAM, 0);
    ASSERT_GE(receiver, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    ASSERT_EQ(bind(receiver, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    socklen_t length = sizeof address;
    ASSERT_EQ(getsockname(receiver, reinterpret_cast<sockaddr*>(&address), &length), 0);
    const int port = ntohs(address.sin_port);

    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("sendOSC( '127.0.0.1:" + std::to_string(port) + "', '/panel/test', 'fi', { 0.5, 7 } )"),
              "");
    pollfd wait{receiver, POLLIN, 0};
    ASSERT_EQ(poll(&wait, 1, 2000), 1);
    char packet[512];
    const ssize_t size = recv(receiver, packet, sizeof packet, 0);
    close(receiver);
    ASSERT_GT(size, 0);
    const std::string bytes(packet, size_t(size));
    EXPECT_NE(bytes.find("/panel/test"), std::string::npos);
    EXPECT_NE(bytes.find(",fi"), std::string::npos);
    // The int 7 in network order closes the message.
    EXPECT_EQ(bytes.substr(bytes.size() - 4), std::string("\0\0\0\x07", 4));

    EXPECT_NE(rig.Run("sendOSC( '127.0.0.1:9', '/x', 'ff', { 1 } )")
                  .find("format string length mismatch in sendOSC"),
              std::string::npos);
    EXPECT_NE(rig.Run("sendOSC( '127.0.0.1:9' )"), "");
}

}  // namespace BR::Test
