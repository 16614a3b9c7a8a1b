// Parsing a patch file's JSON with bounds: size, nesting depth, and numbers a double can hold, each
// fault named by its place in the file.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace BR {

using PatchJson = nlohmann::ordered_json;

// Reads and parses the file. Throws InputError ("patch.json: instances[0].set.x: ...") when it is
// missing, too large, not JSON, nested deeper than kMaxPatchDepth, or holds a number beyond a double.
PatchJson ParsePatchJson(const std::string& path);

}  // namespace BR
