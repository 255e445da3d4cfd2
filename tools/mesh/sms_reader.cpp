#include "mesh/sms_reader.hpp"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <utility>

#include "mesh/ForeignScanner.hpp"
#include "mesh/NodeNumbers.hpp"
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
  void read_node();
  void read_element(std::size_t n_nodes);
  void read_string_card();
  void read_material_name();
  void link();
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
    long long material;
  };
  std::vector<Element> elements_;
  struct String {
    std::string name;
    std::vector<long long> nodes;
  };
  std::vector<String> strings_;
  bool string_is_open_ = false;
  std::map<long long, std::string> material_names_;
  std::set<std::string> ignored_cards_;
  bool has_more_materials_ = false;
};

void SmsReader::read_card(const std::string& card) {
  if (string_is_open_ && card != "NS") {
    in_.refuse("card", "NS: the node string before it has no end (a negative node)");
  }
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
  } else if (card.size() == 3 && card[0] == 'E' && card[1] >= '0' && card[1] <= '9') {
    in_.refuse("card", "E3T or E4Q: only elements of first order can be read");
  } else if (!std::isupper(static_cast<unsigned char>(card[0]))) {
    in_.refuse("card", "a card such as ND, E3T, E4Q or NS");
  } else {
    ignored_cards_.insert(card);
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
  if (!in_.at_end_of_line()) element.material = in_.integer("material");
  has_more_materials_ = has_more_materials_ || !in_.at_end_of_line();
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
  std::map<long long, int> zone_of_material;
  for (const Element& element : elements_) {
    Cell cell;
    for (std::size_t k = 0; k < element.n_nodes; ++k) {
      cell.nodes[k] = find(element.nodes[k], "element " + std::to_string(element.number));
    }
    const auto [zone, is_new] = zone_of_material.try_emplace(
        element.material, static_cast<int>(mesh_.surface_names.size()));
    if (is_new) {
      const auto name = material_names_.find(element.material);
      mesh_.zones.push_back({zone->second});
      mesh_.surface_names.push_back(name == material_names_.end() ? std::to_string(element.material)
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
  if (has_more_materials_) {
    mesh_.remarks.push_back("Some elements have several materials; the first one was taken.");
  }
  std::string cards;
  for (const auto& card : ignored_cards_) cards += " " + card;
  if (!cards.empty()) mesh_.remarks.push_back("Cards that were not read:" + cards + ".");
}

}  // namespace

Mesh read_2dm(const std::string& path) { return SmsReader(path).read(); }

}  // namespace mesh_import
