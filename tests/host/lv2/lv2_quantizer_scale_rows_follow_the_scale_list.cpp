// The Turtle of the Quantizer describes its "Scale" rows as an instance with the built-in scale list
// shows them: up to 11, one scale point per scale, so that a host lets every scale be chosen.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::string QuantizerTurtle() {
    const char* binary = std::getenv("CORVANE_BINARY");
    if (!binary) return "";
    std::ifstream in(std::filesystem::path(binary).parent_path() / "lv2" / "corvane.lv2" / "quantizer.ttl");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The text of the port with this symbol.
std::string PortText(const std::string& turtle, const std::string& symbol) {
    const size_t at = turtle.find("lv2:symbol \"" + symbol + "\" ;");
    if (at == std::string::npos) return "";
    const size_t begin = turtle.rfind('[', turtle.rfind("lv2:index", at));
    const size_t end = turtle.find("    ]", at);
    return turtle.substr(begin, end - begin);
}

}  // namespace

TEST(Lv2Quantizer, ScaleRowsFollowTheBuiltInScaleList) {
    const std::string ttl = QuantizerTurtle();
    ASSERT_FALSE(ttl.empty()) << "no quantizer.ttl beside the corvane command";
    for (const char* symbol : {"scale_l", "scale_r"}) {
        SCOPED_TRACE(symbol);
        const std::string port = PortText(ttl, symbol);
        ASSERT_FALSE(port.empty());
        EXPECT_NE(port.find("lv2:maximum 11.0"), std::string::npos) << port;
        EXPECT_NE(port.find("lv2:scalePoint [ rdfs:label \"Major\" ; rdf:value 0.0 ]"), std::string::npos);
        EXPECT_NE(port.find("lv2:scalePoint [ rdfs:label \"Octaves\" ; rdf:value 11.0 ]"), std::string::npos);
    }
}
