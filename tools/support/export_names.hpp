// The names that quillmere-export gives its files by itself.
#pragma once

#include <filesystem>

namespace tools {

/// The folder of a case that they stand in.
inline constexpr char export_folder[] = "export";

/// Whether a name, from that folder, is one of them, as "results.nc" or "pictures/depth_600s.png"
/// are; also while the file grows ("results.nc.part").
bool is_export_name(const std::filesystem::path& name);

}  // namespace tools
