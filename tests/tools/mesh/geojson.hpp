// Features as users draw them.
#pragma once

#include <string>
#include <vector>

namespace support {

/// A feature of GeoJSON; the properties as they stand between braces.
std::string feature(const std::string& properties, const std::string& kind,
                    const std::string& coordinates);
std::string line(const std::string& properties, const std::string& points);
/// Of one ring.
std::string polygon(const std::string& properties, const std::string& points);
std::string geojson(const std::vector<std::string>& features);

/// Converts a file, as ogr2ogr does.
void convert(const std::string& from, const std::string& to, std::vector<std::string> words);

}  // namespace support
