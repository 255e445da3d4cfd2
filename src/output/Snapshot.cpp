#include "output/Snapshot.hpp"

Snapshot::Snapshot(const cases::Case& contents)
    : columns_(contents.has_sediments, contents.has_infiltration),
      values_(contents.mesh, columns_.fields) {}

bool Snapshot::write(const std::string& name) const {
  using Bed = utils::CellTable::Bed;
  return values_.write(name, columns_.header(),
                       columns_.bed_moves ? Bed::first_value : Bed::z_of_the_centre);
}
