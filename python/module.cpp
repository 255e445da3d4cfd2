// The Python module: simulations of the library, with NumPy arrays for columns.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <variant>

#include "quillmere/simulation.hpp"

namespace py = pybind11;
using quillmere::Simulation;

namespace {

/// What a column may be given as: anything that NumPy makes such an array of.
template <class Value>
using Array = py::array_t<Value, py::array::c_style | py::array::forcecast>;

template <class Value>
std::span<const Value> span_of(const Array<Value>& array) {
  if (array.ndim() != 1) throw quillmere::Error("An array has one dimension here.");
  return {array.data(), static_cast<std::size_t>(array.size())};
}

template <class Value>
Array<Value> array_of(const std::vector<Value>& values) {
  return Array<Value>(static_cast<py::ssize_t>(values.size()), values.data());
}

struct NamedField {
  const char* name;
  quillmere::Field field;
};
constexpr std::array<NamedField, 16> fields = {
    {{"depth", quillmere::Field::depth},
     {"discharge_x", quillmere::Field::discharge_x},
     {"discharge_y", quillmere::Field::discharge_y},
     {"largest_depth", quillmere::Field::largest_depth},
     {"infiltrated_depth", quillmere::Field::infiltrated_depth},
     {"bed_level", quillmere::Field::bed_level},
     {"sediment_thickness", quillmere::Field::sediment_thickness},
     {"bed_load_x", quillmere::Field::bed_load_x},
     {"bed_load_y", quillmere::Field::bed_load_y},
     {"peak_depth", quillmere::Field::peak_depth},
     {"peak_level", quillmere::Field::peak_level},
     {"peak_speed", quillmere::Field::peak_speed},
     {"peak_discharge", quillmere::Field::peak_discharge},
     {"time_of_peak", quillmere::Field::time_of_peak},
     {"arrival_time", quillmere::Field::arrival_time},
     {"time_under_water", quillmere::Field::time_under_water}}};

std::vector<std::string> field_names() {
  std::vector<std::string> names;
  for (const NamedField& named : fields) names.emplace_back(named.name);
  return names;
}

quillmere::Field field_of(const std::string& name) {
  const auto* const found = std::find_if(fields.begin(), fields.end(),
                                         [&](const NamedField& f) { return f.name == name; });
  if (found != fields.end()) return found->field;
  std::string all;
  for (const NamedField& named : fields) all += std::string(all.empty() ? "" : ", ") + named.name;
  throw quillmere::Error("Error. Found the field \"" + name + "\", expected one of " + all + ".");
}

/// The values go from the tables straight into the array: a new one, or that of the caller.
py::array_t<double> read(const Simulation& simulation, const std::string& field,
                         const std::optional<py::array_t<double, py::array::c_style>>& out) {
  auto values = out ? *out : py::array_t<double, py::array::c_style>(simulation.number_of_cells());
  if (values.ndim() != 1) throw quillmere::Error("An array has one dimension here.");
  simulation.read(field_of(field),
                  {values.mutable_data(), static_cast<std::size_t>(values.size())});
  return values;
}

void step(Simulation& simulation) {
  const py::gil_scoped_release others_may_run;
  simulation.step();
}

/// As Simulation::run_until, but an interrupt from the keyboard ends it after a step.
void run_until(Simulation& simulation, double t) {
  if (!(simulation.time() < t)) return simulation.run_until(t);  // a NaN is refused there
  while (!simulation.is_complete() && simulation.time() < t) {
    step(simulation);
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  }
}

using Cells = std::optional<Array<int>>;

void set_depth(Simulation& simulation, const Array<double>& depths, const Cells& cells) {
  if (cells) return simulation.set_depth(span_of(*cells), span_of(depths));
  simulation.set_depth(span_of(depths));
}

void set_discharges(Simulation& simulation, const Array<double>& qx, const Array<double>& qy,
                    const Cells& cells) {
  if (cells) return simulation.set_discharges(span_of(*cells), span_of(qx), span_of(qy));
  simulation.set_discharges(span_of(qx), span_of(qy));
}

void set_rain(Simulation& simulation, const std::variant<double, Array<double>>& intensity,
              const Cells& cells) {
  if (const double* const everywhere = std::get_if<double>(&intensity)) {
    if (!cells) return simulation.set_rain(*everywhere);
    const std::vector<double> same(static_cast<std::size_t>(cells->size()), *everywhere);
    return simulation.set_rain(span_of(*cells), same);
  }
  const Array<double>& intensities = std::get<Array<double>>(intensity);
  if (cells) return simulation.set_rain(span_of(*cells), span_of(intensities));
  std::vector<int> all(static_cast<std::size_t>(simulation.number_of_cells()));
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<int>(i);
  simulation.set_rain(all, span_of(intensities));
}

py::bytes save(const Simulation& simulation) {
  const quillmere::State state = simulation.save();
  return {reinterpret_cast<const char*>(state.data()), state.size()};
}

void load(Simulation& simulation, const py::bytes& bytes) {
  const std::string_view text(bytes);
  const auto* const begin = reinterpret_cast<const std::byte*>(text.data());
  simulation.load(quillmere::State(begin, begin + text.size()));
}

void bind_cases(py::module_& module) {
  py::enum_<quillmere::EdgeKind>(module, "EdgeKind", "What stands on an edge.")
      .value("interior", quillmere::EdgeKind::interior)
      .value("transmissive", quillmere::EdgeKind::transmissive)
      .value("discharge", quillmere::EdgeKind::discharge)
      .value("water_level", quillmere::EdgeKind::water_level)
      .value("wall", quillmere::EdgeKind::wall)
      .value("hydrograph", quillmere::EdgeKind::hydrograph)
      .value("limnigraph", quillmere::EdgeKind::limnigraph);
  py::enum_<quillmere::Scheme>(module, "Scheme", "How water is carried over the edges.")
      .value("LHLLC", quillmere::Scheme::LHLLC)
      .value("HLL1", quillmere::Scheme::HLL1)
      .value("HLL2", quillmere::Scheme::HLL2);
  py::class_<quillmere::Edge>(module, "Edge", "An edge; its normal points out of the left cell.")
      .def(py::init<>())
      .def_readwrite("left", &quillmere::Edge::left)
      .def_readwrite("right", &quillmere::Edge::right)
      .def_readwrite("node1", &quillmere::Edge::node1)
      .def_readwrite("node2", &quillmere::Edge::node2)
      .def_readwrite("kind", &quillmere::Edge::kind)
      .def_readwrite("value", &quillmere::Edge::value)
      .def_readwrite("series", &quillmere::Edge::series);
  py::class_<quillmere::Series>(module, "Series", "A boundary value in time.")
      .def(py::init<>())
      .def_readwrite("times", &quillmere::Series::times)
      .def_readwrite("values", &quillmere::Series::values);
  py::class_<quillmere::Case>(module, "Case", "A case in arrays; each is set as a whole.")
      .def(py::init<>())
      .def_readwrite("t_start", &quillmere::Case::t_start)
      .def_readwrite("t_end", &quillmere::Case::t_end)
      .def_readwrite("courant_number", &quillmere::Case::courant_number)
      .def_readwrite("scheme", &quillmere::Case::scheme)
      .def_readwrite("zero_depth", &quillmere::Case::zero_depth)
      .def_readwrite("x", &quillmere::Case::x)
      .def_readwrite("y", &quillmere::Case::y)
      .def_readwrite("z", &quillmere::Case::z)
      .def_readwrite("cell_nodes", &quillmere::Case::cell_nodes)
      .def_readwrite("first_node", &quillmere::Case::first_node)
      .def_readwrite("edges", &quillmere::Case::edges)
      .def_readwrite("series", &quillmere::Case::series)
      .def_readwrite("level", &quillmere::Case::level)
      .def_readwrite("qx", &quillmere::Case::qx)
      .def_readwrite("qy", &quillmere::Case::qy)
      .def_readwrite("bed", &quillmere::Case::bed)
      .def_readwrite("manning", &quillmere::Case::manning);
  module.def("edges_between", &quillmere::edges_between, py::arg("case"),
             "The edges of the cells of a case: interior ones, and walls around them.");
}

/// A number of every edge as an array.
template <class Number>
Array<int> edge_numbers(const quillmere::Mesh& mesh, Number quillmere::Edge::*number) {
  std::vector<int> numbers;
  for (const quillmere::Edge& edge : mesh.edges) numbers.push_back(static_cast<int>(edge.*number));
  return array_of(numbers);
}

void bind_mesh(py::module_& module) {
  using quillmere::Edge;
  using quillmere::Mesh;
  py::class_<Mesh>(module, "Mesh", "A mesh as arrays, numbered as in its case, from 0.")
      .def_property_readonly("x", [](const Mesh& m) { return array_of(m.x); })
      .def_property_readonly("y", [](const Mesh& m) { return array_of(m.y); })
      .def_property_readonly("z", [](const Mesh& m) { return array_of(m.z); })
      .def_property_readonly("cell_nodes", [](const Mesh& m) { return array_of(m.cell_nodes); })
      .def_property_readonly("first_node", [](const Mesh& m) { return array_of(m.first_node); })
      .def_property_readonly("left", [](const Mesh& m) { return edge_numbers(m, &Edge::left); })
      .def_property_readonly("right", [](const Mesh& m) { return edge_numbers(m, &Edge::right); })
      .def_property_readonly("node1", [](const Mesh& m) { return edge_numbers(m, &Edge::node1); })
      .def_property_readonly("node2", [](const Mesh& m) { return edge_numbers(m, &Edge::node2); })
      .def_property_readonly(
          "kind", [](const Mesh& m) { return edge_numbers(m, &Edge::kind); }, "Codes of EdgeKind.");
}

void bind_simulation(py::module_& module) {
  const auto threads = py::arg("threads") = 0;
  py::class_<Simulation>(module, "Simulation", "A simulation of free-surface flow as a value.")
      .def(py::init([](const quillmere::Case& contents, int most) {
             return Simulation(contents, {.threads = most});
           }),
           py::arg("case"), threads)
      .def_static(
          "open",
          [](const std::string& data_file, int most) {
            return Simulation::open(data_file, {.threads = most});
          },
          py::arg("data_file"), threads, "Reads a case from its data file.")
      .def_property_readonly("start_time", &Simulation::start_time, "s")
      .def_property_readonly("end_time", &Simulation::end_time, "s")
      .def_property_readonly("time", &Simulation::time, "s")
      .def_property_readonly("time_step", &Simulation::time_step, "The one that comes next, s.")
      .def_property_readonly("steps", &Simulation::steps, "Computed so far.")
      .def_property_readonly("is_complete", &Simulation::is_complete)
      .def("step", &step, "Computes the next step, which is not shortened to meet any time.")
      .def("run_until", &run_until, py::arg("time"), "Steps until a time (s), or the end.")
      .def_property_readonly("number_of_cells", &Simulation::number_of_cells)
      .def_property_readonly("number_of_edges", &Simulation::number_of_edges)
      .def("mesh", &Simulation::mesh)
      .def("cell_at", &Simulation::cell_at, py::arg("x"), py::arg("y"),
           "The first cell that contains a point; -1 if there is none.")
      .def(
          "areas", [](const Simulation& s) { return array_of(s.areas()); }, "m2")
      .def("read", &read, py::arg("field"), py::arg("out").noconvert() = py::none(),
           "The present values of all cells, of one of `fields`; into an array if one is given.")
      .def("inflow", &Simulation::inflow, py::arg("edge"),
           "What entered through a boundary edge in the last step, m3/s.")
      .def("keep_maxima", &Simulation::keep_maxima, py::arg("arrival_depth") = 0.05,
           "Keeps the maxima of the flow from the start on: the fields from peak_depth on.")
      .def("set_depth", &set_depth, py::arg("depths"), py::arg("cells") = py::none(),
           "Sets depths (m) of all cells, or of those given.")
      .def("set_discharges", &set_discharges, py::arg("qx"), py::arg("qy"),
           py::arg("cells") = py::none(), "Sets unit discharges (m2/s).")
      .def("set_rain", &set_rain, py::arg("intensity"), py::arg("cells") = py::none(),
           "From now on a steady rain (m/s) falls, one number or one for every cell.")
      .def("set_boundary", &Simulation::set_boundary, py::arg("edge"), py::arg("value"),
           "From now on an edge that imposes a discharge (m2/s) or a level (m) imposes this one.")
      .def("save", &save, "All that the further steps depend on, as bytes.")
      .def("load", &load, py::arg("state"))
      .def("take_warnings", &Simulation::take_warnings, "Those since the last call.");
}

}  // namespace

PYBIND11_MODULE(_quillmere, module) {
  py::register_exception<quillmere::Error>(module, "Error");
  module.attr("fields") = py::tuple(py::cast(field_names()));
  bind_cases(module);
  bind_mesh(module);
  bind_simulation(module);
}
