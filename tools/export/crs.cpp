#include "export/crs.hpp"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <ogr_spatialref.h>

#include <map>
#include <string_view>

#include "support/Error.hpp"

namespace exports {

namespace {

struct Parameter {
  const char* cf;
  const char* wkt;
};

/// A map projection in the words of CF and of OGC's well-known text.
struct Projection {
  const char* wkt;
  const char* cf;
  std::vector<Parameter> parameters;
};

constexpr Parameter latitude_of_origin = {"latitude_of_projection_origin",
                                          SRS_PP_LATITUDE_OF_ORIGIN};
constexpr Parameter longitude_of_origin = {"longitude_of_projection_origin",
                                           SRS_PP_CENTRAL_MERIDIAN};
constexpr Parameter central_meridian = {"longitude_of_central_meridian", SRS_PP_CENTRAL_MERIDIAN};
constexpr Parameter scale_factor = {"scale_factor_at_projection_origin", SRS_PP_SCALE_FACTOR};

const Projection* find_projection(std::string_view wkt) {
  static const std::vector<Projection> known = {
      {SRS_PT_TRANSVERSE_MERCATOR,
       "transverse_mercator",
       {{"scale_factor_at_central_meridian", SRS_PP_SCALE_FACTOR},
        central_meridian,
        latitude_of_origin}},
      {SRS_PT_MERCATOR_1SP, "mercator", {longitude_of_origin, scale_factor}},
      {SRS_PT_LAMBERT_CONFORMAL_CONIC_1SP,
       "lambert_conformal_conic",
       {{"standard_parallel", SRS_PP_LATITUDE_OF_ORIGIN}, central_meridian, latitude_of_origin}},
      {SRS_PT_LAMBERT_AZIMUTHAL_EQUAL_AREA,
       "lambert_azimuthal_equal_area",
       {{"longitude_of_projection_origin", SRS_PP_LONGITUDE_OF_CENTER},
        {"latitude_of_projection_origin", SRS_PP_LATITUDE_OF_CENTER}}},
      {SRS_PT_OBLIQUE_STEREOGRAPHIC,
       "stereographic",
       {longitude_of_origin, latitude_of_origin, scale_factor}}};
  for (const Projection& projection : known) {
    if (wkt == projection.wkt) return &projection;
  }
  return nullptr;
}

std::string text_of(const char* text) { return text != nullptr ? text : ""; }

std::string wkt_of(const OGRSpatialReference& reference) {
  char* wkt = nullptr;
  const char* const format[] = {"FORMAT=WKT2_2018", nullptr};
  const OGRErr error = reference.exportToWkt(&wkt, format);
  const std::string text = error == OGRERR_NONE ? text_of(wkt) : "";
  CPLFree(wkt);
  return text;
}

/// What CF calls the grid mapping, with its parameters; where CF does not know the projection the
/// well-known text alone tells it.
void describe_projection(const OGRSpatialReference& reference, Crs& crs) {
  if (reference.IsGeographic()) {
    crs.texts.emplace_back("grid_mapping_name", "latitude_longitude");
    return;
  }
  const Projection* const projection =
      find_projection(text_of(reference.GetAttrValue("PROJECTION")));
  if (projection == nullptr) return;
  crs.texts.emplace_back("grid_mapping_name", projection->cf);
  for (const Parameter& parameter : projection->parameters) {
    crs.numbers.emplace_back(parameter.cf, reference.GetNormProjParm(parameter.wkt, 0.0));
  }
  crs.numbers.emplace_back("false_easting", reference.GetNormProjParm(SRS_PP_FALSE_EASTING, 0.0));
  crs.numbers.emplace_back("false_northing", reference.GetNormProjParm(SRS_PP_FALSE_NORTHING, 0.0));
}

}  // namespace

Crs find_crs(int epsg, const std::string& who) {
  CPLPushErrorHandler(CPLQuietErrorHandler);
  OGRSpatialReference reference;
  const OGRErr error = reference.importFromEPSG(epsg);
  CPLPopErrorHandler();
  if (error != OGRERR_NONE) {
    throw tools::Error(who + ": EPSG:" + std::to_string(epsg) +
                       " is not known; expected the code of a coordinate reference system, as in "
                       "EPSG:32632.");
  }
  Crs crs{epsg, {}, {}};
  describe_projection(reference, crs);
  const auto add_name = [&](const char* attribute, const char* node) {
    const std::string name = text_of(reference.GetAttrValue(node));
    if (!name.empty()) crs.texts.emplace_back(attribute, name);
  };
  add_name("projected_crs_name", "PROJCS");
  add_name("geographic_crs_name", "GEOGCS");
  add_name("horizontal_datum_name", "DATUM");
  add_name("reference_ellipsoid_name", "SPHEROID");
  add_name("prime_meridian_name", "PRIMEM");
  crs.numbers.emplace_back("longitude_of_prime_meridian", reference.GetPrimeMeridian());
  crs.numbers.emplace_back("semi_major_axis", reference.GetSemiMajor());
  crs.numbers.emplace_back("inverse_flattening", reference.GetInvFlattening());
  const std::string wkt = wkt_of(reference);
  if (!wkt.empty()) crs.texts.emplace_back("crs_wkt", wkt);
  return crs;
}

}  // namespace exports
