// Generated hostile patches and render options (fixed seed, thousands of each: wrong types, unknown
// keys, deep nesting, huge counts, numbers beyond a double, lying files, then the text itself cut and
// flipped) given to the command in-process: each ends in a render or in status 2 with a message that
// names the patch file, never in a crash, a hang, an unexpected exception or a sanitizer report.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "HostileFiles.h"

namespace {

using BR::Test::Bytes;
using BR::Test::CaseRandom;

constexpr size_t kPatchCases = 4000;
constexpr size_t kOptionCases = 4000;

// Numbers as text; none of them a length that would be accepted and take long to render.
const std::vector<std::string> kNumbers = {"0",
                                           "-1",
                                           "1",
                                           "0.5",
                                           "2",
                                           "64",
                                           "1000",
                                           "1024",
                                           "48000",
                                           "1e400",
                                           "-1e400",
                                           "1e308",
                                           "1e-300",
                                           "-0",
                                           "1e9",
                                           "2.5",
                                           "-1e9",
                                           "1e10",
                                           "999",
                                           "1",
                                           "4096",
                                           "768000",
                                           "1e-9",
                                           "4294967296",
                                           "9223372036854775807",
                                           "18446744073709551616",
                                           std::string(400, '9')};

// Property ids: those the modules answer, and some no module knows.
const std::vector<std::string> kPropertyIds = {
    "2",     "33",    "64001", "64008", "64009", "64015",      "64016",      "64017", "64018",
    "64019", "64020", "64090", "64091", "64092", "64093",      "64094",      "64120", "64121",
    "64150", "64151", "64152", "64153", "0",     "4294967295", "4294967296", "-1",    "x"};

// "ID", "ID=INTEGER" or "ID=TEXT", as --property and a patch's "properties" take them.
std::string PropertyText(CaseRandom& random) {
    const std::string id = random.Pick(kPropertyIds);
    switch (random.Below(5)) {
        case 0:
            return id;
        case 1:
            return id + "=" +
                   random.Pick(
                       std::vector<std::string>{"0", "1", "-1", "3", "2147483647", "-2147483648", "129"});
        case 2:
            return id + "=" + random.Pick(kNumbers);
        case 3:
            return id + "=" + std::string(random.Below(3000), 'g');
        default:
            return id + "=";
    }
}

// Files for the patches and options to refer to, good and damaged.
struct CaseFiles {
    std::string folder = BR::Test::MakeCaseFolder();
    std::vector<std::string> midi, wav, state, calibration;

    explicit CaseFiles(CaseRandom& random) {
        for (int k = 0; k < 6; ++k) {
            std::vector<size_t> fields;
            Bytes bytes = BR::Test::MidiSeed(random, fields);
            if (k >= 3) bytes = BR::Test::Damage(std::move(bytes), random, fields, true);
            midi.push_back(Write("m" + std::to_string(k) + ".mid", bytes));
            bytes = BR::Test::WavSeed(random, folder + "/seed.wav", fields);
            if (k >= 3) bytes = BR::Test::Damage(std::move(bytes), random, fields, false);
            wav.push_back(Write("w" + std::to_string(k) + ".wav", bytes));
        }
        for (const std::string stem : {"dc", "voicecontroller"}) {
            const std::string path = folder + "/" + stem + ".state";
            const auto made = BR::Test::RunCase(
                {"render", stem, "--frames", "8", "--state-out", path, "--out", folder + "/seed.wav"},
                "seed");
            EXPECT_EQ(made.status, 0) << made.err;
            state.push_back(path);
            state.push_back(Write(stem + "-damaged.state", BR::Test::Damage(BR::Test::ReadBytes(path), random,
                                                                            {8, 12, 16, 20}, false)));
        }
        const std::string good = "Corvane Calibration Data\nversion: 1\n60 0.5\n72 0.6\n";
        calibration.push_back(Write("good.txt", Bytes(good.begin(), good.end())));
        const std::string bad = "Corvane Calibration Data\nversion: 1\n999999999999 1e400\n";
        calibration.push_back(Write("bad.txt", Bytes(bad.begin(), bad.end())));
        std::filesystem::create_directory(folder + "/sub");
    }
    ~CaseFiles() { std::filesystem::remove_all(folder); }

    std::string Write(const std::string& name, const Bytes& bytes) const {
        BR::Test::WriteBytes(folder + "/" + name, bytes);
        return folder + "/" + name;
    }
};

std::string Quote(const std::string& text) {
    std::string quoted = "\"";
    for (char c : text)
        quoted += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return quoted + "\"";
}

// Any JSON value, `depth` levels deep at most (and now and then far deeper).
std::string AnyValue(CaseRandom& random, int depth) {
    switch (random.Below(depth > 0 ? 7 : 5)) {
        case 0:
            return random.Pick(kNumbers);
        case 1:
            return random.OneIn(2) ? "true" : "false";
        case 2:
            return "null";
        case 3:
            return Quote(
                random.Pick(std::vector<std::string>{"", "x", "dc", "a:0", "4/4", "Master", "\xC3\xA9"}));
        case 4: {
            const size_t levels = random.Pick(std::vector<size_t>{15, 16, 17, 40, 2000});
            return std::string(levels, '[') + std::string(levels, ']');
        }
        case 5:
            return "[" + AnyValue(random, depth - 1) + "," + AnyValue(random, depth - 1) + "]";
        default:
            return "{\"k\":" + AnyValue(random, depth - 1) + "}";
    }
}

// Half the patches are hostile only now and then: their values are of the right kind.
bool hostileCase = true;

// The value of a known key: mostly of the right kind, sometimes anything.
std::string Either(CaseRandom& random, const std::string& right) {
    return hostileCase && random.OneIn(6) ? AnyValue(random, 3) : right;
}

// A number for a key: any of kNumbers in a hostile case, else a plain one.
std::string Number(CaseRandom& random, const std::vector<std::string>& plain) {
    return hostileCase ? random.Pick(kNumbers) : random.Pick(plain);
}

std::string Instance(CaseRandom& random, const CaseFiles& files, size_t index, size_t count) {
    static const std::vector<std::string> hostileModules = {
        "dc", "dc", "lfo", "voicecontroller", "CRdc", "steplfo", "quantizer", "trigger", "nosuch", ""};
    static const std::vector<std::string> plainModules = {"dc", "CRdc", "voicecontroller"};
    const std::vector<std::string>& modules = hostileCase ? hostileModules : plainModules;
    static const std::vector<std::string> hostileRows = {"Output Positive L", "Master Bypass", "Speed L",
                                                         "Poly Mode", "Nope"};
    static const std::vector<std::string> plainRows = {"Master Bypass"};
    const std::vector<std::string>& rows = hostileCase ? hostileRows : plainRows;
    std::string json =
        "{\"name\":" + Either(random, Quote(random.OneIn(20) ? "i0" : "i" + std::to_string(index)));
    json += ",\"module\":" + Either(random, Quote(random.Pick(modules)));
    if (random.OneIn(3)) {
        json += ",\"set\":{";
        for (size_t n = random.Below(4); n > 0; --n)
            json +=
                Quote(random.Pick(rows)) + ":" +
                Either(random, !hostileCase || random.OneIn(2) ? Number(random, {"0", "1"})
                                                               : Quote(random.OneIn(2) ? "Master" : "on")) +
                (n > 1 ? "," : "");
        json += "}";
    }
    if (hostileCase && random.OneIn(5)) {
        json += ",\"properties\":[";
        for (size_t n = random.Below(4); n > 0; --n)
            json += (random.OneIn(3) ? random.Pick(kPropertyIds) : Quote(PropertyText(random))) +
                    (n > 1 ? "," : "");
        json += "]";
    }
    if (random.OneIn(5))
        json += ",\"midi\":" + Either(random, Quote(files.midi[random.Below(hostileCase ? 6 : 3)]));
    if (random.OneIn(5))
        json += ",\"events\":" + Either(random, "[" +
                                                    Quote(Number(random, {"0", "10"}) + ":" +
                                                          (hostileCase ? random.Pick(std::vector<std::string>{
                                                                             "903C64", "F0F7", "9", "ZZ", ""})
                                                                       : "903C64")) +
                                                    "]");
    if (random.OneIn(3)) {
        json += ",\"inputs\":[";
        for (size_t n = random.Below(4); n > 0; --n) {
            const std::string channel = hostileCase && random.OneIn(4) ? random.Pick(kNumbers) : "0";
            json += random.OneIn(5)   ? "null"
                    : random.OneIn(2) ? Quote(files.wav[random.Below(hostileCase ? 6 : 3)] + ":" + channel)
                    : hostileCase
                        ? Quote("i" + std::to_string(random.Below(count + 1)) + ":" + channel)
                        : Quote("i" + std::to_string(index + 1 + random.Below(count)) + ":" + channel);
            json += n > 1 ? "," : "";
        }
        json += "]";
    }
    if (hostileCase && random.OneIn(6))
        json += ",\"state\":" + Either(random, Quote(random.Pick(files.state)));
    if (hostileCase && random.OneIn(6))
        json += ",\"calibration\":" + Either(random, Quote(random.Pick(files.calibration)));
    if (random.OneIn(4))
        json += ",\"out\":" + Either(random, Quote(random.Pick(std::vector<std::string>{
                                                 "", ".", "sub", "none/x.wav", "o.wav", "sub/o.wav"})));
    if (hostileCase && random.OneIn(30)) json += ",\"bogus\":1";
    return json + "}";
}

std::string Patch(CaseRandom& random, const CaseFiles& files) {
    hostileCase = random.OneIn(2);
    std::string json = "{";
    auto add = [&](const std::string& key, const std::string& value) {
        json += (json.size() > 1 ? "," : "") + Quote(key) + ":" + value;
    };
    if (random.OneIn(3)) add("rate", Either(random, Number(random, {"48000", "1000", "96000"})));
    if (random.OneIn(3)) add("block", Either(random, Number(random, {"1", "64", "1024", "4096"})));
    // A length nearly always: the default second at a high rate would only make the cases slow.
    if (!random.OneIn(12))
        add("frames", random.OneIn(3) ? Either(random, Number(random, {"0", "4096"}))
                                      : std::to_string(random.Below(300)));
    if (hostileCase && random.OneIn(10))
        add("seconds",
            Either(random, random.Pick(std::vector<std::string>{"0", "0.001", "-1", "86401", "1e400"})));
    if (random.OneIn(3)) {
        std::string transport = "{";
        auto field = [&](const std::string& key, const std::string& value) {
            transport += (transport.size() > 1 ? "," : "") + Quote(key) + ":" + value;
        };
        if (random.OneIn(2)) field("tempo", Either(random, Number(random, {"1", "120", "999"})));
        if (random.OneIn(2)) field("position", Either(random, Number(random, {"-1e9", "0", "2.5", "1e9"})));
        if (random.OneIn(3)) field("playing", Either(random, random.OneIn(2) ? "true" : "false"));
        if (random.OneIn(3))
            field("meter", Either(random, Quote(hostileCase ? random.Pick(std::vector<std::string>{
                                                                  "4/4", "6/8", "0/4", "65/4", "4/0", "x",
                                                                  "99999999999/4", "3/4/"})
                                                            : "7/8")));
        if (random.OneIn(2))
            field("loop",
                  Either(random, hostileCase ? "[" + random.Pick(kNumbers) + "," + random.Pick(kNumbers) + "]"
                                             : random.Pick(std::vector<std::string>{
                                                   "[0, 1e-6]", "[-1e9, 1e9]", "[0, 0.01]"})));
        add("transport", random.OneIn(8) ? "null" : transport + "}");
    }
    const size_t count = hostileCase && random.OneIn(20) ? random.Pick(std::vector<size_t>{0, 1025, 3000})
                                                         : 1 + random.Below(4);
    std::string instances = "[";
    for (size_t i = 0; i < count; ++i)
        instances +=
            (i ? "," : "") + (count > 8 ? "{\"name\":\"i" + std::to_string(i) + "\",\"module\":\"dc\"}"
                                        : Instance(random, files, i, count));
    add("instances", hostileCase && random.OneIn(30) ? AnyValue(random, 3) : instances + "]");
    if (hostileCase && random.OneIn(30)) add("extra", AnyValue(random, 3));
    json += "}";
    // Now and then the text itself: cut, flipped, or a stretch repeated.
    if (hostileCase && random.OneIn(5)) {
        const Bytes damaged = BR::Test::Damage(Bytes(json.begin(), json.end()), random, {}, false);
        json.assign(damaged.begin(), damaged.end());
    }
    return json;
}

}  // namespace

TEST(CliHostilePatches, PatchFiles) {
    CaseRandom random(2105);
    const CaseFiles files(random);
    BR::Test::CaseTally tally;
    const std::string patch = files.folder + "/case.json";
    const std::vector<std::string> outputs = {files.folder + "/i0.wav", files.folder + "/i1.wav",
                                              files.folder + "/i2.wav", files.folder + "/i3.wav",
                                              files.folder + "/o.wav",  files.folder + "/sub/o.wav"};
    for (size_t k = 0; k < kPatchCases; ++k) {
        const std::string json = Patch(random, files);
        BR::Test::WriteBytes(patch, Bytes(json.begin(), json.end()));
        BR::Test::RemoveAll(outputs);
        const std::string name = "patch case " + std::to_string(k) + ": " + json.substr(0, 600);
        const auto outcome = BR::Test::RunCase({"patch", patch}, name);
        BR::Test::CheckCase(outcome, name, "corvane: " + patch + ": ", outputs, tally);
    }
    std::printf("patches: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kPatchCases / 20);
    EXPECT_GT(tally.refused, kPatchCases / 4);
}

TEST(CliHostilePatches, RenderOptions) {
    CaseRandom random(2106);
    const CaseFiles files(random);
    BR::Test::CaseTally tally;
    const std::string out = files.folder + "/o.wav";
    const std::string stateOut = files.folder + "/o.state";
    const std::string calibrationOut = files.folder + "/o.txt";
    const std::vector<std::string> stems = {"dc",        "dc",      "lfo",     "voicecontroller",
                                            "sync",      "trigger", "steplfo", "Function",
                                            "quantizer", "nosuch",  ""};
    const std::vector<std::string> options = {
        "--rate",      "--block",     "--frames",         "--seconds",
        "--set",       "--in",        "--event",          "--midi",
        "--state-in",  "--state-out", "--calibration-in", "--calibration-out",
        "--tempo",     "--position",  "--meter",          "--stopped",
        "--transport", "--loop",      "--no-transport",   "--out",
        "--bogus",     "--property",  "--property"};
    for (size_t k = 0; k < kOptionCases; ++k) {
        std::vector<std::string> args;
        if (random.OneIn(40)) {
            args = {
                random.Pick(std::vector<std::string>{"params", "list", "patch", "help", "", "frobnicate"})};
            for (size_t n = random.Below(3); n > 0; --n)
                args.push_back(random.Pick(stems));
        } else {
            args = {"render", random.Pick(stems), "--out", out};
            if (!random.OneIn(10)) args.insert(args.end(), {"--frames", std::to_string(random.Below(300))});
            for (size_t n = random.Below(6); n > 0; --n) {
                const std::string option = random.Pick(options);
                args.push_back(option);
                if (random.OneIn(30)) break;  // the value missing at the end
                std::string value;
                if (option == "--in") {
                    value = random.Pick(files.wav);
                } else if (option == "--midi") {
                    value = random.Pick(files.midi);
                } else if (option == "--state-in") {
                    value = random.Pick(files.state);
                } else if (option == "--calibration-in") {
                    value = random.Pick(files.calibration);
                } else if (option == "--state-out") {
                    value = random.OneIn(4) ? files.folder + "/none/x" : stateOut;
                } else if (option == "--calibration-out") {
                    value = random.OneIn(4) ? files.folder : calibrationOut;
                } else if (option == "--out") {
                    value = random.Pick(
                        std::vector<std::string>{"", files.folder, files.folder + "/none/x.wav", out});
                } else if (option == "--set") {
                    value = random.Pick(std::vector<std::string>{"Output Positive L", "Master Bypass",
                                                                 "Poly Mode", "Nope", ""}) +
                            (random.OneIn(8) ? "" : "=") +
                            (random.OneIn(2)
                                 ? random.Pick(kNumbers)
                                 : random.Pick(std::vector<std::string>{"on", "Master", "nan", "inf", ""}));
                } else if (option == "--event" || option == "--transport") {
                    value = random.Pick(kNumbers) + ":" +
                            random.Pick(std::vector<std::string>{
                                "903C64", "F0" + std::string(2000, '7') + "F7", "play", "stop", "", "G"});
                } else if (option == "--property") {
                    value = PropertyText(random);
                } else if (option == "--loop") {
                    value = random.Pick(kNumbers) + (random.OneIn(8) ? "" : ":") + random.Pick(kNumbers);
                } else if (option == "--meter") {
                    value = random.Pick(kNumbers) + "/" + random.Pick(kNumbers);
                } else if (option == "--frames" || option == "--seconds") {
                    value = random.Pick(std::vector<std::string>{"0", "1", "-1", "64", "1e400", "17179869185",
                                                                 "86401", "nan", "0.01", ""});
                } else if (option != "--stopped" && option != "--no-transport") {
                    value = random.OneIn(10) ? random.Pick(std::vector<std::string>{"", " 5", "5 ", "0x10",
                                                                                    "nan", "inf", "-inf"})
                                             : random.Pick(kNumbers);
                }
                if (option != "--stopped" && option != "--no-transport") args.push_back(value);
            }
        }
        BR::Test::RemoveAll({out, stateOut, calibrationOut});
        std::string name = "options case " + std::to_string(k) + ":";
        for (const std::string& arg : args)
            name += " '" + arg.substr(0, 60) + "'";
        const auto outcome = BR::Test::RunCase(args, name);
        BR::Test::CheckCase(outcome, name, "", {out, stateOut, calibrationOut}, tally);
    }
    std::printf("render options: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kOptionCases / 20);
    EXPECT_GT(tally.refused, kOptionCases / 4);
}
