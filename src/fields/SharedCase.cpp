#include "fields/SharedCase.hpp"

#include <utility>

#include "case/EndAtFirstError.hpp"
#include "case/triangle_sides.hpp"
#include "fields/orders.hpp"
#include "ranks/FirstRefusal.hpp"

namespace fields {

namespace {

/// The rows that ranks have kept, by rank.
class RowsOfBlocks final : public ListedMesh {
 public:
  RowsOfBlocks(ranks::Group& group, ranks::ReadShare& own)
      : group_(group), own_(own), width_(own.mesh_rows.width) {}

  MeshCounts counts() const override { return own_.counts; }
  std::size_t width() const override { return width_; }
  std::optional<cases::MeshRows> next() override {
    const int rank = next_rank_++;
    if (rank == 0) return std::exchange(own_.mesh_rows, {});
    if (rank >= group_.size()) return {};
    return ranks::in_step(group_, [&] {
      call(group_, {Call::Kind::mesh_rows, rank});
      return ranks::receive_value<cases::MeshRows>(group_, rank);
    });
  }

 private:
  ranks::Group& group_;
  ranks::ReadShare& own_;
  std::size_t width_;
  int next_rank_ = 0;
};

}  // namespace

SharedCase::SharedCase(ranks::Group& group, const std::string& data_file,
                       const cases::Listeners& listeners, cases::Diagnostics& diagnostics)
    : group_(group) {
  ranks::in_step(group_, [&] {
    call(group_, {Call::Kind::read});
    ranks::broadcast_out(group_, data_file);
    read_ = ranks::read_share(group_, data_file, listeners, diagnostics);
  });
  cases::copy_parameters(read_.share.part.contents, case_.contents);
  case_.data = std::move(read_.data);
  case_.area_loss = read_.area_loss;
  read_.owners = {};
}

std::unique_ptr<Ground> SharedCase::ground() const {
  return std::make_unique<RanksGround>(read_.counts, [this](GroundQuestion question) {
    return ranks::in_step(group_, [&] {
      call(group_, {Call::Kind::ground});
      return answer_together(group_, read_.share.part, std::move(question));
    });
  });
}

std::unique_ptr<ListedMesh> SharedCase::listed_mesh() {
  return std::make_unique<RowsOfBlocks>(group_, read_);
}

ranks::Share SharedCase::take_share() {
  read_.mesh_rows = {};
  return std::move(read_.share);
}

std::optional<ranks::ReadShare> read_own_share(ranks::Group& group) {
  std::string data_file;
  ranks::broadcast_in(group, data_file);
  cases::WithoutWarnings silent;
  try {
    auto read = ranks::read_share(group, data_file, cases::NoListeners().listeners(), silent);
    read.owners = {};
    return read;
  } catch (const ranks::Refusal&) {  // rank 0 tells it
    return {};
  }
}

void require_scheme_takes(ranks::Group& group, const cases::Part& part) {
  const cases::Scheme scheme = part.contents.scheme;
  if (!cases::is_hll(scheme)) return;
  ranks::FirstRefusal refusal;
  std::int64_t place = 0;
  const auto look = [&] {
    try {
      cases::require_triangles(part, cases::kind_of(scheme).name);
    } catch (const cases::SideRefusal& found) {
      place = found.place();
      throw;
    }
  };
  refusal.keep(look, [&] { return place; });
  refusal.end(group);
}

}  // namespace fields
