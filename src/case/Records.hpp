// Records that follow each other in a file.
#pragma once

#include "case/Mesh.hpp"

namespace cases {

/// Their numbers, and how many the file has in all.
struct Records {
  Number first, end;
  Number total;

  static Records all(Number total) { return {0, total, total}; }
  Number size() const { return end - first; }
};

/// Calls read(i) for each, as long as there is more to read. `Source` gives the values of the file,
/// as utils::TextScanner does; `kind` names a record in messages.
template <class Source, class Read>
void read_each(Source& file, const char* kind, const Records& records, const Read& read) {
  for (Number i = records.first; i < records.end && file.goes_on(); ++i) {
    file.begin_record(kind, i, records.total);
    read(i);
  }
}

}  // namespace cases
