// Looks at the cells of a flow that one rank computes, or at all of them.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "case/Case.hpp"
#include "fields/WholeFlow.hpp"
#include "fields/looks.hpp"

namespace fields {

/// Cells of a flow, numbered from 0 on in the order of their numbers in the files.
class FlowPart {
 public:
  virtual ~FlowPart() = default;

  virtual cases::Number count() const = 0;
  /// In the files, of the k-th cell.
  virtual cases::Number number(cases::Number k) const = 0;
  /// A case with these cells, others too; under which number it has the k-th one.
  virtual const cases::Case& contents() const = 0;
  virtual cases::Number in_case(cases::Number k) const = 0;
  /// Whether a cell of the case is one of these.
  virtual bool has(cases::Number cell) const = 0;

  /// The present values of a field, of all these cells.
  virtual void read(Field field, std::span<double> values) const = 0;
  virtual UnseenDepth unseen_depth(cases::Number k) const = 0;
  /// By its number in the boundaries of the case.
  virtual BoundaryInflow boundary_inflow(int boundary) const = 0;
};

class PartLooks {
 public:
  /// The part must outlive it.
  explicit PartLooks(const FlowPart& part);

  Seen see(const Look& look);
  /// Books what came over the boundaries in the last step, of dt (s).
  void add_step(double dt);
  /// The infiltrated depths at the last look at the water, with which the next one goes on: of all
  /// these cells, or none without soils.
  const std::vector<double>& infiltrated() const { return infiltrated_before_; }
  void set_infiltrated(std::vector<double> depths) { infiltrated_before_ = std::move(depths); }
  /// Goes on from looks at other cells: with what passed the boundaries that were theirs, and the
  /// infiltrated depths at the last look at these.
  void go_on_from(const PartLooks& before, std::vector<double> infiltrated);

 private:
  struct OpenBoundary {
    int number;        ///< among the boundaries of the mesh
    std::size_t kind;  ///< in cases::boundary_kinds
  };

  WaterSeen see_water();
  RapidSeen see_most_rapid();
  ColumnSurvey see_column(Field field, int components);
  StatesSeen see_states();
  NearestSeen see_nearest_lost(physics::PlanPoint point);
  BoundsSeen see_bounds();
  VolumesSeen see_volumes();
  void see_soils(WaterSeen& seen);

  void find_boundaries();
  void add_boundary(int number, bool counts);
  const std::vector<double>& read(Field field, std::vector<double>& values) const;
  void read_states();
  double area(cases::Number k);

  const FlowPart& part_;
  const cases::Case& case_;
  std::vector<double> h_, qx_, qy_, values_;  ///< kept for their memory
  std::vector<double> areas_;                 ///< once one is asked for
  std::vector<double> infiltrated_before_;    ///< at the last look; empty without soils
  std::vector<bool> recovers_;                ///< by the number of the soil
  std::vector<OpenBoundary> boundaries_;
  PassedByKind water_passed_{}, sediment_passed_{};
};

/// Looks at all cells of a flow that this process computes alone.
class WholeLooks final : public Looks {
 public:
  /// Flow and case must outlive it.
  WholeLooks(const WholeFlow& flow, const cases::Case& contents)
      : part_(flow, contents), looks_(part_) {}

  Seen see(const Look& look) override { return looks_.see(look); }
  void add_step(double dt) override { looks_.add_step(dt); }
  const std::vector<double>& infiltrated() const { return looks_.infiltrated(); }
  void set_infiltrated(std::vector<double> depths) { looks_.set_infiltrated(std::move(depths)); }

 private:
  class Whole final : public FlowPart {
   public:
    Whole(const WholeFlow& flow, const cases::Case& contents) : flow_(flow), case_(contents) {}

    cases::Number count() const override { return case_.mesh.n_cells(); }
    cases::Number number(cases::Number k) const override { return k; }
    const cases::Case& contents() const override { return case_; }
    cases::Number in_case(cases::Number k) const override { return k; }
    bool has(cases::Number) const override { return true; }
    void read(Field field, std::span<double> values) const override { flow_.read(field, values); }
    UnseenDepth unseen_depth(cases::Number k) const override { return flow_.unseen_depth(k); }
    BoundaryInflow boundary_inflow(int boundary) const override {
      return flow_.boundary_inflow(boundary);
    }

   private:
    const WholeFlow& flow_;
    const cases::Case& case_;
  };

  Whole part_;
  PartLooks looks_;
};

}  // namespace fields
