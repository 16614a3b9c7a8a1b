// The patch file's JSON, parsed through a handler that knows where it stands, so that the nesting is
// bounded while parsing and a number too large for a double is refused at its place.
#include "PatchJson.h"

#include <filesystem>
#include <fstream>
#include <vector>

#include "CommandLine.h"
#include "InputLimits.h"

namespace BR {

namespace {

using Dom = nlohmann::detail::json_sax_dom_parser<PatchJson>;

// Builds the document as the library does, and keeps the path to the value being read.
class BoundedHandler {
public:
    BoundedHandler(PatchJson& root, const std::string& path_) : dom(root, true), path(path_) {}

    bool null() { return Value() && dom.null(); }
    bool boolean(bool value) { return Value() && dom.boolean(value); }
    bool number_integer(PatchJson::number_integer_t value) { return Value() && dom.number_integer(value); }
    bool number_unsigned(PatchJson::number_unsigned_t value) { return Value() && dom.number_unsigned(value); }
    bool number_float(PatchJson::number_float_t value, const std::string& text) {
        return Value() && dom.number_float(value, text);
    }
    bool string(std::string& value) { return Value() && dom.string(value); }
    bool binary(PatchJson::binary_t& value) { return Value() && dom.binary(value); }
    bool start_object(std::size_t size) { return Open(false) && dom.start_object(size); }
    bool key(std::string& name) {
        levels.back().key = name;
        return dom.key(name);
    }
    bool end_object() {
        levels.pop_back();
        return dom.end_object();
    }
    bool start_array(std::size_t size) { return Open(true) && dom.start_array(size); }
    bool end_array() {
        levels.pop_back();
        return dom.end_array();
    }
    bool parse_error(std::size_t, const std::string& token, const nlohmann::detail::exception& e) {
        // The library reports a number beyond a double (a 400-digit integer, 1e400) as error 406.
        if (e.id == 406) {
            const std::string shown = token.size() > 40 ? token.substr(0, 40) + "..." : token;
            Fail(Place(true), "the number " + shown + " lies beyond the range of a double");
        }
        const std::string what = e.what();
        const size_t bracket = what.find("] ");
        Fail("", "not valid JSON: " + (bracket == std::string::npos ? what : what.substr(bracket + 2)));
    }

private:
    struct Level {
        bool array;
        std::string key;
        size_t next = 0;     // the index the next element of an array gets
        size_t current = 0;  // the element being read
    };

    [[noreturn]] void Fail(const std::string& place, const std::string& message) const {
        throw InputError(path + ": " + (place.empty() ? "" : place + ": ") + message);
    }
    // A value starts: it takes the next index of an array.
    bool Value() {
        if (!levels.empty() && levels.back().array) levels.back().current = levels.back().next++;
        return true;
    }
    bool Open(bool array) {
        Value();
        if (levels.size() >= size_t(kMaxPatchDepth))
            Fail(Place(false), "arrays and objects nest deeper than " + std::to_string(kMaxPatchDepth) +
                                   " levels, the limit");
        levels.push_back({array, "", 0, 0});
        return true;
    }
    // "instances[0].set.Speed L"; `upcoming` for a value whose index is not yet taken.
    std::string Place(bool upcoming) const {
        std::string place;
        for (const Level& level : levels) {
            if (level.array) {
                place += "[" +
                         std::to_string(upcoming && &level == &levels.back() ? level.next : level.current) +
                         "]";
            } else if (!level.key.empty()) {
                place += (place.empty() ? "" : ".") + level.key;
            }
        }
        return place;
    }

    Dom dom;
    const std::string& path;
    std::vector<Level> levels;
};

}  // namespace

PatchJson ParsePatchJson(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        throw InputError(path + ": cannot read the file: no such file, or not a regular file");
    const uintmax_t size = std::filesystem::file_size(path, ec);
    if (ec || size > kMaxPatchBytes)
        throw InputError(path + ": it holds " + std::to_string(size) +
                         " bytes; patch files may hold at most " + std::to_string(kMaxPatchBytes));
    std::ifstream in(path, std::ios::binary);
    if (!in) throw InputError(path + ": cannot read the file");
    PatchJson root;
    BoundedHandler handler(root, path);
    PatchJson::sax_parse(in, &handler);
    return root;
}

}  // namespace BR
