#include "utils/Console.hpp"

#include <cerrno>
#include <system_error>

#include "utils/stop.hpp"

namespace utils {

void Console::show(const std::string& line) {
  if (is_muted_) return;
  out_ << line;
  flush();
}

void Console::flush() {
  errno = 0;
  out_.flush();
  if (out_.good() || is_lost_) return;
  is_lost_ = true;
  const std::string reason = errno != 0 ? std::generic_category().message(errno) : "unknown reason";
  warn("nothing more can be written to standard output: " + reason + ".");
}

}  // namespace utils
