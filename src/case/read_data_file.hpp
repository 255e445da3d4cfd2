// Takes what the data file of a case says.
#pragma once

#include "case/Case.hpp"
#include "case/DataFile.hpp"
#include "case/DataFileReader.hpp"

namespace cases {

/// Asks for the keys in their order, and puts the numbers of the flow into the case. Throws a
/// DataFileReaderException at the first key that is missing or wrong; what was read before stands
/// then.
void read_data_file(const utils::DataFileReader& reader, DataFile& data, Case& contents);

}  // namespace cases
