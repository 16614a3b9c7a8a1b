// A blob whose size field, or the bytes it counts, run past the end of its message (or whose size is
// negative) is refused before any of its bytes are read, alone or inside a bundle, and the next packet is
// served; a blob that fits is an argument like another. The OSC library would walk past such a blob to the
// next argument before checking anything (the fuzzer found reads of the blob and crashes inside the
// library), so the server refuses the message from its raw bytes first ("blob exceeds message size").
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {

// "/set" with type tags ",b" and a blob of `size` bytes of which only four follow.
std::vector<char> SetWithBlob(uint32_t size) {
    std::vector<char> packet = {'/', 's', 'e', 't', 0, 0, 0, 0, ',', 'b', 0, 0};
    for (int shift = 24; shift >= 0; shift -= 8)
        packet.push_back(char(size >> shift));
    packet.insert(packet.end(), {1, 2, 3, 4});
    return packet;
}

}  // namespace

TEST(OSCMessages, BlobPastItsMessageIsRefusedAndTheNextPacketServed) {
    auto driver = MakeRemoteDriver("lfo", 7320, 1);
    ASSERT_TRUE(WaitListening(*driver, 7321));
    UdpPeer client;
    auto ping = [&] {
        client.Send(7321, "/ping",
                    [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
        return client.Receive();
    };
    testing::internal::CaptureStdout();
    // The size the fuzzer found, and the largest and a negative one.
    for (uint32_t size : {0x2f800000u, 0x7FFFFFFFu, 0xFFFFFFFCu}) {
        const std::vector<char> packet = SetWithBlob(size);
        client.SendRaw(7321, packet.data(), packet.size());
        EXPECT_NE(ping(), "");
    }
    // The same message as the element of a bundle.
    std::vector<char> bundle = {'#', 'b', 'u', 'n', 'd', 'l', 'e', 0, 0, 0, 0, 0, 0, 0, 0, 1};
    const std::vector<char> element = SetWithBlob(0x40000000u);
    bundle.insert(bundle.end(), {0, 0, 0, char(element.size())});
    bundle.insert(bundle.end(), element.begin(), element.end());
    client.SendRaw(7321, bundle.data(), bundle.size());
    EXPECT_NE(ping(), "");
    // Two blobs, the first past the end: the library would read the second's size far outside.
    std::vector<char> two = {'/', 'n', 'o', 't', 0, 0, 0, 0, ',', 'b', 'b', 0, 0x2f, char(0x80), 0, 0};
    client.SendRaw(7321, two.data(), two.size());
    EXPECT_NE(ping(), "");
    // An address with a zero inside its first word: the library reads the address on to the first
    // word ending in zero, so the blobs after it are checked where the library finds them.
    const std::vector<char> inner = {'/',        'n',        'o', 't', 0,   'e',        '/', char(0x96),
                                     char(0x8b), char(0x90), 'e', 'p', 's', 'L',        0,   0,
                                     ',',        'b',        'b', 0,   '/', char(0x80), 0,   0};
    client.SendRaw(7321, inner.data(), inner.size());
    EXPECT_NE(ping(), "");
    // A blob whose size field itself lies past the end, after the address and type tags the library
    // reads on to words ending in zero (the fuzzer's packet), and after a plain "/set ,b".
    const std::vector<char> noSize = {'/',        'n',        'o',        't',  0, 'e', '/',
                                      char(0x96), char(0x8b), char(0x90), 0,    0, ',', 'b',
                                      0,          char(0xf9), char(0xd0), 0x7f, 0, 0};
    client.SendRaw(7321, noSize.data(), noSize.size());
    EXPECT_NE(ping(), "");
    const std::vector<char> bare = {'/', 's', 'e', 't', 0, 0, 0, 0, ',', 'b', 0, 0};
    client.SendRaw(7321, bare.data(), bare.size());
    EXPECT_NE(ping(), "");
    // A blob of four bytes that are there: the command's own refusal.
    const std::vector<char> fits = SetWithBlob(4);
    client.SendRaw(7321, fits.data(), fits.size());
    EXPECT_NE(ping(), "");
    const std::string out = testing::internal::GetCapturedStdout();
    auto count = [&](const std::string& text) {
        size_t n = 0;
        for (size_t at = out.find(text); at != std::string::npos; at = out.find(text, at + 1))
            ++n;
        return n;
    };
    EXPECT_EQ(count("error while parsing message: blob exceeds message size\n"), 8u) << out;
    EXPECT_NE(out.find("error while parsing message: /set: wrong argument type\n"), std::string::npos) << out;
}
