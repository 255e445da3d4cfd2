// A case that is run with "--report", and its report.
#pragma once

#include <cstdlib>
#include <functional>

#include "cases/CaseTest.hpp"

/// Lays sand of a thickness (m) on the bed of a case.
inline void lay_sand(support::Case& c, const std::string& thickness) {
  c.data["model"]["name"] = "Bramsett";
  c.data["model"]["conditions"]["initial sediments level"] = "layer.txt";
  c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.001},
                                   {"sediments density", 2.65},
                                   {"sediments friction coefficient", 0.03},
                                   {"sediments porosity", 0.4}};
  c.files["layer.txt"] = c.per_cell(thickness);
}

class ReportTest : public CaseTest {
 protected:
  using json = nlohmann::json;

  support::RunResult run_with_report() {
    c.write(folder);
    return support::run_program(folder.path(),
                                {"-f", "data.json", "-nodisplay", "--report", "report.json"});
  }
  json report() const { return json::parse(folder.read("report.json")); }
  /// Calls the body with each path forced; devices are emulated.
  void on_every_path(const std::function<void()>& body) const {
    setenv("QUILLMERE_DEVICE", "emulated", 1);
    for (const std::string path : {"tables", "device", "objects"}) {
      SCOPED_TRACE(path);
      setenv("QUILLMERE_ENGINE", path.c_str(), 1);
      body();
      unsetenv("QUILLMERE_ENGINE");
    }
    unsetenv("QUILLMERE_DEVICE");
  }
};
