// Rows of results that all ranks of a flow have, as rank 0 asks for them.
#include <string>
#include <system_error>
#include <utility>

#include "fields/RanksFlow.hpp"
#include "fields/orders.hpp"

namespace fields {

/// What every kind of rows has in common.
template <class Kind>
class RanksFlow::OfRanks : public Kind {
 public:
  /// Takes the lowest number that no other result has, so that ranks keep rows of no more results
  /// than there were at once.
  explicit OfRanks(const RanksFlow& flow) : of_(flow) {
    while (!flow.numbers_.insert(number_).second) ++number_;
  }
  ~OfRanks() override { of_.numbers_.erase(number_); }
  OfRanks(const OfRanks&) = delete;
  OfRanks& operator=(const OfRanks&) = delete;

  bool has_others() const override { return of_.group_->size() > 1; }
  std::optional<RowText> next() override {
    const std::size_t largest = of_.largest_text_;
    const Order order{.task = Task::pass_rows, .number = number_, .rank = from_, .bytes = largest};
    std::optional<RowText> piece =
        of_.together(order, [&] { return of_.rows_->pass(number_, from_, largest); });
    if (!piece || !piece->is_last) return piece;
    piece->is_last = ++from_ == of_.group_->size();
    return piece;
  }

 protected:
  const RanksFlow& of_;
  int number_ = 0;

  /// Answers the rows of rank 0.
  template <class Request>
  const auto& gather_on_all(const Request& request) {
    from_ = 1;
    const Order order{.task = Task::gather_rows, .number = number_};
    return of_.together(
        order, [&]() -> const auto& {
          ranks::broadcast_out(*of_.group_, AnyRowsRequest(request));
          return of_.rows_->gather(number_, request, *of_.part_);
        });
  }

 private:
  int from_ = 1;  ///< whose text comes next
};

class RanksFlow::RowsOfRanks final : public OfRanks<Rows> {
 public:
  RowsOfRanks(const RanksFlow& flow, RowsRequest request)
      : OfRanks(flow), request_(std::move(request)) {}

  void gather() override {
    own_ = &gather_on_all(request_);
    thread_ = &of_.rows_->thread_of(number_);
  }
  void add_own_to(utils::CellTable& table) const override { own_->add_to(table); }

  bool have_writers() const override { return of_.rows_->have_writers(); }
  SharedFile write_shared(const utils::SharedPart& part, const std::string& header) override {
    const Order order{.task = Task::write_shared, .number = number_};
    const SharedTarget target = {part, header};
    const bool had_writers = have_writers();
    const SharedFile file =
        of_.together(order, [&] { return of_.rows_->write_shared(number_, &target); });
    if (had_writers && !have_writers()) warn_of_refusal(part.name, file);
    return file;
  }
  void wait_for_own() const override { thread_->wait(); }

 private:
  void warn_of_refusal(const std::string& name, const SharedFile& file) const {
    of_.diagnostics_.warn("rank " + std::to_string(file.rank) + " cannot write into " + name +
                          " (" + std::generic_category().message(file.error) +
                          "): rank 0 writes all results.");
  }

  RowsRequest request_;
  const OwnTableRows* own_ = nullptr;
  utils::WriterThread* thread_ = nullptr;  ///< of the rows of rank 0
};

class RanksFlow::ValueRowsOfRanks final : public OfRanks<ValueRows> {
 public:
  using OfRanks::OfRanks;

  void gather(const std::vector<Field>& fields) override {
    own_ = &gather_on_all(ValuesRequest{fields});
  }
  const Columns& columns() const override { return own_->columns(); }
  const std::vector<double>& bed() const override { return own_->bed(); }

 private:
  const OwnValueRows* own_ = nullptr;
};

class RanksFlow::SavedRowsOfRanks final : public OfRanks<SavedRows> {
 public:
  using OfRanks::OfRanks;

  void gather(const Books& books) override {
    own_ = &gather_on_all(SavedRequest{books.looks != nullptr, books.has_notes});
    flow_ = own_->flow();
  }
  void put_own_to(utils::ByteSink& sink) const override { own_->put_to(sink); }

 private:
  const OwnSavedRows* own_ = nullptr;
};

std::unique_ptr<Rows> RanksFlow::rows(const cases::Mesh&, const RowsRequest& request) const {
  return std::make_unique<RowsOfRanks>(*this, request);
}

std::unique_ptr<ValueRows> RanksFlow::value_rows(const cases::Case&) const {
  return std::make_unique<ValueRowsOfRanks>(*this);
}

std::unique_ptr<SavedRows> RanksFlow::saved_rows() const {
  return std::make_unique<SavedRowsOfRanks>(*this);
}

void RanksFlow::load(const SavedFlow& saved, utils::ByteSource& rows) {
  load_rows({saved, {SavedPart::state}}, rows);
}

void RanksFlow::load_books(const SavedFlow& saved, bool has_notes, Looks&,
                           utils::ByteSource& rows) {
  std::vector<SavedPart> parts = {SavedPart::infiltrated};
  if (has_notes) parts.push_back(SavedPart::notes);
  load_rows({saved, std::move(parts)}, rows);
}

void RanksFlow::load_rows(LoadRequest request, utils::ByteSource& rows) {
  together({Task::load_rows}, [&] {
    ranks::broadcast_out(*group_, request);
    part_->load_rows(request, &rows);
  });
}

}  // namespace fields
