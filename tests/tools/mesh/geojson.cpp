#include "tools/mesh/geojson.hpp"

#include <gdal.h>
#include <gdal_utils.h>

#include <stdexcept>

namespace support {

std::string feature(const std::string& properties, const std::string& kind,
                    const std::string& coordinates) {
  return R"({"type": "Feature", "properties": {)" + properties + R"(}, "geometry": {"type": ")" +
         kind + R"(", "coordinates": )" + coordinates + "}}";
}

std::string line(const std::string& properties, const std::string& points) {
  return feature(properties, "LineString", "[" + points + "]");
}

std::string polygon(const std::string& properties, const std::string& points) {
  return feature(properties, "Polygon", "[[" + points + "]]");
}

std::string geojson(const std::vector<std::string>& features) {
  std::string list;
  for (const auto& text : features) list += (list.empty() ? "" : ",\n") + text;
  return R"({"type": "FeatureCollection", "features": [)" + list + "]}\n";
}

void convert(const std::string& from, const std::string& to, std::vector<std::string> words) {
  GDALAllRegister();
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  GDALDatasetH source = GDALOpenEx(from.c_str(), GDAL_OF_VECTOR, nullptr, nullptr, nullptr);
  GDALVectorTranslateOptions* const options =
      GDALVectorTranslateOptionsNew(arguments.data(), nullptr);
  const GDALDatasetH converted =
      GDALVectorTranslate(to.c_str(), nullptr, 1, &source, options, nullptr);
  GDALVectorTranslateOptionsFree(options);
  GDALClose(source);
  if (converted == nullptr) throw std::runtime_error("no features can be converted");
  GDALClose(converted);
}

}  // namespace support
