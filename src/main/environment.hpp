// What the environment asks of a run.
#pragma once

#include <cstdlib>

#include "fields/make_flow.hpp"

/// Of QUILLMERE_ENGINE, QUILLMERE_DEVICE, QUILLMERE_ISA and OMP_NUM_THREADS.
inline fields::FlowRequest flow_request_of_environment() {
  fields::FlowRequest request;
  if (const char* const path = std::getenv("QUILLMERE_ENGINE")) request.path = path;
  if (const char* const device = std::getenv("QUILLMERE_DEVICE")) request.device = device;
  if (const char* const set = std::getenv("QUILLMERE_ISA")) request.instruction_set = set;
  if (const char* const threads = std::getenv("OMP_NUM_THREADS")) {
    request.most_threads = std::atoi(threads);
  }
  return request;
}
