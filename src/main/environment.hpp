// What the environment asks of a run.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "fields/make_flow.hpp"
#include "utils/number_text.hpp"

/// A whole number above 0; 0 where the environment has none of that name.
inline int count_of_environment(const std::string& name) {
  const char* const text = std::getenv(name.c_str());
  if (text == nullptr) return 0;
  const std::optional<int> count = utils::parse_integer<int>(text);
  if (count && *count > 0) return *count;
  throw std::runtime_error("Error. " + name + " needs a whole number above 0, found " +
                           utils::quoted_start(text) + ".");
}

/// Of QUILLMERE_WRITERS and, in KiB, QUILLMERE_WRITERS_BLOCK: whole pages of any machine, since two
/// that write into one page of a file over a network may undo what the other wrote.
inline ranks::WritersRequest writers_of_environment() {
  constexpr int kib = 1024, page = 64, most = 1024 * 1024;
  ranks::WritersRequest request;
  request.count = count_of_environment("QUILLMERE_WRITERS");
  const int block = count_of_environment("QUILLMERE_WRITERS_BLOCK");
  if (block % page != 0 || block > most) {
    throw std::runtime_error("Error. QUILLMERE_WRITERS_BLOCK needs a multiple of " +
                             std::to_string(page) + " up to " + std::to_string(most) + ", found " +
                             std::to_string(block) + ".");
  }
  if (block > 0) request.block = std::uint64_t{kib} * static_cast<std::uint64_t>(block);
  return request;
}

/// Of these, QUILLMERE_ENGINE, QUILLMERE_DEVICE, QUILLMERE_ISA and OMP_NUM_THREADS.
inline fields::FlowRequest flow_request_of_environment() {
  fields::FlowRequest request;
  if (const char* const path = std::getenv("QUILLMERE_ENGINE")) request.path = path;
  if (const char* const device = std::getenv("QUILLMERE_DEVICE")) request.device = device;
  if (const char* const set = std::getenv("QUILLMERE_ISA")) request.instruction_set = set;
  if (const char* const threads = std::getenv("OMP_NUM_THREADS")) {
    request.most_threads = std::atoi(threads);
  }
  request.ranks.writers = writers_of_environment();
  return request;
}
