#include "mesh/sms_reader.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <map>
#include <utility>

#include "mesh/ForeignScanner.hpp"
#include "mesh/NodeNumbers.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

class SmsReader {
 public:
  explicit SmsReader(const std::string& path) : in_(path) {}

  Mesh read() {
    mesh_.format = "SMS 2dm";
    if (in_.at_end() || in_.word("card") != "MESH2D") {
      in_.refuse("first card", "MESH2D, with which a .2dm file begins");
    }
    in_.skip_line();
    while (!in_.at_end()) read_card(std::string(in_.word("card")));
    link();
    report();
    return std::move(mesh_);
  }

 private:
  void read_card(const std::string& card);
  void skip_card(const std::string& card);
  void read_node();
  void read_element(std::size_t n_nodes);
  void read_string_card();
  void read_material_name();
  void link();
  void set_columns();
  int find(long long number, const std::string& user) const;
  void report();

  ForeignScanner in_;
  Mesh mesh_;
  NodeNumbers::Builder builder_;
  NodeNumbers numbers_;
  struct Element {
    long long number;
    long long nodes[4];
    std::size_t n_nodes;
    std::array<double, 2> columns;  ///< behind the nodes: material, elevation
    std::size_t n_columns;
  };
  std::vector<Element> elements_;
  struct String {
    std::string name;
    std::vector<long long> nodes;
  };
  std::vector<String> strings_;
  bool string_is_open_ = false;
  std::map<long long, std::string> material_names_;
  std::map<std::string, long> ignored_cards_;  ///< how many of each
  bool has_passed_foreign_card_ = false;       ///< which lines without a card may go on
  bool has_materials_ = false;
};

void SmsReader::read_card(const std::string& card) {
  if (string_is_open_ && card != "NS") {
    in_.refuse("card", "NS: the node string before it has no end (a negative node)");
  }
  const bool is_continued = has_passed_foreign_card_;
  has_passed_foreign_card_ = false;
  if (card == "ND") {
    read_node();
  } else if (card == "E3T") {
    read_element(3);
  } else if (card == "E4Q") {
    read_element(4);
  } else if (card == "NS") {
    read_string_card();
  } else if (card == "MAT" || card == "MATNAME") {
    read_material_name();
  } else if (card == "E6T" || card == "E8Q" || card == "E9Q") {
    in_.refuse("card", "E3T or E4Q: only elements of first order can be read");
  } else if (std::isalpha(static_cast<unsigned char>(card[0]))) {
    skip_card(card);
  } else if (is_continued) {
    has_passed_foreign_card_ = true;
    in_.skip_line();
  } else {
    in_.refuse("card", "a card such as ND, E3T, E4Q or NS");
  }
}

/// Boundary conditions, curves and parameters of models may stand around the mesh, also in lines of
/// numbers below their card; curves lie between cards of their own.
void SmsReader::skip_card(const std::string& card) {
  ++ignored_cards_[card];
  in_.skip_line();
  has_passed_foreign_card_ = true;
  if (card == "BEGCURVE") {
    while (!in_.at_end() && in_.word("card") != "ENDCURVE") in_.skip_line();
    in_.skip_line();
  }
}

void SmsReader::read_node() {
  builder_.add(in_.integer("number of a node"));
  const double x = in_.number("x"), y = in_.number("y");
  const double z = in_.at_end_of_line() ? 0.0 : in_.number("z");
  mesh_.nodes.push_back({x, y, z});
  in_.skip_line();
}

void SmsReader::read_element(std::size_t n_nodes) {
  Element element{};
  element.number = in_.integer("number of an element");
  element.n_nodes = n_nodes;
  for (std::size_t k = 0; k < n_nodes; ++k) {
    if (in_.at_end_of_line()) in_.refuse("node of an element", "a further node on the line");
    element.nodes[k] = in_.integer("node of an element");
  }
  while (element.n_columns < element.columns.size() && !in_.at_end_of_line()) {
    element.columns[element.n_columns++] = in_.number("material or elevation");
  }
  elements_.push_back(element);
  in_.skip_line();
}

/// A string may run over several cards; a negative node ends it, and a name or number may follow.
void SmsReader::read_string_card() {
  if (!string_is_open_) strings_.push_back({"", {}});
  string_is_open_ = true;
  while (string_is_open_ && !in_.at_end_of_line()) {
    const long long number = in_.integer("node of a node string");
    if (number == 0) in_.refuse("node of a node string", "a number other than 0");
    strings_.back().nodes.push_back(number < 0 ? -number : number);
    string_is_open_ = number > 0;
  }
  if (!string_is_open_ && !in_.at_end_of_line()) {
    strings_.back().name = in_.quoted_text("name of a node string");
  }
  in_.skip_line();
}

void SmsReader::read_material_name() {
  const long long number = in_.integer("number of a material");
  material_names_[number] = in_.quoted_text("name of a material");
  in_.skip_line();
}

/// What stands behind the nodes of the elements: numbers of materials are whole; some programs
/// write the elevation of the element in their place, or behind them.
void SmsReader::set_columns() {
  for (std::size_t k = 0; k < 2; ++k) {
    std::size_t n_there = 0, n_fractions = 0;
    const Element* first = nullptr;
    for (const Element& element : elements_) {
      if (element.n_columns <= k) continue;
      ++n_there;
      const double value = element.columns[k];
      if (value == std::floor(value) && std::abs(value) < 1e15) continue;
      if (n_fractions++ == 0) first = &element;
    }
    const bool are_elevations = n_there == elements_.size() && 2 * n_fractions >= n_there;
    if (n_fractions > 0 && !are_elevations) {
      throw tools::Error(in_.path() + ", element " + std::to_string(first->number) + ": found " +
                         shown(first->columns[k]) +
                         " behind the nodes, expected the number of a material, or an elevation of "
                         "every element.");
    }
    if (n_there == 0) return;
    if (are_elevations) {
      for (const Element& element : elements_) mesh_.bed_of_cell.push_back(element.columns[k]);
      mesh_.remarks.push_back("The elements have elevations (element " +
                              std::to_string(first->number) + ": " + shown(first->columns[k]) +
                              " m), which are the bed of their cells.");
      return;
    }
    if (k == 0) {
      has_materials_ = true;
    } else {
      mesh_.remarks.push_back("Some elements have several materials; the first one was taken.");
    }
  }
}

int SmsReader::find(long long number, const std::string& user) const {
  const int node = numbers_.find(number);
  if (node < 0) {
    throw tools::Error(in_.path() + ", " + user + ": found node " + std::to_string(number) +
                       ", expected the number of a node (card ND) of the file.");
  }
  return node;
}

/// Cards may come in any order, so numbers are looked up at the end.
void SmsReader::link() {
  numbers_ = NodeNumbers(std::move(builder_), in_.path());
  set_columns();
  std::map<long long, int> zone_of_material;
  for (const Element& element : elements_) {
    Cell cell;
    for (std::size_t k = 0; k < element.n_nodes; ++k) {
      cell.nodes[k] = find(element.nodes[k], "element " + std::to_string(element.number));
    }
    const long long material = has_materials_ ? static_cast<long long>(element.columns.front()) : 0;
    const auto [zone, is_new] =
        zone_of_material.try_emplace(material, static_cast<int>(mesh_.surface_names.size()));
    if (is_new) {
      const auto name = material_names_.find(material);
      mesh_.zones.push_back({zone->second});
      mesh_.surface_names.push_back(name == material_names_.end() ? std::to_string(material)
                                                                  : name->second);
    }
    mesh_.cells.push_back(cell);
    mesh_.zone_of_cell.push_back(zone->second);
  }
  for (std::size_t s = 0; s < strings_.size(); ++s) {
    const String& string = strings_[s];
    const std::string name = string.name.empty() ? std::to_string(s + 1) : string.name;
    auto& names = mesh_.line_names;
    const auto line = std::find(names.begin(), names.end(), name) - names.begin();
    if (line == static_cast<std::ptrdiff_t>(names.size())) names.push_back(name);
    for (std::size_t k = 1; k < string.nodes.size(); ++k) {
      const std::string user = "node string " + name;
      mesh_.line_pieces.push_back(
          {find(string.nodes[k - 1], user), find(string.nodes[k], user), static_cast<int>(line)});
    }
  }
}

void SmsReader::report() {
  if (string_is_open_) {
    throw tools::Error(in_.place() +
                       ": the last node string has no end: its last node must be negative.");
  }
  if (mesh_.cells.empty()) {
    throw tools::Error(in_.path() + ": the file holds no element (cards E3T and E4Q).");
  }
  std::string cards;
  for (const auto& [card, count] : ignored_cards_) {
    cards +=
        (cards.empty() ? "" : ", ") + card + (count > 1 ? " (" + std::to_string(count) + ")" : "");
  }
  if (!cards.empty()) mesh_.remarks.push_back("Cards that were not read: " + cards + ".");
}

}  // namespace

Mesh read_2dm(const std::string& path) { return SmsReader(path).read(); }

}  // namespace mesh_import
