#include "fields/SharedCase.hpp"

#include <utility>

#include "case/EndAtFirstError.hpp"
#include "case/triangle_sides.hpp"
#include "fields/orders.hpp"
#include "ranks/FirstRefusal.hpp"

namespace fields {

SharedCase::SharedCase(ranks::Group& group, const std::string& data_file,
                       const cases::Listeners& listeners, cases::Diagnostics& diagnostics)
    : group_(group) {
  call(group_, {Call::Kind::read});
  ranks::broadcast_out(group_, data_file);
  read_ = ranks::read_share(group_, data_file, listeners, diagnostics);
  cases::copy_parameters(read_.share.part.contents, case_.contents);
  case_.data = std::move(read_.data);
  case_.area_loss = read_.area_loss;
  read_.owners = {};
}

std::unique_ptr<Ground> SharedCase::ground() const {
  return std::make_unique<RanksGround>(read_.counts, [this](GroundQuestion question) {
    call(group_, {Call::Kind::ground});
    return answer_together(group_, read_.share.part, std::move(question));
  });
}

std::optional<ranks::Share> read_own_share(ranks::Group& group) {
  std::string data_file;
  ranks::broadcast_in(group, data_file);
  cases::WithoutWarnings silent;
  try {
    return ranks::read_share(group, data_file, cases::NoListeners().listeners(), silent).share;
  } catch (const utils::FatalError&) {  // as all ranks end; rank 0 tells it
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
