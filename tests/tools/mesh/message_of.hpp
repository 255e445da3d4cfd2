// The message with which something fails.
#pragma once

#include <string>

#include "support/Error.hpp"

namespace support {

/// What the tools::Error says that `action` throws; "no error" without one.
template <class Action>
std::string message_of(Action action) {
  try {
    action();
  } catch (const tools::Error& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace support
