#include "output/CPicture.hpp"

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "utils/TextScanner.hpp"

namespace {

/// pic_12_50.txt for 12.5 s: two decimals, cut off, not rounded.
std::string picture_name(double time) {
  std::string text = std::to_string(time);
  const auto point = text.find('.');
  text = text.replace(point, 1, "_").substr(0, point + 3);
  return Globals::g_outputPath + "pic_" + text + ".txt";
}

}  // namespace

CPicture::CPicture(const std::string& path) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of snapshots", 1);
  for (int i = 0; i < count; ++i) {
    file.begin_record("snapshot", i, count);
    times_.push_back(file.read_number("time"));
    names_.push_back(picture_name(times_.back()));
  }
}

void CPicture::WriteMeasure(PhysicalModel* model) {
  Handoff::picture.start([model, name = names_[next_++]] { model->printPicture(name); });
}
