// Tools of the hostile-input generator: a fixed-seed random source, byte and text mutations, and a
// runner that enters the corvane command in-process and keeps what it says on standard error.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int CorvaneMain(int argc, char** argv);

namespace BR::Test {

// xorshift64*: the same cases on every machine and library.
class CaseRandom {
public:
    explicit CaseRandom(uint64_t seed) : state(seed * 2685821657736338717ull + 1) {}
    uint64_t Next() {
        state ^= state >> 12;
        state ^= state << 25;
        state ^= state >> 27;
        return state * 2685821657736338717ull;
    }
    size_t Below(size_t n) { return n ? size_t(Next() % n) : 0; }
    bool OneIn(size_t n) { return Below(n) == 0; }
    template <typename T>
    const T& Pick(const std::vector<T>& items) {
        return items[Below(items.size())];
    }

private:
    uint64_t state;
};

using Bytes = std::vector<uint8_t>;

// A new file each time (the old one removed first): rewriting a file in place makes some file systems
// flush it to disk on closing, which would make thousands of cases wait.
inline void WriteBytes(const std::string& path, const Bytes& bytes) {
    std::remove(path.c_str());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

inline Bytes ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Values that sit at the edges of the widths a file's fields have.
inline uint32_t EdgeValue(CaseRandom& random) {
    static const std::vector<uint32_t> edges = {0,          1,          2,          6,          7,
                                                0x7F,       0x80,       0xFF,       0x7FFF,     0x8000,
                                                0xFFFF,     0x0FFFFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF,
                                                0x40000000, 0x10000000, 1000000,    65536,      129};
    return random.OneIn(4) ? uint32_t(random.Next()) : random.Pick(edges);
}

// One damage of a well-formed file: cut, bits flipped, bytes changed, a field made to lie (at one of
// `fields`, big-endian or little-endian), bytes inserted, or a stretch repeated.
inline Bytes Damage(Bytes bytes, CaseRandom& random, const std::vector<size_t>& fields, bool bigEndian) {
    const size_t kinds = 6;
    const size_t rounds = 1 + random.Below(3);
    for (size_t round = 0; round < rounds; ++round) {
        switch (random.Below(kinds)) {
            case 0:  // truncation
                bytes.resize(random.Below(bytes.size() + 1));
                break;
            case 1:  // bit flips
                for (size_t n = 1 + random.Below(8); n > 0 && !bytes.empty(); --n)
                    bytes[random.Below(bytes.size())] ^= uint8_t(1u << random.Below(8));
                break;
            case 2:  // bytes at the edges
                for (size_t n = 1 + random.Below(4); n > 0 && !bytes.empty(); --n)
                    bytes[random.Below(bytes.size())] =
                        uint8_t(random.Pick(std::vector<uint32_t>{0, 0x7F, 0x80, 0xFF}));
                break;
            case 3: {  // a size or count field that lies
                if (fields.empty()) break;
                const size_t at = random.Pick(fields);
                const uint32_t value = EdgeValue(random);
                for (size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
                    bytes[at + i] = uint8_t(bigEndian ? value >> (24 - 8 * i) : value >> (8 * i));
                break;
            }
            case 4: {  // inserted bytes
                const size_t at = random.Below(bytes.size() + 1);
                Bytes extra(1 + random.Below(16));
                for (uint8_t& b : extra)
                    b = uint8_t(random.Next());
                bytes.insert(bytes.begin() + std::ptrdiff_t(at), extra.begin(), extra.end());
                break;
            }
            default: {  // a stretch repeated
                if (bytes.empty()) break;
                const size_t from = random.Below(bytes.size());
                const size_t length = 1 + random.Below(std::min<size_t>(64, bytes.size() - from));
                const Bytes stretch(bytes.begin() + std::ptrdiff_t(from),
                                    bytes.begin() + std::ptrdiff_t(from + length));
                for (size_t n = 1 + random.Below(8); n > 0; --n)
                    bytes.insert(bytes.begin() + std::ptrdiff_t(from), stretch.begin(), stretch.end());
                break;
            }
        }
    }
    return bytes;
}

// A fresh folder for generated cases, in memory where the system offers it.
inline std::string MakeCaseFolder() {
    char inMemory[] = "/dev/shm/corvane-hostile-XXXXXX";
    if (const char* folder = mkdtemp(inMemory)) return folder;
    char onDisk[] = "/tmp/corvane-hostile-XXXXXX";
    const char* folder = mkdtemp(onDisk);
    return folder ? folder : "/tmp";
}

struct CaseOutcome {
    int status = -1;
    std::string err;
};

namespace detail {
inline char currentCase[512];
inline int savedError = -1;
inline void OnHang(int) {
    const char text[] = "\nhostile input generator: a case hangs: ";
    const int fd = savedError >= 0 ? savedError : 2;
    ssize_t ignored = write(fd, text, sizeof text - 1);
    ignored = write(fd, currentCase, std::strlen(currentCase));
    (void)ignored;
    _exit(124);
}
}  // namespace detail

// Runs "corvane ARGS..." in this process, its standard output discarded. A case that runs longer than
// `seconds` ends the whole process with status 124, naming the case: a hang fails the test.
inline CaseOutcome RunCase(const std::vector<std::string>& args, const std::string& name,
                           unsigned seconds = 60) {
    std::snprintf(detail::currentCase, sizeof detail::currentCase, "%s", name.c_str());
    std::vector<std::string> owned{"corvane"};
    owned.insert(owned.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& arg : owned)
        argv.push_back(arg.data());
    argv.push_back(nullptr);

    std::fflush(stdout);
    std::fflush(stderr);
    const int savedOutput = dup(1);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, 1);
    close(nowhere);
    detail::savedError = dup(2);
    // In memory: thousands of cases must not wait on a disk.
    std::FILE* capture = fdopen(memfd_create("corvane-case-stderr", 0), "w+");
    dup2(fileno(capture), 2);
    std::signal(SIGALRM, detail::OnHang);
    alarm(seconds);
    CaseOutcome outcome;
    outcome.status = CorvaneMain(int(owned.size()), argv.data());
    alarm(0);
    std::fflush(stdout);
    dup2(savedOutput, 1);
    close(savedOutput);
    std::fflush(stderr);
    dup2(detail::savedError, 2);
    close(detail::savedError);
    detail::savedError = -1;
    std::rewind(capture);
    char buffer[4096];
    for (size_t got; (got = std::fread(buffer, 1, sizeof buffer, capture)) > 0;)
        outcome.err.append(buffer, got);
    std::fclose(capture);
    return outcome;
}

}  // namespace BR::Test
