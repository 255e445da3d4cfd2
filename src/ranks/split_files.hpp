// The records of a file shared out among ranks, each of which reads a piece of it.
#pragma once

#include <string>

#include "case/text_pieces.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// What this rank reads of a file that begins with the number of its records, each of at least so
/// many tokens. Called by all ranks.
cases::PieceOfRecords share_counted_file(Group& group, const std::string& name,
                                         const cases::RecordShape& shape,
                                         std::size_t tokens_per_record);
/// The same of a file that does not say how many records it has.
cases::PieceOfRecords share_file(Group& group, const std::string& name,
                                 const cases::RecordShape& shape, cases::Number total);

}  // namespace ranks
