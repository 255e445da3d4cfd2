#include "utils/Reader.hpp"

#include "utils/files.hpp"

namespace utils {

Reader::Reader(const std::string& name) : stream_(open_input_file(name)), name_(name) {}

Reader::~Reader() { close(); }

void Reader::close() {
  if (stream_.is_open()) stream_.close();
}

}  // namespace utils
