// Where and when a case takes place: its coordinate reference system, and the date of its time 0 s.
#pragma once

#include <optional>
#include <string>

namespace cases {

// What the texts have to be, for messages.
inline constexpr char expected_crs[] = "EPSG: and a number";
inline constexpr char expected_epoch[] = "a date and hour, UTC, as in 2026-05-01T06:00:00Z";

/// Where a data file gives no other one.
inline constexpr char usual_epoch[] = "1970-01-01 00:00:00";

/// The code of a system, of "EPSG:32632" or "epsg:32632"; none of any other text. Whether there is
/// such a code, nobody asks here.
std::optional<int> epsg_of(const std::string& text);

/// "2026-05-01 06:00:00" of "2026-05-01T06:00:00Z" (ISO 8601), or of itself; none of any other text
/// and of a date that no calendar has.
std::optional<std::string> epoch_of(const std::string& text);

}  // namespace cases
