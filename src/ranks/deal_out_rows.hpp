// Rows of a file, from rank 0, which reads them one behind the other, to the ranks of the rows.
#pragma once

#include <cstddef>
#include <functional>

#include "ranks/RowPlan.hpp"

namespace ranks {

/// Calls take(rows, count) on every rank for its rows, piece by piece; `rows` is read on rank 0
/// alone. Answers whether all came: where the source throws, rank 0 ends with a Refusal. Called by
/// all ranks.
bool deal_out_rows(Group& group, cases::Number rows_of_all, std::size_t bytes_per_row,
                   utils::ByteSource* rows,
                   const std::function<void(utils::ByteSource& rows, std::size_t count)>& take);

}  // namespace ranks
