// Reads a whole case: its data file, and the files that this names.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "case/CaseFiles.hpp"
#include "case/DataFile.hpp"
#include "case/DataFileReader.hpp"
#include "case/Diagnostics.hpp"
#include "utils/Console.hpp"

namespace cases {

/// Whom reading tells how it goes on.
struct Listeners {
  std::ostream& log;
  utils::Console& console;
  /// Told what became of the keys, as soon as the data file has been taken or refused; may be
  /// empty.
  std::function<void(const utils::KeyUses&, const Case&)> on_keys = {};
};

/// Listeners that hear nothing.
class NoListeners {
 public:
  NoListeners() { console_.mute(); }

  Listeners listeners() { return {nowhere_, console_}; }

 private:
  std::ostream nowhere_{nullptr};
  utils::Console console_{nowhere_};
};

struct ReadCase {
  Case contents;
  DataFile data;
  AreaLoss area_loss = {};  ///< of the cells
};

/// Reads by these files, which put what they read into `contents`.
void read_case(const std::string& data_file, CaseFiles& files, const Listeners& listeners,
               Diagnostics& diagnostics, Case& contents, DataFile& data);

/// Ends with an exception at the first thing that is wrong, and warns of what hardly was meant.
ReadCase read_case(const std::string& data_file, const Listeners& listeners,
                   Diagnostics& diagnostics);

}  // namespace cases
