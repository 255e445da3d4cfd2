// What the runs and exports of a case have left in its folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace mesh_import {

/// The results of the case in a folder, and what quillmere-export made of them under the names that
/// it gives by itself: regular files in the folder, of which none is an input of the case, nor read
/// by this program. None where there is no case.
std::vector<std::filesystem::path> results_of_case(const std::string& folder);

}  // namespace mesh_import
