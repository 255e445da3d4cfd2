#include "fields/SavedFlow.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "fields/TablesFlow.hpp"
#include "support/Told.hpp"
#include "support/basin.hpp"

namespace {

class SavedFlow : public testing::Test {
 protected:
  SavedFlow() : flow_(contents_, told_, 1) {
    flow_.watch();
    present_ = saved();
  }
  fields::SavedFlow saved() {
    const auto rows = flow_.saved_rows();
    rows->gather({.has_notes = true});
    return rows->flow();
  }
  /// Whether it fits after a change.
  bool fits(const std::function<void(fields::SavedFlow&)>& change) const {
    fields::SavedFlow saved = present_;
    change(saved);
    return fields::fits(saved, present_, contents_);
  }
  bool notes_fit(const std::function<void(fields::SavedFlow&)>& change) const {
    fields::SavedFlow saved = present_;
    change(saved);
    return fields::fits(fields::SavedPart::notes, saved, present_);
  }

  support::TemporaryFolder folder_;
  cases::Case contents_ = support::basin({}, folder_);
  support::Told told_;
  fields::TablesFlow flow_;
  fields::SavedFlow present_;
};

}  // namespace

TEST_F(SavedFlow, FitsWhatHasItsCellsColumnsAndRain) {
  EXPECT_TRUE(fits([](auto&) {}));
  EXPECT_FALSE(fits([](auto& saved) { ++saved.cells; }));
  EXPECT_FALSE(fits([](auto& saved) { saved.columns.erase(saved.columns.begin()); }));
  EXPECT_FALSE(fits([](auto& saved) { std::swap(saved.columns[0], saved.columns[1]); }));
  EXPECT_FALSE(fits([](auto& saved) { saved.columns.insert(saved.columns.begin(), 0); }));
  EXPECT_FALSE(fits([](auto& saved) { saved.columns.push_back(200); }));
  EXPECT_FALSE(fits([](auto& saved) { saved.rain_clocks.pop_back(); }));
  EXPECT_FALSE(fits([](auto& saved) { saved.rain_clocks[0].hyetogram_index = 1000; }));
}

TEST_F(SavedFlow, NeedsNoFreeSurfaceOfTheStart) {
  flow_.advance({0.0, 0.0, support::basin_t_end, 1e-3});
  const fields::SavedFlow later = saved();
  EXPECT_EQ(later.columns.size() + 1, present_.columns.size());
  EXPECT_TRUE(fields::fits(later, present_, contents_));
  EXPECT_TRUE(fields::fits(present_, later, contents_));
}

TEST_F(SavedFlow, MayHoldMaximaThatAreKeptNoMore) {
  flow_.keep_maxima(0.1);
  const fields::SavedFlow with_maxima = saved();
  EXPECT_GT(with_maxima.columns.size(), present_.columns.size());
  EXPECT_TRUE(fields::fits(with_maxima, present_, contents_));
  EXPECT_FALSE(fields::fits(present_, with_maxima, contents_));
}

TEST_F(SavedFlow, FitsNotesOfItsCells) {
  EXPECT_TRUE(notes_fit([](auto&) {}));
  EXPECT_FALSE(notes_fit([](auto& saved) { saved.columns.pop_back(); }));
  EXPECT_FALSE(notes_fit([](auto& saved) { saved.of_last_step.limiting_cell = -2; }));
  EXPECT_FALSE(notes_fit(
      [](auto& saved) { saved.of_last_step.speed_squared.cell = static_cast<int>(saved.cells); }));
}
