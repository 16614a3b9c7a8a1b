// Scratch files, quiet output, empty user folders and an isolated network for the fuzz targets.
#include "FuzzSupport.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace BR::Fuzz {

namespace {

std::string MakeFolder() {
    char inMemory[] = "/dev/shm/corvane-fuzz-XXXXXX";
    if (const char* folder = mkdtemp(inMemory)) return folder;
    char onDisk[] = "/tmp/corvane-fuzz-XXXXXX";
    if (const char* folder = mkdtemp(onDisk)) return folder;
    std::perror("corvane fuzz: no scratch folder");
    std::exit(1);
}

void RemoveScratch() {
    std::error_code ignored;
    std::filesystem::remove_all(ScratchFolder(), ignored);
}

}  // namespace

const std::string& ScratchFolder() {
    static const std::string folder = [] {
        std::string made = MakeFolder();
        return made;
    }();
    static const bool registered = (std::atexit(RemoveScratch), true);
    (void)registered;
    return folder;
}

std::string WriteScratchFile(const std::string& name, const uint8_t* data, size_t size) {
    const std::string path = ScratchFolder() + "/" + name;
    // A new file each time: rewriting one in place may make the file system flush it on closing.
    std::remove(path.c_str());
    if (FILE* file = std::fopen(path.c_str(), "wb")) {
        if (size) std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    return path;
}

void QuietStandardOutput() {
    std::fflush(stdout);
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
        dup2(null, STDOUT_FILENO);
        close(null);
    }
}

void UseEmptyUserFolders() {
    const std::string data = ScratchFolder() + "/data", config = ScratchFolder() + "/config";
    std::filesystem::create_directories(data);
    std::filesystem::create_directories(config);
    setenv("XDG_DATA_HOME", data.c_str(), 1);
    setenv("XDG_CONFIG_HOME", config.c_str(), 1);
}

void IsolateNetwork() {
    const int flags = geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET;
    if (unshare(flags) != 0) {
        std::perror(
            "corvane fuzz: this target sends what its inputs address and needs a network "
            "namespace of its own (unshare)");
        std::exit(1);
    }
}

}  // namespace BR::Fuzz
