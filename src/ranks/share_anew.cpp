#include "ranks/share_anew.hpp"

#include <map>
#include <utility>

#include "case/entries_of.hpp"
#include "ranks/Blocks.hpp"
#include "ranks/unite_parts.hpp"

namespace ranks {

namespace {

/// Cells that go to a rank, with their ghosts, and to whom all of these belong then.
struct MovingPart {
  cases::Part part;
  std::vector<int> owners;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.part, self.owners);
  }
};

/// Cuts parts out of one whose cells get other owners.
class CutterOfParts {
 public:
  CutterOfParts(const cases::Part& whole, const std::vector<int>& owners)
      : whole_(whole),
        owners_(owners),
        rings_(cases::rings_of(whole.contents.scheme)),
        cutter_(whole.contents, whole.scales) {}

  MovingPart part_of(const std::vector<Number>& own) {
    MovingPart cut{cutter_.mesh_part_of(own, rings_), {}};
    cut.owners = cases::entries_of(owners_, cut.part.cell_number);
    for (const auto numbers : {&cases::Part::cell_number, &cases::Part::edge_number,
                               &cases::Part::node_number, &cases::Part::boundary_number}) {
      cut.part.*numbers = cases::entries_of(whole_.*numbers, cut.part.*numbers);
    }
    return cut;
  }

 private:
  const cases::Part& whole_;
  const std::vector<int>& owners_;
  int rings_;
  cases::PartCutter cutter_;
};

using MovingParts = std::map<int, MovingPart>;
using ReceivedParts = std::vector<std::pair<int, MovingPart>>;

/// What goes from a rank to others.
MovingParts parts_for_others(int rank, const cases::Part& part, const std::vector<int>& owners) {
  std::map<int, std::vector<Number>> cells;
  for (Number cell = 0; cell < part.owned; ++cell) {
    if (owners[at(cell)] != rank) cells[owners[at(cell)]].push_back(cell);
  }
  MovingParts parts;
  if (cells.empty()) return parts;
  CutterOfParts cutter(part, owners);
  for (const auto& [owner, own] : cells) parts[owner] = cutter.part_of(own);
  return parts;
}

/// What a rank has and what came, with the owners of all that.
MovingPart all_here(const cases::Part& part, const std::vector<int>& owners,
                    const ReceivedParts& came) {
  std::vector<const cases::Part*> parts = {&part};
  for (const auto& [sender, moving] : came) parts.push_back(&moving.part);
  MovingPart all{united(parts), {}};
  all.part.scales = part.scales;
  all.part.contents.scheme = part.contents.scheme;
  all.owners.resize(all.part.cell_number.size());
  const auto take_owners = [&](const cases::Part& of, const std::vector<int>& owners_of) {
    const std::vector<Number> places = places_among(all.part.cell_number, of.cell_number);
    for (std::size_t k = 0; k < places.size(); ++k) all.owners[at(places[k])] = owners_of[k];
  };
  take_owners(part, owners);
  for (const auto& [sender, moving] : came) take_owners(moving.part, moving.owners);
  return all;
}

/// The new share of a rank.
Share share_of_parts(int rank, const cases::Part& part, const std::vector<int>& owners,
                     const ReceivedParts& came) {
  const MovingPart all = all_here(part, owners, came);
  std::vector<Number> own;
  for (std::size_t k = 0; k < all.owners.size(); ++k) {
    if (all.owners[k] == rank) own.push_back(static_cast<Number>(k));
  }
  MovingPart cut = CutterOfParts(all.part, all.owners).part_of(own);
  cases::copy_parameters(part.contents, cut.part.contents);
  const std::vector<int> of_ghosts(cut.owners.begin() + cut.part.owned, cut.owners.end());
  Share share{std::move(cut.part), {}};
  share.halos = halos_of(share.part, of_ghosts, cases::rings_of(share.part.contents.scheme));
  return share;
}

}  // namespace

Share share_anew(Group& group, const cases::Part& part, const std::vector<int>& owners) {
  const int rank = group.rank();
  const ReceivedParts came = exchange_values(group, parts_for_others(rank, part, owners));
  return share_of_parts(rank, part, owners, came);
}

}  // namespace ranks
