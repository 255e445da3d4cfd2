#include "engine/device/WatchedScratch.hpp"

namespace engine::device {

double WatchedScratch::read(std::ptrdiff_t i) {
  Word* const of = word(i);
  if (of == nullptr) return NAN;
  if (of->writer == nobody) complain(i, "is read before it is written");
  if (of->phase_of_write == phase_ && of->writer != thread_) {
    complain(i, "is read while thread " + std::to_string(of->writer) + " writes it");
  }
  of->reader = of->phase_of_read == phase_ && of->reader != thread_ ? several : thread_;
  of->phase_of_read = phase_;
  return of->value;
}

void WatchedScratch::write(std::ptrdiff_t i, double value) {
  Word* const of = word(i);
  if (of == nullptr) return;
  if (of->phase_of_write == phase_ && of->writer != thread_) {
    complain(i, "is written by thread " + std::to_string(of->writer) + " too");
  }
  if (of->phase_of_read == phase_ && of->reader != thread_) {
    complain(i, "is written while another thread reads it");
  }
  of->value = value;
  of->writer = thread_;
  of->phase_of_write = phase_;
}

WatchedScratch::Word* WatchedScratch::word(std::ptrdiff_t i) {
  if (i >= 0 && i < static_cast<std::ptrdiff_t>(words_.size())) {
    return &words_[static_cast<std::size_t>(i)];
  }
  complain(i, "is none of " + std::to_string(words_.size()));
  return nullptr;
}

void WatchedScratch::complain(std::ptrdiff_t i, const std::string& what) {
  if (!complaint_.empty()) return;
  complaint_ = "phase " + std::to_string(phase_) + ", thread " + std::to_string(thread_) +
               ": word " + std::to_string(i) + " " + what;
}

}  // namespace engine::device
