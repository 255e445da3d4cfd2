// Sets up a complete case, one of whose files is made of any bytes, and computes its first step.
// The name of the program tells the file: nodes_fuzzer makes nodes.txt.
#include <unistd.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>

#include "fuzz/fuzzing.hpp"
#include "support/Case.hpp"
#include "support/QuietRun.hpp"

namespace {

namespace fs = std::filesystem;

std::string fuzzed_file;

std::string file_of_program(const fs::path& program) {
  const std::string name = program.filename().string();
  return name.substr(0, name.find("_fuzzer")) + ".txt";
}

/// The case with every feature, or that with sediments if the file belongs to it.
support::Case case_of_file() {
  support::Case c = support::full_case(2, 1);
  if (fuzzed_file == "layer.txt") {
    c.west = "-3 -0.1";
    c.north = "-5";
    c.data["model"]["name"] = "Bramsett";
    c.files[fuzzed_file] = c.per_cell("0.5");
    c.data["model"]["sources"] = nlohmann::json::object();
    c.data["model"]["conditions"]["initial sediments level"] = fuzzed_file;
    c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.002},
                                     {"sediments density", 2.65},
                                     {"sediments friction coefficient", 0.03},
                                     {"sediments porosity", 0.4}};
  }
  c.data["tend"] = 1e-300;  // reached by the first step
  return c;
}

/// The case, in the working directory. Its results go to a folder that is emptied after each run.
class FuzzedCase {
 public:
  FuzzedCase() {
    case_of_file().write(folder_);
    fs::current_path(folder_.path());
    for (const auto& entry : fs::directory_iterator(".")) inputs_.insert(entry.path().string());
    if (inputs_.count("./" + fuzzed_file) == 0) {
      throw std::runtime_error("no case has a file " + fuzzed_file);
    }
  }
  void run_with(const std::string& text) {
    folder_.write(fuzzed_file, text);
    try {
      support::QuietRun run;
      run.settings.flow.most_threads = 1;
      Domain domain("data.json", run.settings);
      domain.Update([] { return true; });
    } catch (const std::exception&) {
    }
    remove_results();
  }

 private:
  void remove_results() {
    for (const auto& entry : fs::directory_iterator(".")) {
      if (inputs_.count(entry.path().string()) == 0) fs::remove(entry.path());
    }
    for (const auto& entry : fs::directory_iterator("out")) fs::remove(entry.path());
  }

  support::TemporaryFolder folder_;
  std::set<std::string> inputs_;
};

/// Whether a name in the text may lead out of the folder, or to an input.
bool may_do_harm(const std::string& text) {
  return text.find('/') != std::string::npos || text.find(".json") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** arguments) {
  fuzzed_file = file_of_program((*arguments)[0]);
  fuzzing::start();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static FuzzedCase fuzzed;
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  if (may_do_harm(text)) return -1;
  fuzzed.run_with(text);
  return 0;
}
