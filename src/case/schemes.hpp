// The flux schemes that there are: all that reads, names or checks them draws on this table.
#pragma once

#include <array>
#include <string_view>

namespace cases {

enum class Scheme {
  lhllc,  ///< first order; a depth may fall below zero
  hll1,   ///< first order, positive and at rest
  hll2    ///< the same, second order in space and time
};

struct SchemeKind {
  Scheme scheme;
  const char* name;     ///< in the data file
  bool with_sediments;  ///< whether the model with sediments has it
};

inline constexpr auto schemes = std::to_array<SchemeKind>(
    {{Scheme::lhllc, "LHLLC", true}, {Scheme::hll1, "HLL1", true}, {Scheme::hll2, "HLL2", false}});

/// The scheme of a name; null if there is none.
constexpr const SchemeKind* find_scheme(std::string_view name) {
  for (const SchemeKind& kind : schemes) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

constexpr const SchemeKind& kind_of(Scheme scheme) {
  return schemes[static_cast<std::size_t>(scheme)];
}

/// Whether it is one of those that keep depths positive and lakes at rest, over triangles.
constexpr bool is_hll(Scheme scheme) { return scheme != Scheme::lhllc; }

/// The best of those for a model.
constexpr const SchemeKind& positive_scheme(bool with_sediments) {
  return kind_of(with_sediments ? Scheme::hll1 : Scheme::hll2);
}

}  // namespace cases
